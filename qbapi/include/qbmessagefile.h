// The layout of the host's message file, shared by its writer and its readers.
// Little-endian 32-bit words: magic, base, then pairs (code, offset) closed by a pair whose
// offset is negative. A text is the zero-terminated string at base + offset from the start.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qbmessagefile {

enum { MAGIC = 4386, HEADER_BYTES = 8, ENTRY_BYTES = 8 };
enum Status { VALID = 0, EMPTY = -1, INVALID = -2, UNREADABLE = -3 };

// What a reader gives for every number when the file can't be used, with the path as %s. These
// can't stand in the file itself, so both readers take them from here.
inline const char* failureText(Status status) {
    switch (status) {
    case VALID: return nullptr;
    case EMPTY: return "Message file '%s' empty";
    case INVALID: return "Message file '%s' not valid";
    case UNREADABLE: break;
    }
    return "Unable to open message file '%s' not found";
}

inline int32_t readWord(const char* at) {
    uint8_t b[4];
    std::memcpy(b, at, 4);
    return int32_t(uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 |
                   uint32_t(b[3]) << 24);
}

// Calls visit(code, text) for each entry whose text lies inside the file and is terminated.
// Entries with a positive code or a text out of bounds are passed over.
template <class Visit>
Status forEachEntry(const char* data, size_t size, Visit visit) {
    if (size == 0) return EMPTY;
    if (size < HEADER_BYTES || readWord(data) != MAGIC) return INVALID;
    int32_t base = readWord(data + 4);
    if (base < 0 || size_t(base) > size) return INVALID;
    for (size_t at = HEADER_BYTES; at + ENTRY_BYTES <= size; at += ENTRY_BYTES) {
        int32_t code = readWord(data + at), offset = readWord(data + at + 4);
        if (offset < 0) return VALID;
        size_t start = size_t(base) + size_t(offset);
        if (code > 0 || start >= size || !std::memchr(data + start, 0, size - start)) continue;
        visit(code, data + start);
    }
    return INVALID;  // no closing entry
}

}  // namespace qbmessagefile
