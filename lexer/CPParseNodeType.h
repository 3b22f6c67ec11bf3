// CPParseNodeType: the one enumeration that numbers both tokens (0 to 180) and tree nodes
// (181 to 401). Token rows come from CPTokenKinds.def.
#pragma once

enum CPParseNodeType {
#define TOKEN(number, name, print) name = number,
#define KEYWORD(number, name, print) name = number,
#include "CPTokenKinds.def"
#undef TOKEN
#undef KEYWORD
    CP_LAST_TOKEN = 180,
    CP_FIRST_NODE = 181,
    CP_NODE_TYPE_COUNT = 402,
};

// The print name of a token kind; null for a number that has none.
const char* cpTokenKindName(int type);
