// The qbrefactor program as a user runs it.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/CliRunner.h"

namespace {

const std::string examples = QB_SOURCE_DIR "/examples/src/";
// The example's own headers; the library's come from the detected configuration.
const std::string includes = "-I " QB_SOURCE_DIR "/examples/include ";

}  // namespace

TEST(Cli, HelpListsTheSubcommands) {
    Outcome o = runCli("--help");
    EXPECT_EQ(o.exitCode, 0);
    EXPECT_TRUE(contains(o.output, "parse ")) << o.output;
    EXPECT_TRUE(contains(o.output, "preprocess ")) << o.output;
    EXPECT_EQ(runCli("").exitCode, 2);
    Outcome unknown = runCli("frobnicate x.c");
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_TRUE(contains(unknown.output, "unknown command 'frobnicate'"));
}

TEST(Cli, ParseOfReadableFilesSucceedsQuietly) {
    Outcome o = runCli("parse " + includes + "-DUSE_TAU=6.28 " + examples + "geometry.c");
    EXPECT_EQ(o.exitCode, 0) << o.output;
    EXPECT_EQ(o.output, "");
}

TEST(Cli, ErrorsArePrintedPerFileAndFailTheRun) {
    Outcome o = runCli("parse " + examples + "geometry.c " + examples + "absent.c");
    EXPECT_EQ(o.exitCode, 1);
    EXPECT_TRUE(contains(o.output, examples + "absent.c:0:0: error: File not found\n")) << o.output;
}

TEST(Cli, StopsAtTheFirstFailureUnlessToldToKeepGoing) {
    std::string files = examples + "a1.c " + examples + "a2.c " + examples + "main.cpp";
    Outcome stop = runCli("parse " + files);
    EXPECT_EQ(stop.exitCode, 1);
    EXPECT_TRUE(contains(stop.output, "a1.c:0:0: error")) << stop.output;
    EXPECT_FALSE(contains(stop.output, "a2.c:0:0: error")) << stop.output;
    EXPECT_TRUE(contains(stop.output, "--keep-going")) << stop.output;

    Outcome go = runCli("parse --keep-going " + files);
    EXPECT_EQ(go.exitCode, 1);
    EXPECT_TRUE(contains(go.output, "a1.c:0:0: error")) << go.output;
    EXPECT_TRUE(contains(go.output, "a2.c:0:0: error")) << go.output;
}

TEST(Cli, PreprocessWritesABannerPerFile) {
    Outcome o = runCli("preprocess " + includes + examples + "main.cpp " + examples + "geometry.c");
    EXPECT_EQ(o.exitCode, 0) << o.output;
    std::string rule(70, '/');
    size_t c = o.output.find(rule + "\n// " + examples + "geometry.c\n" + rule + "\n");
    size_t cpp = o.output.find(rule + "\n// " + examples + "main.cpp\n" + rule + "\n");
    ASSERT_NE(c, std::string::npos) << o.output;
    ASSERT_NE(cpp, std::string::npos) << o.output;
    EXPECT_LT(c, cpp) << "C files come ahead of C++ files";
}

TEST(Cli, MessageFileComesFromQBROOT) {
    Outcome o = runCli("parse " + examples + "absent.c", "QBROOT=/nonexistent/");
    EXPECT_EQ(o.exitCode, 1);
    EXPECT_TRUE(
        contains(o.output, "Unable to open message file '/nonexistent/qbedit.qbb' not found"))
        << o.output;
}

TEST(Cli, BadModuleAndBadOptionsAreReported) {
    Outcome noModule = runCli("parse x.c", "QBREFACTOR_MODULE=/nonexistent/libqbrefactor.so");
    EXPECT_EQ(noModule.exitCode, 2);
    EXPECT_TRUE(contains(noModule.output, "cannot load the engine")) << noModule.output;
    Outcome badOption = runCli("parse --frob x.c");
    EXPECT_EQ(badOption.exitCode, 2);
    EXPECT_TRUE(contains(badOption.output, "unknown or incomplete option '--frob'"));
    Outcome noFiles = runCli("parse -I inc");
    EXPECT_EQ(noFiles.exitCode, 2);
    EXPECT_TRUE(contains(noFiles.output, "no input files"));
    Outcome badDefine = runCli("parse " + includes + "-D \"A B\" " + examples + "geometry.c");
    EXPECT_EQ(badDefine.exitCode, 0) << badDefine.output;
    Outcome noConfig = runCli("parse --config nonesuch " + examples + "geometry.c");
    EXPECT_EQ(noConfig.exitCode, 2);
    EXPECT_TRUE(contains(noConfig.output, "no C or C++ configuration named 'nonesuch'"))
        << noConfig.output;
    EXPECT_EQ(runCli("parse --config gcc --no-config x.c").exitCode, 2);
    EXPECT_EQ(runCli("parse -p").exitCode, 2);
    EXPECT_EQ(runCli("parse -imacros x.h y.c").exitCode, 2);
}
