#include "CPParseNodeType.h"

namespace {
struct KindNames {
    const char* names[CPT_LAST + 1] = {};
    const char* spellings[CPT_LAST_TOKEN + 1] = {};
    const char* digraphs[CPT_LAST_TOKEN + 1] = {};
    KindNames() {
#define TOKEN(number, name, print) names[number] = print;
#define KEYWORD(number, name, spelling, flags) names[number] = spellings[number] = spelling;
#define PUNCTUATOR(number, name, print, spelling, digraph, flags) \
    names[number] = print;                                        \
    spellings[number] = spelling;                                 \
    digraphs[number] = *digraph ? digraph : nullptr;
#include "CPTokenKinds.def"
#undef TOKEN
#undef KEYWORD
#undef PUNCTUATOR
#define NODE(number, name, print) names[number] = print;
#define FAMILY(number, name)
#include "CPNodeTypes.def"
#undef NODE
#undef FAMILY
    }
};
const KindNames kindNames;

bool isToken(int type) { return type >= 0 && type <= CPT_LAST_TOKEN; }
}  // namespace

const char* cpTokenKindName(int type) { return isToken(type) ? kindNames.names[type] : nullptr; }

const char* cpTokenSpelling(int type) { return isToken(type) ? kindNames.spellings[type] : nullptr; }

const char* cpTokenDigraph(int type) { return isToken(type) ? kindNames.digraphs[type] : nullptr; }

const char* cpParseNodeTypeName(int type) {
    return type >= 0 && type <= CPT_LAST ? kindNames.names[type] : nullptr;
}
