// Every status and message number by its name, from the one table messages.def. The engine
// knows a number only by this name and holds no text; the host looks the text up in its
// message file. A name is what code and comments use, never the bare number.
#pragma once

namespace qbmsg {

enum Code : int {
#define QBMSG(code, name, text) name = code,
#define QBMSG_ALIAS(name, same) name = same,
#include "messages.def"
#undef QBMSG
};

}  // namespace qbmsg
