#include "CPParseNodeType.h"

namespace {
struct KindNames {
    const char* names[CPT_LAST_TOKEN + 1] = {};
    KindNames() {
#define TOKEN(number, name, print) names[number] = print;
#define KEYWORD(number, name, print) names[number] = print;
#include "CPTokenKinds.def"
#undef TOKEN
#undef KEYWORD
    }
};
const KindNames kindNames;
}  // namespace

const char* cpTokenKindName(int type) {
    return type >= 0 && type <= CPT_LAST_TOKEN ? kindNames.names[type] : nullptr;
}
