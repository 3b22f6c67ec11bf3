#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CPPreprocessorNodes.h"
#include "support/PreprocessorTestKit.h"

namespace {

CPPreprocessedToken* findServed(std::vector<CPPreprocessedToken*>& tokens, const char* spelling,
                                unsigned nth = 0) {
    for (CPPreprocessedToken* t : tokens)
        if (std::string(t->getSpelling().get()) == spelling && nth-- == 0) return t;
    return nullptr;
}

}  // namespace

TEST(WrittenTokens, RenameInAnArgumentEditsTheCallSiteOnly) {
    const std::string text = "#define SQ(x) ((x)*(x))\nint v = SQ(count) + count;\n";
    PreprocessorRun run(text);
    std::vector<CPPreprocessedToken*> tokens = run.served();
    CPPreprocessedToken* inArgument = findServed(tokens, "count");
    ASSERT_TRUE(inArgument);
    EXPECT_EQ(inArgument->setSpelling("total"), 0);
    EXPECT_EQ(run.sourceText(), "#define SQ(x) ((x)*(x))\nint v = SQ(total) + count;\n");
    // Both uses in the expansion are the one written token.
    EXPECT_TRUE(findServed(tokens, "total", 1));
    EXPECT_TRUE(findServed(tokens, "count"));
    releaseTokens(tokens);
}

TEST(WrittenTokens, RenameInABodyEditsTheDefine) {
    PreprocessorRun run("#define LIMIT (max_items + 1)\nint v = LIMIT;\n");
    std::vector<CPPreprocessedToken*> tokens = run.served();
    CPPreprocessedToken* fromBody = findServed(tokens, "max_items");
    ASSERT_TRUE(fromBody);
    EXPECT_EQ(fromBody->setSpelling("max_total"), 0);
    EXPECT_EQ(run.sourceText(), "#define LIMIT (max_total + 1)\nint v = LIMIT;\n");
    releaseTokens(tokens);
}

TEST(WrittenTokens, FirstTokenOfAnExpansionLeadsToTheCallSite) {
    PreprocessorRun run("int a;\n#define SQ(x) ((x)*(x))\nint v = SQ(n);\n");
    std::vector<CPPreprocessedToken*> tokens = run.served();
    ASSERT_GE(tokens.size(), 7u);
    CPPreprocessedToken* open = tokens[6];  // int a ; int v = (
    ASSERT_EQ(std::string(open->getSpelling().get()), "(");
    TBPToken<CPParseNodeType>* written = open->getWrittenToken();
    ASSERT_TRUE(written);
    EXPECT_EQ(std::string(written->getSpellingConst().get()), "SQ");
    EXPECT_EQ(written->getLine(), 3u);
    // A later body token is itself, in the #define.
    CPPreprocessedToken* star = findServed(tokens, "*");
    ASSERT_TRUE(star && star->getWrittenToken());
    EXPECT_EQ(star->getWrittenToken()->getLine(), 2u);
    // Ordinary tokens are their own written tokens.
    EXPECT_EQ(tokens[1]->getWrittenToken(), tokens[1]->getSourceToken());
    EXPECT_EQ(tokens[0]->getWrittenToken(), tokens[0]->getSourceToken());
    EXPECT_TRUE(tokens[0]->getOwningUnit());
    releaseTokens(tokens);
}

// Behind a directive that produces nothing, and at the head of a branch, a token that no macro
// made is written where it stands: its file's or branch's first leaf is some `#`.
TEST(WrittenTokens, PlainTokensAreTheirOwnWrittenTokensEverywhere) {
    PreprocessorRun run("#define A 1\nint a;\n#ifndef B\nint b;\n#else\nx\n#endif\nA;\n");
    std::vector<CPPreprocessedToken*> tokens = run.served();
    ASSERT_EQ(tokens.size(), 8u);
    for (unsigned i = 0; i < 6; ++i)
        EXPECT_EQ(tokens[i]->getWrittenToken(), tokens[i]->getSourceToken()) << i;
    ASSERT_TRUE(tokens[6]->getWrittenToken());
    EXPECT_EQ(std::string(tokens[6]->getWrittenToken()->getSpellingConst().get()), "A");
    EXPECT_EQ(tokens[6]->getWrittenToken()->getLine(), 8u);
    releaseTokens(tokens);
}

TEST(WrittenTokens, OwnersFollowEveryPlaceOfAToken) {
    PreprocessorRun run("#define TWICE(x) x x\nTWICE(k)\n");
    std::vector<CPPreprocessedToken*> tokens = run.served();
    ASSERT_EQ(tokens.size(), 2u);
    CPPreprocessorToken* k = tokens[0]->getSourceToken();
    EXPECT_EQ(k, tokens[1]->getSourceToken());
    // The argument in the source tree and the two places in the output.
    EXPECT_GE(k->getOwnerCount(), 3u);
    releaseTokens(tokens);
}

