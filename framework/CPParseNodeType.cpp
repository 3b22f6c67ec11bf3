#include "CPParseNodeType.h"

namespace {
struct KindNames {
    const char* names[CPT_LAST + 1] = {};
    KindNames() {
#define TOKEN(number, name, print) names[number] = print;
#define KEYWORD(number, name, print) names[number] = print;
#include "CPTokenKinds.def"
#undef TOKEN
#undef KEYWORD
#define NODE(number, name, print) names[number] = print;
#define FAMILY(number, name)
#include "CPNodeTypes.def"
#undef NODE
#undef FAMILY
    }
};
const KindNames kindNames;
}  // namespace

const char* cpTokenKindName(int type) {
    return type >= 0 && type <= CPT_LAST_TOKEN ? kindNames.names[type] : nullptr;
}

const char* cpParseNodeTypeName(int type) {
    return type >= 0 && type <= CPT_LAST ? kindNames.names[type] : nullptr;
}
