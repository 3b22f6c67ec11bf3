// The one numbering of C and C++ token kinds (0 to 180) and tree node types (181 to 401).
// Numbers 0 to 12 are the framework's own (BPTokenType). This header holds the numbers the
// framework itself acts on; the lexer and the parser complete the table with the rest of the
// kinds and the print names.
#pragma once

#include "TBPParseNode.h"

enum CPParseNodeType : int {
    CPT_NULL = BPTOKEN_NULL,
    CPT_EOF = BPTOKEN_EOF,
    CPT_EOS = BPTOKEN_EOS,
    CPT_IDENTIFIER = BPTOKEN_IDENTIFIER,
    CPT_WHITESPACE = BPTOKEN_WHITESPACE,
    CPT_NEWLINE = BPTOKEN_NEWLINE,
    CPT_LINE_COMMENT = BPTOKEN_LINE_COMMENT,
    CPT_BLOCK_COMMENT = BPTOKEN_BLOCK_COMMENT,
    CPT_GARBAGE_CHAR = BPTOKEN_GARBAGE_CHAR,

    CPT_POUND = 111,
    CPT_POUND_POUND = 112,
    CPT_BACKSLASH = 113,

    CPT_FIRST_NODE = 181,
    CPT_LAST = 401,
};
