#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CPPreprocessorIfAdapter.h"
#include "CPPreprocessorNodes.h"
#include "support/PreprocessorTestKit.h"

namespace {

// Each case is compared token by token with what gcc makes of it.
const char* const gccCases[] = {
    "#define N 10\n#define SQ(x) ((x)*(x))\nint a = N; int b = SQ(N+1);\n",
    "#define A B + 1\n#define B 2\n#define F(x) G(x) * 2\n#define G(y) (y - A)\nint v = F(A);\n",
    "#define S(x) #x\nconst char* s = S(hello   world); const char* t = S( a  +  \"q\" );\n",
    "#define CAT(a,b) a ## b\nint CAT(foo, bar) = CAT(1, 2);\n#define XY 42\nint z = CAT(X, Y);\n",
    "#define P(fmt, ...) printf(fmt, __VA_ARGS__)\nP(\"%d %d\", 1, 2);\n"
    "#define V(...) g(__VA_ARGS__)\nV(1,2,3); V();\n",
    "#define E(fmt, args...) p(fmt, ## args)\nE(\"x\"); E(\"y\", 1, 2);\n",
    "#define e(fmt, ...) p(fmt, ## __VA_ARGS__)\ne(\"x\"); e(\"x\", 1);\n",
    "#define r r + 1\nint r0 = r;\n#define foo bar\n#define bar foo\nint q = foo + bar;\n",
    "#define f(x) x\nint f = 1; int (*g)(int) = f; int h = f(3);\n",
    "#define ADD(a, b) a + b\nint s = ADD(1,\n  2\n  );\n",
    "#define F2(a, b) [a|b]\nF2(,) F2(1,) F2(,2)\n#define F0() zero\nF0()\n",
    "#define f (x)\nint y = f;\n",
    "#define X\n#ifdef X\nyes\n#else\nno\n#endif\n#ifndef Y\nny\n#else\nnn\n#endif\n",
    "#define a 1\n#undef a\n#define a 2\nint v = a;\n",
    "#define MAX(a,b) ((a)>(b)?(a):(b))\nint m = MAX(MAX(1,2), 3);\n",
    "#define ID(x) x\n#define CALL ID(5)\nint c = CALL;\n",
    "#define GLUE(a,b) a##b\n#define HALF 21\nint h = GLUE(HA, LF);\n",
    "#define STR(...) #__VA_ARGS__\nchar* v = STR(1, 2,3);\n",
    "#define L1 __LINE__\nint line = __LINE__;\n",
};

}  // namespace

TEST(MacroExpansion, MatchesGccTokenByToken) {
    for (const char* text : gccCases) {
        bool ok = false;
        std::vector<std::string> expected = gccSpellings(text, ok);
        if (!ok) GTEST_SKIP() << "gcc is not available";
        PreprocessorRun run(text);
        EXPECT_EQ(joinSpellings(run.spellings()), joinSpellings(expected)) << text;
    }
}

// Where this preprocessor differs from the standard on purpose: the oldest live definition wins,
// definitions of one name are chosen by argument count, and `#` sees the expanded argument.
TEST(MacroExpansion, OwnRulesForSeveralDefinitions) {
    PreprocessorRun twice("#define a 1\n#define a 2\nint v = a;\n");
    EXPECT_EQ(joinSpellings(twice.spellings()), "int v = 1 ;");
    PreprocessorRun arity("#define f(x) 1\n#define f(x,y) 2\nf(0) f(0,0)\n");
    EXPECT_EQ(joinSpellings(arity.spellings()), "1 2");
    PreprocessorRun quoted("#define A 1\n#define S(x) #x\nS(A)\n");
    EXPECT_EQ(joinSpellings(quoted.spellings()), "\"1\"");
    PreprocessorRun alias("#define A B\n#define B(x) [x]\nA(1)\n");
    EXPECT_EQ(joinSpellings(alias.spellings()), "[ 1 ]");
    PreprocessorRun ident("__identifier(class) x;\n");
    EXPECT_EQ(joinSpellings(ident.spellings()), "class x ;");
    PreprocessorRun variant("_VARIANT_BOOL bool;\nint a = _VARIANT_BOOL;\n");
    EXPECT_EQ(joinSpellings(variant.spellings()), "int a = _VARIANT_BOOL ;");
    PreprocessorRun wide("#define W(x) L#x\nW(abc)\n");
    EXPECT_EQ(joinSpellings(wide.spellings()), "L\"abc\"");
    PreprocessorRun empty("#define f(a,b) a ## b\n[f(,)]\n");
    EXPECT_EQ(joinSpellings(empty.spellings()), "[ ]");
}

