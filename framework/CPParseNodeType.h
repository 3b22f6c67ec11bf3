// CPParseNodeType: the one enumeration that numbers both tokens (0 to 180) and tree nodes
// (181 to 401). Rows come from CPTokenKinds.def and CPNodeTypes.def; numbers 0 to 12 are the
// framework's own.
#pragma once

#include <array>
#include <cstdint>

#include "TBPParseNode.h"

enum CPParseNodeType : int {
#define TOKEN(number, name, print) name = number,
#define KEYWORD(number, name, spelling, flags) name = number,
#define PUNCTUATOR(number, name, print, spelling, digraph, flags) name = number,
#include "CPTokenKinds.def"
#undef TOKEN
#undef KEYWORD
#undef PUNCTUATOR
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

// What the token table says of a kind besides its name.
enum CPTokenFlag : uint8_t {
    CPTK_KEYWORD = 1,          // a KEYWORD row: spelled as a word
    CPTK_C_NAME = 2,           // a name in C that is an operator or a type in C++
    CPTK_KEYWORD_NAME = 4,     // a C++ word that may stand as a name where the parser allows it
    CPTK_MS_WORD = 8,          // a Microsoft statement word, which unqualified ids take as C names
    CPTK_DIRECTIVE = 16,       // a word that is a keyword only as a directive's name
    CPTK_BUILTIN = 32,         // a built-in macro name
    CPTK_ASSIGNMENT = 64,      // an assignment operator
    CPTK_CXX_ONLY = 128,       // a C file reads it as a plain name: C++'s own words, and the
                               // built-in macros whose value is C++'s
};

namespace cptokens {
constexpr std::array<uint8_t, CPT_LAST_TOKEN + 1> flagTable() {
    std::array<uint8_t, CPT_LAST_TOKEN + 1> flags{};
#define TOKEN(number, name, print)
#define KEYWORD(number, name, spelling, bits) flags[number] = uint8_t(CPTK_KEYWORD | (bits));
#define PUNCTUATOR(number, name, print, spelling, digraph, bits) flags[number] = uint8_t(bits);
#include "CPTokenKinds.def"
#undef TOKEN
#undef KEYWORD
#undef PUNCTUATOR
    return flags;
}
inline constexpr std::array<uint8_t, CPT_LAST_TOKEN + 1> kFlags = flagTable();
}  // namespace cptokens

// The CPTokenFlag bits of a kind; 0 for a number that isn't a token.
inline unsigned cpTokenFlags(int type) {
    return type >= 0 && type <= CPT_LAST_TOKEN ? cptokens::kFlags[size_t(type)] : 0u;
}
inline bool cpTokenHas(int type, unsigned flag) { return (cpTokenFlags(type) & flag) != 0; }

// The print name of a token kind; null for a number that has none.
const char* cpTokenKindName(int type);
// How a keyword or punctuator is written (its first spelling); null for other kinds.
const char* cpTokenSpelling(int type);
// A punctuator's digraph spelling; null when it has none.
const char* cpTokenDigraph(int type);
// The print name of any number of the enumeration, token or node; null for one without a name
// (the numbers 4 to 7 and the abstract node families).
const char* cpParseNodeTypeName(int type);
