// qbrefactor parse as the corpus harness and users run it: the kept text, and errors in the
// compiler's format.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "support/CliRunner.h"

namespace {

const std::string examples = QB_SOURCE_DIR "/examples/";

std::string readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string writeTemp(const std::string& name, const std::string& text) {
    std::string path = "/tmp/qbparse_" + std::to_string(::getpid()) + "_" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

}  // namespace

TEST(ParseCli, EmitGivesBackEveryByteOfEachFile) {
    std::string file = examples + "src/geometry.c";
    Outcome o = runCli("parse --emit -I " + examples + "include " + file);
    EXPECT_EQ(o.exitCode, 0) << o.output;
    EXPECT_EQ(o.output, readAll(file));
    // Unfound headers, macros and inactive code are all kept as written.
    std::string odd = writeTemp("odd.c",
                                "#include <nowhere.h>\r\n#define M(x) x +\\\n 1\n#if 0\n'unbalanced\n"
                                "#endif\nint y = M(2); /* end */");
    Outcome kept = runCli("parse --emit --no-config " + odd);
    EXPECT_EQ(kept.exitCode, 0);
    EXPECT_TRUE(contains(kept.output, readAll(odd))) << kept.output;
    EXPECT_TRUE(contains(kept.output, "odd.c:1:10: error: Cannot find include file 'nowhere.h'"))
        << kept.output;
    std::remove(odd.c_str());
}

TEST(ParseCli, ErrorsComeAsFileLineColumn) {
    std::string bad = writeTemp("bad.c", "int a[;\n");
    Outcome o = runCli("parse " + bad);
    EXPECT_EQ(o.exitCode, 1);
    EXPECT_TRUE(contains(o.output, bad + ":1:")) << o.output;
    EXPECT_TRUE(contains(o.output, ": error: ")) << o.output;
    std::remove(bad.c_str());
}

TEST(ParseCli, WithoutAConfigurationNothingIsPredefined) {
    std::string file = writeTemp("cfg.c",
                                 "#include <math.h>\n#if defined(__GNUC__) || defined(__x86_64__)\n"
                                 "int gnu;\n#else\nint plain;\n#endif\n");
    Outcome none = runCli("preprocess --no-config " + file);
    EXPECT_EQ(none.exitCode, 1) << none.output;
    EXPECT_TRUE(contains(none.output, "Cannot find include file 'math.h'")) << none.output;
    EXPECT_TRUE(contains(none.output, "int plain;")) << none.output;
    Outcome given = runCli("preprocess --no-config -D __x86_64__=1 -isystem " + examples +
                           "include " + file);
    EXPECT_TRUE(contains(given.output, "int gnu;")) << given.output;
    Outcome detected = runCli("preprocess " + file);
    EXPECT_EQ(detected.exitCode, 0) << detected.output;
    EXPECT_TRUE(contains(detected.output, "sqrt")) << detected.output;
    EXPECT_TRUE(contains(detected.output, "int gnu;")) << detected.output;
    std::remove(file.c_str());
}