TEST(MacroExpansion, RecursionThroughAnotherMacroStops) {
    PreprocessorRun run("#define a b a\n#define b a b\na b\n#define g(x) g(x) h(x)\n#define h(x) g(x)\ng(1)\n");
    std::vector<std::string> tokens = run.spellings();
    EXPECT_LT(tokens.size(), 40u);
    EXPECT_FALSE(tokens.empty());
}

TEST(MacroExpansion, BuiltinsAndTheirOverride) {
    PreprocessorRun run("__cplusplus __STDC__ __LINE__\n__LINE__ __FILE__\n");
    EXPECT_EQ(joinSpellings(run.spellings()), "199711L 1 1 2 \"test.c\"");
    PreprocessorRun over("#define __cplusplus 201103L\n__cplusplus\n");
    EXPECT_EQ(joinSpellings(over.spellings()), "201103L");
    PreprocessorRun date("__DATE__ __TIME__\n");
    std::vector<std::string> tokens = date.spellings();
    ASSERT_EQ(tokens.size(), 2u);
    EXPECT_EQ(tokens[0].size(), 13u);  // "Mmm dd yyyy"
    EXPECT_EQ(tokens[1].size(), 10u);  // "hh:mm:ss"
}

TEST(MacroDefinitionOptions, DefineAndUndefineFromOptions) {
    PreprocessorRun run("FOO BAR MSG\n");
    EXPECT_EQ(run.pp().addDefineOption("-DFOO=3,BAR"), 0);
    EXPECT_EQ(run.pp().addDefineOption("\"/DMSG=\"a,b\"\""), 0);
    EXPECT_EQ(run.pp().addDefineOption("-Xfoo"), -3015);
    EXPECT_EQ(joinSpellings(run.spellings()), "3 1 \"a,b\"");

    PreprocessorRun undone("#define FOO 5\nFOO\n");
    EXPECT_EQ(undone.pp().addDefineOption("-DFOO=3"), 0);
    EXPECT_EQ(undone.pp().addDefineOption("-UFOO"), 0);
    EXPECT_EQ(joinSpellings(undone.spellings()), "5");

    PreprocessorRun first("#define FOO 5\nFOO\n");
    EXPECT_EQ(first.pp().addDefineOption("-DFOO=3"), 0);
    EXPECT_EQ(joinSpellings(first.spellings()), "3");
    PreprocessorRun bad("x\n");
    EXPECT_EQ(bad.pp().addDefineOption("-D(=1"), -1);
}

TEST(MacroDefinitions, RedefinitionWarnsAndKeepsBoth) {
    PreprocessorRun run("#define a 1\n#define a  1\n#define a 2\na\n");
    run.spellings();
    const CPMacroTable::EntryList* entries =
        run.pp().getMacroTable().find(quernbase::QBString("a"));
    ASSERT_TRUE(entries);
    EXPECT_EQ(entries->count(), 3u);
    TBPErrorLog<CPParseNodeType> log;
    run.pp().getOutputTree()->collectErrors(log);
    int redefined = 0;
    for (int i = 0; i < log.getCount(); ++i)
        redefined += log.getRecord(i)->code == qbmsg::MacroRedefined ? 1 : 0;
    EXPECT_EQ(redefined, 1);
    // Each name of the macro in the file is a reference of the definition that applied.
    EXPECT_EQ((*entries)[0]->getReferenceCount(), 2u);
}

TEST(MacroDefinitions, ShapeOfAFunctionLikeDefine) {
    PreprocessorRun run("#define f(a, b, ...) a b __VA_ARGS__\n#define g (x)\n#define h(args...) args\n");
    ASSERT_EQ(run.pp().readSourceTree(), 0);
    CPPreprocessorUnit* unit = run.pp().getSourceTree();
    auto* f = static_cast<CPPreprocessorDefine*>(unit->getChild(0));
    auto* g = static_cast<CPPreprocessorDefine*>(unit->getChild(2));
    auto* h = static_cast<CPPreprocessorDefine*>(unit->getChild(4));
    EXPECT_TRUE(f->isFunctionLike());
    EXPECT_TRUE(f->isVariadic());
    EXPECT_EQ(f->formalCount(), 3u);
    EXPECT_EQ(std::string(f->getFormal(2).get()), "__VA_ARGS__");
    EXPECT_EQ(f->formalIndex("b"), 1);
    EXPECT_TRUE(f->isLastFormal("__VA_ARGS__"));
    EXPECT_FALSE(g->isFunctionLike());
    EXPECT_TRUE(h->isVariadic());
    EXPECT_TRUE(h->isLastFormal("args"));
    EXPECT_EQ(f->validate(), 0);
    EXPECT_EQ(h->validate(), 0);
}

