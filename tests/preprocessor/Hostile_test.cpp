// Input built to hurt: deep nesting, huge bodies, calls that never close. Each must end with
// its text intact and a diagnostic where one is due, never a crash, a hang or a leak.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "CPPreprocessorIfAdapter.h"
#include "CPPreprocessorNodes.h"
#include "support/PreprocessorTestKit.h"

namespace {

std::string repeat(const std::string& piece, int n) {
    std::string out;
    out.reserve(piece.size() * size_t(n));
    for (int i = 0; i < n; ++i) out += piece;
    return out;
}

// Runs text to the end; gives the served spellings.
std::vector<std::string> runThrough(PreprocessorRun& run, const std::string& text) {
    std::vector<std::string> spellings = run.spellings();
    EXPECT_EQ(run.sourceText(), text);
    return spellings;
}

// How many messages of code the tree holds, warnings included.
int messagesOf(const TBPParseNode<CPParseNodeType>* tree, int code) {
    TBPErrorLog<CPParseNodeType> log;
    if (tree) tree->collectErrors(log);
    int n = 0;
    for (int i = 0; i < log.getCount(); ++i) n += log.getRecord(i)->code == code ? 1 : 0;
    return n;
}

struct RealEvaluator {
    RealEvaluator() { cpInstallIfEvaluator(); }
    ~RealEvaluator() { CPPreprocessor::setIfEvaluator(nullptr); }
};

}  // namespace

TEST(HostileInput, TenThousandNestedParenthesesInACall) {
    const std::string text = "#define f(x) [x]\nf(" + repeat("(", 10000) + "1" + repeat(")", 10000) + ")\n";
    PreprocessorRun run(text);
    std::vector<std::string> out = runThrough(run, text);
    ASSERT_EQ(out.size(), 20003u);
    EXPECT_EQ(out.front(), "[");
    EXPECT_EQ(out[10001], "1");
    EXPECT_EQ(out.back(), "]");
}

TEST(HostileInput, TenThousandNestedCalls) {
    const std::string text = "#define f(x) x\n" + repeat("f(", 10000) + "7" + repeat(")", 10000) + "\n";
    PreprocessorRun run(text);
    std::vector<std::string> out = runThrough(run, text);
    // The calls nested too deep stay as written, and the reader says where it stopped.
    ASSERT_FALSE(out.empty());
    EXPECT_EQ(out.front(), "f");
    EXPECT_EQ(std::count(out.begin(), out.end(), std::string("7")), 1);
    EXPECT_EQ(messagesOf(run.pp().getSourceTree(), qbmsg::NestedTooDeeply), 1);
    // Within the limit a nest expands fully, read once per level.
    const std::string modest = "#define f(x) x\n" + repeat("f(", 150) + "7" + repeat(")", 150) + "\n";
    PreprocessorRun fine(modest);
    EXPECT_EQ(runThrough(fine, modest), std::vector<std::string>{"7"});
}

TEST(HostileInput, TenThousandNestedParenthesesInAnIf) {
    RealEvaluator evaluator;
    const std::string shallow = "#if " + repeat("(", 20) + "1" + repeat(")", 20) + "\nyes\n#else\nno\n#endif\n";
    PreprocessorRun fine(shallow);
    EXPECT_EQ(runThrough(fine, shallow), std::vector<std::string>{"yes"});
    // Too deep for the expression grammar: like any expression it can't read, false.
    const std::string text = "#if " + repeat("(", 10000) + "1" + repeat(")", 10000) + "\nyes\n#else\nno\n#endif\n";
    PreprocessorRun run(text);
    EXPECT_EQ(runThrough(run, text), std::vector<std::string>{"no"});
}

TEST(HostileInput, AMegabyteBodyExpandsEveryTime) {
    const int words = 1 << 17;  // 8 bytes each: 1 MB
    const std::string text = "#define BIG" + repeat(" item_00", words) + "\nBIG BIG\n";
    PreprocessorRun run(text);
    std::vector<std::string> out = runThrough(run, text);
    EXPECT_EQ(out.size(), size_t(2 * words));
    EXPECT_EQ(out.back(), "item_00");
}

TEST(HostileInput, ACallOpenAtTheEndOfTheFileIsTextAgain) {
    for (const std::string& text : {std::string("#define f(x) x\nint a = f(1, (2;\n"),
                                    std::string("#define f(x) x\nf("),
                                    std::string("#define f(x) x\nf(((\n#define g 1\ng\n")}) {
        PreprocessorRun run(text);
        std::vector<std::string> out = runThrough(run, text);
        ASSERT_FALSE(out.empty()) << text;
        EXPECT_EQ(out[out.size() > 1 && out[0] == "int" ? 3 : 0], "f") << text;
    }
}

TEST(HostileInput, MacrosThatCallEachOtherStop) {
    const std::string text =
        "#define a(x) b(x) + a(x)\n#define b(x) c(x) * a(x)\n#define c(x) a(b(c(x)))\n"
        "a(1) b(2) c(3)\n#define self self\nself\n#define p q\n#define q p\np q\n";
    PreprocessorRun run(text);
    std::vector<std::string> out = runThrough(run, text);
    EXPECT_FALSE(out.empty());
    EXPECT_LT(out.size(), 200u);
    EXPECT_EQ(std::count(out.begin(), out.end(), std::string("self")), 1);
}

TEST(HostileInput, TenThousandNestedGroups) {
    const std::string text = repeat("#ifndef NEVER\n", 10000) + "deep\n" + repeat("#endif\n", 10000) + "after\n";
    PreprocessorRun run(text);
    std::vector<std::string> out = runThrough(run, text);
    ASSERT_FALSE(out.empty());
    EXPECT_EQ(out.back(), "after");
    EXPECT_TRUE(run.pp().getSourceTree()->hasError());
}

TEST(HostileInput, AChainOfTenThousandMacros) {
    std::string text = "#define M0 end\n";
    for (int i = 1; i < 10000; ++i)
        text += "#define M" + std::to_string(i) + " M" + std::to_string(i - 1) + "\n";
    text += "M9999 M500\n";
    PreprocessorRun run(text);
    std::vector<std::string> out = runThrough(run, text);
    ASSERT_EQ(out.size(), 2u);
    // The long chain stops at the limit and says so; a chain within it expands fully.
    EXPECT_NE(out[0], "end");
    EXPECT_EQ(out[1], "end");
    EXPECT_TRUE(run.pp().getSourceTree()->hasError());
}
