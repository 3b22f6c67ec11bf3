// qbrefactor lex: listing, emitting and round-tripping files as a user runs it.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "support/CliRunner.h"

namespace {

std::string writeTemp(const std::string& name, const std::string& bytes) {
    std::string path = std::string(QB_BINARY_DIR) + "/" + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

}  // namespace

TEST(CliLex, ListsTokensWithPositionsAndDiagnostics) {
    std::string file = writeTemp("lex_list.c", "int x = $;\n");
    Outcome o = runCli("lex " + file);
    EXPECT_EQ(o.exitCode, 0) << o.output;
    EXPECT_TRUE(contains(o.output, "int 46 @0 1:1 \"int\"")) << o.output;
    EXPECT_TRUE(contains(o.output, "IDENTIFIER 3 @4")) << o.output;
    EXPECT_TRUE(contains(o.output, "GARBAGE_CHAR 12 @8")) << o.output;
    EXPECT_TRUE(contains(o.output, "-8006") || contains(o.output, "error")) << o.output;
    EXPECT_TRUE(contains(o.output, "NEWLINE 9 @10 1:11 \"\\n\"")) << o.output;
}

TEST(CliLex, EmitGivesBackEveryByteEvenZeros) {
    std::string bytes("a\0b /* \xff */ \"x\r\n", 16);
    std::string file = writeTemp("lex_emit.c", bytes);
    Outcome o = runCli("lex --emit " + file);
    EXPECT_EQ(o.exitCode, 0);
    EXPECT_EQ(o.output, bytes);
}

TEST(CliLex, RoundTripNamesWhatFailsAndExitsNonZero) {
    std::string good = writeTemp("lex_good.c", "int main() { return 0; }\n");
    Outcome ok = runCli("lex --roundtrip " + good + " " QB_SOURCE_DIR "/lexer/CPScanner.cpp");
    EXPECT_EQ(ok.exitCode, 0) << ok.output;
    EXPECT_TRUE(contains(ok.output, "2 files, 2 identical, 0 differ, 0 unreadable")) << ok.output;
    Outcome missing = runCli("lex --roundtrip " + good + " /nonexistent/x.c");
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(contains(missing.output, "/nonexistent/x.c: error:")) << missing.output;
    EXPECT_TRUE(contains(missing.output, "1 unreadable")) << missing.output;
    EXPECT_EQ(runCli("lex --emit a.c b.c").exitCode, 2);
    EXPECT_EQ(runCli("lex").exitCode, 2);
}