namespace {

// The parser's #if evaluator for one test; the preprocessor alone has none.
struct RealEvaluator {
    RealEvaluator() { cpInstallIfEvaluator(); }
    ~RealEvaluator() { CPPreprocessor::setIfEvaluator(nullptr); }
};

// Renames every reference of a symbol, as a rename of the macro would.
void renameReferences(TBPSymbolInfo<CPParseNodeType>* symbol, const char* to) {
    for (unsigned i = 0; i < symbol->getReferenceCount(); ++i) {
        TBPParseNode<CPParseNodeType>* node = symbol->getReference(i);
        ASSERT_TRUE(node && node->isToken());
        static_cast<TBPToken<CPParseNodeType>*>(node)->setSpelling(to);
    }
}

}  // namespace

TEST(MacroSymbols, EveryNameOfAMacroIsAReferenceAndARenameFollowsThem) {
    const std::string text =
        "#define LIMIT 8\n#ifdef LIMIT\nint a[LIMIT];\n#endif\n#if defined(LIMIT) && LIMIT > 2\n"
        "#define TWICE (LIMIT * 2)\nint b = TWICE + TWICE;\n#endif\n#undef LIMIT\nint LIMIT_X;\n";
    RealEvaluator evaluator;
    PreprocessorRun run(text);
    run.spellings();
    const CPMacroTable::EntryList* entries = run.pp().getMacroTable().find(quernbase::QBString("LIMIT"));
    ASSERT_TRUE(entries);
    ASSERT_EQ(entries->count(), 1u);
    CPMacroTable::Symbol* limit = (*entries)[0];
    EXPECT_EQ(CPMacroTable::definitionOf(limit), limit->getDefinition());
    // The define, #ifdef, the call in the text, defined, the #if's call, the call in TWICE's
    // body (once, though it ran twice) and #undef.
    std::vector<unsigned> lines;
    for (unsigned i = 0; i < limit->getReferenceCount(); ++i)
        lines.push_back(static_cast<TBPToken<CPParseNodeType>*>(limit->getReference(i))->getLine());
    EXPECT_EQ(lines, (std::vector<unsigned>{1, 2, 3, 5, 5, 6, 9}));
    renameReferences(limit, "MAX_ITEMS");
    std::string renamed = text;
    for (size_t at; (at = renamed.find("LIMIT ")) != std::string::npos ||
                    (at = renamed.find("LIMIT]")) != std::string::npos ||
                    (at = renamed.find("LIMIT)")) != std::string::npos ||
                    (at = renamed.find("LIMIT\n")) != std::string::npos;)
        renamed.replace(at, 5, "MAX_ITEMS");
    EXPECT_EQ(run.sourceText(), renamed);
    EXPECT_NE(renamed.find("int LIMIT_X;"), std::string::npos);
}

TEST(MacroSymbols, ParametersAreSymbolsOfTheirDefine) {
    PreprocessorRun run("#define SHOW(val, label) print(#label, val, val)\nSHOW(x, y);\n");
    ASSERT_EQ(run.pp().readSourceTree(), 0);
    CPPreprocessorFilter* define = run.pp().getSourceTree()->getFilterChild(0);
    ASSERT_TRUE(define && define->getType() == CPN_PreprocessorDefine);
    auto* val = define->findSymbolList(quernbase::QBString("val"));
    auto* label = define->findSymbolList(quernbase::QBString("label"));
    ASSERT_TRUE(val && label);
    ASSERT_EQ(val->count(), 1u);
    EXPECT_EQ((*val)[0]->getReferenceCount(), 3u);
    EXPECT_EQ((*label)[0]->getReferenceCount(), 2u);
    EXPECT_EQ((*val)[0]->getScope(), define);
    renameReferences((*val)[0], "v");
    EXPECT_EQ(run.sourceText(), "#define SHOW(v, label) print(#label, v, v)\nSHOW(x, y);\n");
    EXPECT_EQ(joinSpellings(run.spellings()), "print ( \"y\" , x , x ) ;");
}

TEST(MacroSymbols, UndefineOptionForgetsEveryEntry) {
    PreprocessorRun run("#ifdef A\nyes\n#else\nno\n#endif\n");
    EXPECT_EQ(run.pp().addDefineOption("-DA=1,B"), 0);
    EXPECT_TRUE(run.pp().getMacroTable().find(quernbase::QBString("B")));
    EXPECT_EQ(run.pp().addDefineOption("-UA"), 0);
    EXPECT_FALSE(run.pp().getMacroTable().find(quernbase::QBString("A")));
    EXPECT_EQ(joinSpellings(run.spellings()), "no");
}
