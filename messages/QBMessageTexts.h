// The message table with its texts, for the host side only (the message file's writer and our
// host's own status texts): the engine includes QBMessageCodes.h and never a text.
#pragma once

#include <cstddef>

#include "QBMessageCodes.h"

namespace qbmsg {

struct Entry {
    int code;
    const char* name;
    const char* text;
};

inline constexpr Entry kEntries[] = {
#define QBMSG(code, name, text) {code, #name, text},
#include "messages.def"
#undef QBMSG
};

inline constexpr size_t kEntryCount = sizeof kEntries / sizeof kEntries[0];

// The text of a number; a number without one gives the text of 0, as the message file does.
inline const char* textOf(int code) {
    const char* fallback = "";
    for (const Entry& entry : kEntries) {
        if (entry.code == code) return entry.text;
        if (entry.code == 0) fallback = entry.text;
    }
    return fallback;
}

}  // namespace qbmsg
