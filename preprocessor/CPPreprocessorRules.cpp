// The preprocessor node family as data: each kind's base kind (for isKindOf) and the pattern its
// children must match (for validate). A kind without a pattern takes any children.
#include "CPPreprocessorFilter.h"

namespace {

typedef TBPValidationRule<CPParseNodeType> Rule;

#define ONE(t) {t, ' ', nullptr}
#define OPT(t) {t, '?', nullptr}
#define ANY(t) {t, '*', nullptr}
#define SOME(t) {t, '+', nullptr}
#define GROUP(op, list) {0, op, list}
#define END {0, 0, nullptr}

// Units and bodies: ( (directive | run | unit | body) NEWLINE? )*
const Rule unitItem[] = {ONE(CPN_PreprocessorDirective), ONE(CPN_PreprocessorPPTokens),
                         ONE(CPN_PreprocessorUnit), ONE(CPN_PreprocessorIfBody), END};
const Rule unitLine[] = {GROUP('|', unitItem), OPT(CPT_NEWLINE), END};
const Rule unitRules[] = {GROUP('*', unitLine), OPT(CPT_EOF), END};
const Rule ifBodyRules[] = {GROUP('*', unitLine), END};

// #define NAME [ ( (NAME ,)* (NAME | ...) ...? ) ] body?
const Rule paramComma[] = {ONE(CPT_IDENTIFIER), ONE(CPT_COMMA), END};
const Rule lastParam[] = {ONE(CPT_IDENTIFIER), OPT(CPT_ELLIPSE), END};
const Rule paramList[] = {ONE(CPT_LEFT_PAREN), GROUP('*', paramComma), GROUP('?', lastParam),
                          OPT(CPT_ELLIPSE), ONE(CPT_RIGHT_PAREN), END};
const Rule defineRules[] = {ONE(CPT_POUND), ONE(CPT_kw_define), ONE(CPT_IDENTIFIER),
                            GROUP('?', paramList), OPT(CPN_PreprocessorDefineBody), END};
const Rule undefRules[] = {ONE(CPT_POUND), ONE(CPT_kw_undef), ONE(CPT_IDENTIFIER), END};
const Rule defineStringRules[] = {ONE(CPT_POUND), OPT(CPT_IDENTIFIER), END};
const Rule defineArgRules[] = {ONE(CPT_IDENTIFIER), END};

// Names behind #ifdef, #ifndef: an identifier or a builtin.
const Rule builtinKinds[] = {ONE(CPT_kw___cplusplus), ONE(CPT_kw___STDC__),
                             ONE(CPT_kw___STDC_VERSION__), ONE(CPT_kw___STDC_HOSTED__),
                             ONE(CPT_kw___LINE__), ONE(CPT_kw___FILE__), ONE(CPT_kw___DATE__),
                             ONE(CPT_kw___TIME__), ONE(CPT_kw___TIMESTAMP__), END};
const Rule conditionName[] = {ONE(CPT_IDENTIFIER), GROUP('|', builtinKinds), END};
const Rule builtinRules[] = {GROUP('|', builtinKinds), END};
const Rule ifRules[] = {ONE(CPT_POUND), ONE(CPT_kw_if), ONE(CPN_PreprocessorIfExpression), END};
const Rule ifdefRules[] = {ONE(CPT_POUND), ONE(CPT_kw_ifdef), GROUP('|', conditionName), END};
const Rule ifndefRules[] = {ONE(CPT_POUND), ONE(CPT_kw_ifndef), GROUP('|', conditionName), END};
const Rule elifRules[] = {ONE(CPT_POUND), ONE(CPT_kw_elif), OPT(CPN_PreprocessorIfExpression),
                          END};
const Rule elseRules[] = {ONE(CPT_POUND), ONE(CPT_kw_else), END};
const Rule endifRules[] = {ONE(CPT_POUND), ONE(CPT_kw_endif), ANY(CPT_IDENTIFIER), END};
const Rule openers[] = {ONE(CPN_PreprocessorIf), ONE(CPN_PreprocessorIfdef),
                        ONE(CPN_PreprocessorIfndef), END};
const Rule elifPart[] = {ONE(CPN_PreprocessorElif), ONE(CPT_NEWLINE),
                         ONE(CPN_PreprocessorIfBody), END};
const Rule elsePart[] = {ONE(CPN_PreprocessorElse), ONE(CPT_NEWLINE),
                         ONE(CPN_PreprocessorIfBody), END};
const Rule ifGroupRules[] = {GROUP('|', openers), ONE(CPT_NEWLINE), ONE(CPN_PreprocessorIfBody),
                             GROUP('*', elifPart), GROUP('?', elsePart),
                             ONE(CPN_PreprocessorEndif), END};

const Rule emptyRules[] = {ONE(CPT_POUND), END};
const Rule includeRules[] = {ONE(CPT_POUND), ONE(CPT_kw_include),
                             ONE(CPN_PreprocessorIncludeArg), END};

const CPPreprocessorKindInfo kinds[] = {
    {CPN_PreprocessorFilter, CPT_NULL, nullptr},
    {CPN_PreprocessorUnit, CPN_PreprocessorFilter, unitRules},
    {CPN_PreprocessorPPTokens, CPN_PreprocessorFilter, nullptr},
    {CPN_PreprocessorIfExpression, CPN_PreprocessorPPTokens, nullptr},
    {CPN_PreprocessorIncludeArg, CPN_PreprocessorPPTokens, nullptr},
    {CPN_PreprocessorIfBody, CPN_PreprocessorFilter, ifBodyRules},
    {CPN_PreprocessorBuiltin, CPN_PreprocessorFilter, builtinRules},
    {CPN_PreprocessorMacro, CPN_PreprocessorFilter, nullptr},
    {CPN_PreprocessorMacroArg, CPN_PreprocessorFilter, nullptr},
    {CPN_PreprocessorDefineArg, CPN_PreprocessorFilter, defineArgRules},
    {CPN_PreprocessorDefineBody, CPN_PreprocessorFilter, nullptr},
    {CPN_PreprocessorDefineConcat, CPN_PreprocessorFilter, nullptr},
    {CPN_PreprocessorDefineString, CPN_PreprocessorFilter, defineStringRules},
    {CPN_PreprocessorDirective, CPN_PreprocessorFilter, nullptr},
    {CPN_PreprocessorEmpty, CPN_PreprocessorDirective, emptyRules},
    {CPN_PreprocessorUnknown, CPN_PreprocessorDirective, nullptr},
    {CPN_PreprocessorError, CPN_PreprocessorDirective, nullptr},
    {CPN_PreprocessorLine, CPN_PreprocessorDirective, nullptr},
    {CPN_PreprocessorPragma, CPN_PreprocessorDirective, nullptr},
    {CPN_PreprocessorUsing, CPN_PreprocessorDirective, nullptr},
    {CPN_PreprocessorImport, CPN_PreprocessorDirective, nullptr},
    {CPN_PreprocessorInclude, CPN_PreprocessorDirective, includeRules},
    {CPN_PreprocessorConfigFile, CPN_PreprocessorDirective, nullptr},
    {CPN_PreprocessorDefine, CPN_PreprocessorDirective, defineRules},
    {CPN_PreprocessorUndef, CPN_PreprocessorDirective, undefRules},
    {CPN_PreprocessorIfGroup, CPN_PreprocessorDirective, ifGroupRules},
    {CPN_PreprocessorIfBase, CPN_PreprocessorDirective, nullptr},
    {CPN_PreprocessorIf, CPN_PreprocessorIfBase, ifRules},
    {CPN_PreprocessorIfdef, CPN_PreprocessorIfBase, ifdefRules},
    {CPN_PreprocessorIfndef, CPN_PreprocessorIfBase, ifndefRules},
    {CPN_PreprocessorElif, CPN_PreprocessorIfBase, elifRules},
    {CPN_PreprocessorElse, CPN_PreprocessorDirective, elseRules},
    {CPN_PreprocessorEndif, CPN_PreprocessorDirective, endifRules},
};

}  // namespace

const CPPreprocessorKindInfo* cpPreprocessorKindInfo(int kind) {
    for (const CPPreprocessorKindInfo& info : kinds)
        if (info.kind == kind) return &info;
    return nullptr;
}