TEST(PreprocessedText, SpacingOnlyWhereTokensWouldFuse) {
    PreprocessorRun run("x = A<B<int> >; y=*p; z = a+b; c = d::e;\n");
    quernbase::QBString out;
    EXPECT_EQ(run.pp().writePreprocessedText(out, false), 0);
    EXPECT_EQ(std::string(out.get()), "x=A<B<int> >;y=*p;z=a+b;c=d::e;");
    // Pairs that would read back as other tokens or open a comment keep a blank.
    const char* source = "a = b + ++c - -d / *p & &q | |r; e = f - >g; h = 1 . 5; i = j- -1;\n";
    PreprocessorRun fusing(source);
    quernbase::QBString text;
    EXPECT_EQ(fusing.pp().writePreprocessedText(text, false), 0);
    EXPECT_EQ(std::string(text.get()), "a=b+ ++c- -d/ *p& &q| |r;e=f- >g;h=1 . 5;i=j- -1;");
    EXPECT_EQ(lexSpellings(text.get()), lexSpellings(source));
}

TEST(PreprocessedText, LinesIndentAndMarkers) {
    PreprocessorRun run("int f() {\n  return 1;\n}\n\n\nint g;\n", "dir\\file.c");
    quernbase::QBString out;
    EXPECT_EQ(run.pp().writePreprocessedText(out, true), 0);
    std::string text = out.get();
    EXPECT_EQ(text.find("#line 1 \"dir/file.c\"\nint f(){\n   return 1;\n}"), 0u) << text;
    EXPECT_NE(text.find("#line 6\n\nint g;"), std::string::npos) << text;
    EXPECT_EQ(text.find("#line 3"), std::string::npos) << text;

    PreprocessorRun plain("int f() {\n  return 1;\n}\n");
    quernbase::QBString flat;
    EXPECT_EQ(plain.pp().writePreprocessedText(flat, false), 0);
    EXPECT_EQ(std::string(flat.get()), "int f(){\n   return 1;\n}");
}

TEST(Conditionals, OnlyTheChosenBranchIsServed) {
    PreprocessorRun run(
        "#define A\n#ifdef A\na1\n#elif B\nb1\n#else\nc1\n#endif\n"
        "#ifndef A\nx\n#else\ny\n#endif\n#ifdef __cplusplus\ncpp\n#endif\n"
        "#ifndef __LINE__\nnever\n#endif\n#ifndef\nnone\n#endif\n");
    EXPECT_EQ(joinSpellings(run.spellings()), "a1 y cpp");
}

TEST(Conditionals, IfWithoutAnEvaluatorTakesNoBranchAndSaysSo) {
    ASSERT_EQ(CPPreprocessor::getIfEvaluator(), nullptr);
    PreprocessorRun run("#if 1\nyes\n#else\nno\n#endif\nafter\n");
    EXPECT_EQ(joinSpellings(run.spellings()), "no after");
    EXPECT_TRUE(run.pp().getSourceTree()->hasError());
}

namespace {
int64_t countTokens(CPPreprocessor*, CPPreprocessorFilter* tokens, int& status) {
    status = 0;
    return tokens->getChildCount() == 1 ? 1 : 0;
}
}  // namespace

TEST(Conditionals, AnInstalledEvaluatorDecidesAndSeesDefinedRaw) {
    CPPreprocessor::setIfEvaluator(countTokens);
    PreprocessorRun run("#define N 1 + 1\n#if N\nthree\n#elif X\none\n#endif\n"
                        "#if defined N\ntwo\n#elif defined(N)\nfour\n#endif\n");
    std::string result = joinSpellings(run.spellings());
    CPPreprocessor::setIfEvaluator(nullptr);
    EXPECT_EQ(result, "one");
}

// A message at a token out of a macro also says where the user wrote it.
TEST(WrittenTokens, AMessageAtAnExpansionNotesTheCallSite) {
    PreprocessorRun run("#define SQ(x) ((x)*(x))\nint a;\nint v =\n  SQ(n);\n");
    std::vector<CPPreprocessedToken*> tokens = run.served();
    ASSERT_GE(tokens.size(), 8u);
    CPParseTree* node = new CPParseTree(CPN_ExpressionList);
    node->addRef();
    node->logErrorAtNode(tokens[6], -8001);     // the expansion's first `(`: from line 4
    node->logWarningAtNode(findServed(tokens, "*"), -8017);  // a body token: its place is its own
    node->logErrorAtNode(tokens[0], -8001);     // plain text
    TBPErrorLog<CPParseNodeType> log;
    node->collectErrors(log);
    std::vector<std::pair<int, std::string>> records;
    for (int i = 0; i < log.getCount(); ++i)
        records.emplace_back(log.getRecord(i)->code, log.getRecord(i)->arguments[1].get());
    EXPECT_EQ(records, (std::vector<std::pair<int, std::string>>{
                           {-8001, "1"}, {-8079, "4"}, {-8017, "1"}, {-8001, "2"}}));
    node->release();
    releaseTokens(tokens);
}
