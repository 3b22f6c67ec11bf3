// CPParseNodeType: the one enumeration that numbers both tokens (0 to 180) and tree nodes
// (181 to 401). Rows come from CPTokenKinds.def and CPNodeTypes.def; numbers 0 to 12 are the
// framework's own.
#pragma once

#include "TBPParseNode.h"

enum CPParseNodeType : int {
#define TOKEN(number, name, print) name = number,
#define KEYWORD(number, name, print) name = number,
#include "CPTokenKinds.def"
#undef TOKEN
#undef KEYWORD
#define NODE(number, name, print) name = number,
#define FAMILY(number, name) name = number,
#include "CPNodeTypes.def"
#undef NODE
#undef FAMILY
    CPT_LAST_TOKEN = 180,
    CPT_FIRST_NODE = 181,
    CPT_LAST = 401,
};

static_assert(int(CPT_EOF) == BPTOKEN_EOF && int(CPT_GARBAGE_CHAR) == BPTOKEN_GARBAGE_CHAR,
              "the framework's token numbers start the table");

// The print name of a token kind; null for a number that has none.
const char* cpTokenKindName(int type);
// The print name of any number of the enumeration, token or node; null for one without a name
// (the numbers 4 to 7 and the abstract node families).
const char* cpParseNodeTypeName(int type);
