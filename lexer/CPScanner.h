// The C and C++ scanner: recognises exactly one token at a cursor and says which kind it is.
//
// It interprets nothing: no line splicing, no comment skipping. Every byte belongs to exactly one
// token, so the spellings of all tokens, in order, are the text. The text is null-terminated at
// `end`; a zero byte before `end` is a character like any other, which is why every end test
// compares pointers.
#pragma once

#include <cstdint>

#include "CPParseNodeType.h"

struct CPScanCursor {
    const char* cursor;  // on the first character of the token; behind it afterwards
    const char* end;     // the terminating zero
    uint32_t line;       // line ends passed so far
    int pendingError;    // message number for the token being made, 0 for none
    int pendingWarning;
};

// Scans one token and returns its kind. At the terminator it returns CPT_EOF and does not move.
int cpScanToken(CPScanCursor& scan);

// True for the characters an identifier continues with: _ $ letters digits.
inline bool cpIsIdentifierChar(unsigned char c) {
    return c == '_' || c == '$' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           (c >= '0' && c <= '9');
}
