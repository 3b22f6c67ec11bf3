// What the engine asks of the host's macro code while it works, and how the answers steer it.
#include <gtest/gtest.h>

#include <string>

#include "support/ModuleHost.h"
#include "QBRefactorCallbacks.h"

using namespace testhost;

namespace {

int begin() { return run("refactor_begin_transaction"); }
void cancel(int t) { run("refactor_cancel_transaction", {qbArgInt(t)}); }

void addFile(int t, const std::string& name) {
    ASSERT_EQ(run("refactor_add_file", {qbArgInt(t), qbArgString(name.c_str()), qbArgString(""),
                                        qbArgString(""), qbArgString(""), qbArgString("")}),
              0);
}

int parse(int t) { return run("refactor_c_parse", {qbArgInt(t), qbArgInt(0)}); }

std::string rule() { return std::string(70, '/') + "\n"; }

}  // namespace

TEST(Callbacks, FilesAreReportedInExtensionThenNameOrder) {
    loadModule();
    std::string dir = scratchDir();
    for (const char* n : {"/b.cpp", "/a.h", "/a.cpp"}) writeFile(dir + n, "int x;\n");
    MacroRecorder files("refactor_file_message");
    int t = begin();
    addFile(t, dir + "/b.cpp");
    addFile(t, dir + "/a.h");
    addFile(t, dir + "/a.cpp");
    EXPECT_EQ(parse(t), 0);
    ASSERT_EQ(files.calls.size(), 3u);
    EXPECT_EQ(files.calls[0], (std::vector<std::string>{dir + "/a.cpp", "1", "3"}));
    EXPECT_EQ(files.calls[1], (std::vector<std::string>{dir + "/b.cpp", "2", "3"}));
    EXPECT_EQ(files.calls[2], (std::vector<std::string>{dir + "/a.h", "3", "3"}));
    cancel(t);
}

TEST(Callbacks, ProgressAndMessagesReachTheHost) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/a.c", "int a;\n");
    MacroRecorder progress("refactor_progress"), messages("refactor_message");
    int t = begin();
    addFile(t, dir + "/a.c");
    EXPECT_EQ(parse(t), 0);
    ASSERT_FALSE(progress.calls.empty());
    EXPECT_EQ(progress.calls[0], (std::vector<std::string>{"0", "100"}));
    ASSERT_GE(messages.calls.size(), 2u);
    EXPECT_EQ(messages.calls[0][0], "Parsing");
    EXPECT_EQ(messages.calls.back()[0], "Releasing the parser");
    cancel(t);
}

TEST(Callbacks, NegativeProgressAnswerCancelsTheParse) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/a.c", "int a;\n");
    writeFile(dir + "/b.c", "int b;\n");
    MacroRecorder progress("refactor_progress", -1);
    MacroRecorder files("refactor_file_message");
    int t = begin();
    addFile(t, dir + "/a.c");
    addFile(t, dir + "/b.c");
    EXPECT_EQ(parse(t), -2038);
    EXPECT_EQ(files.calls.size(), 1u) << "the walk stops at the first file";
    EXPECT_EQ(run("refactor_count_error_files", {qbArgInt(t)}), 0);
    cancel(t);
}

TEST(Callbacks, NegativeMessageAnswerCancelsTheParse) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/a.c", "int a;\n");
    MacroRecorder messages("refactor_message", -1);
    int t = begin();
    addFile(t, dir + "/a.c");
    EXPECT_EQ(parse(t), -2038);
    cancel(t);
}

TEST(Callbacks, NegativeFileMessageAnswerFailsThatFile) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/a.c", "int a;\n");
    MacroRecorder files("refactor_file_message", -5);
    int t = begin();
    addFile(t, dir + "/a.c");
    EXPECT_EQ(parse(t), -5) << "with one file, there is nothing to skip to";
    cancel(t);
}

TEST(Callbacks, CancelledCommitWritesNothing) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/a.c", "old\n");
    int t = begin();
    int wid = qbHostWindowCreate("new\n");
    run("refactor_set_modified_file_contents",
        {qbArgInt(wid), qbArgInt(t), qbArgString((dir + "/a.c").c_str())});
    {
        MacroRecorder messages("refactor_message", -2038);
        EXPECT_EQ(run("refactor_commit_transaction", {qbArgInt(t)}), -2038);
    }
    EXPECT_EQ(readFile(dir + "/a.c"), "old\n");
    EXPECT_EQ(run("refactor_count_modified_files", {qbArgInt(t)}), 1);
    EXPECT_EQ(run("refactor_commit_transaction", {qbArgInt(t)}), 0);
    EXPECT_EQ(readFile(dir + "/a.c"), "new\n");
    qbHostWindowDestroy(wid);
}

TEST(Callbacks, PromptToSkipIsAskedOnceAndItsAnswerKept) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/z.c", "int z;\n");
    MacroRecorder prompt("refactor_prompt_to_skip", 1);
    int t = begin();
    addFile(t, dir + "/a.c");  // a.c and b.c don't exist
    addFile(t, dir + "/b.c");
    addFile(t, dir + "/z.c");
    EXPECT_EQ(parse(t), 0);
    ASSERT_EQ(prompt.calls.size(), 1u);
    EXPECT_EQ(prompt.calls[0][0], dir + "/a.c");
    EXPECT_EQ(run("refactor_count_errors", {qbArgInt(t), qbArgString("")}), 2);
    cancel(t);
}

TEST(Callbacks, NegativePromptAnswerEndsTheWalk) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/z.c", "int z;\n");
    MacroRecorder prompt("refactor_prompt_to_skip", -9);
    MacroRecorder files("refactor_file_message");
    int t = begin();
    addFile(t, dir + "/a.c");
    addFile(t, dir + "/z.c");
    EXPECT_EQ(parse(t), -9);
    EXPECT_EQ(files.calls.size(), 1u);
    cancel(t);
}

TEST(Callbacks, MissingMacroFunctionsGetNoCall) {
    loadModule();
    std::string dir = scratchDir();
    int t = begin();
    addFile(t, dir + "/a.c");
    addFile(t, dir + "/b.c");
    const char* names[] = {"refactor_prompt_to_skip", "refactor_show_errors", "refactor_progress"};
    int before[3];
    for (int i = 0; i < 3; ++i) before[i] = qbHostMacroCallCount(names[i]);
    // No prompt function: the first failure ends the walk with its own status.
    EXPECT_EQ(parse(t), -7516);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(qbHostMacroCallCount(names[i]), before[i]) << names[i];
    cancel(t);
}

// The callbacks as the engine library itself holds them, with this process as host.
TEST(Callbacks, ShowErrorsWithoutTheHostFunctionGives3024) {
    EXPECT_EQ(showFileErrors(0, "a.c"), -3024);
    MacroRecorder shown("refactor_show_errors", 4);
    EXPECT_EQ(showFileErrors(7, "a.c"), 4);
    ASSERT_EQ(shown.calls.size(), 1u);
    EXPECT_EQ(shown.calls[0], (std::vector<std::string>{"7", "a.c"}));
}

TEST(Callbacks, LocateFileCopiesTheAnswerIntoTheBuffer) {
    char buffer[8] = "zzzzzzz";
    EXPECT_EQ(qbRefactorLocateFile(1, "main.c", "x.h", buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "") << "no host function: an empty buffer";
    qbHostRegisterMacroFunction(
        "refactor_locate_file",
        [](void*, int argc, const QBArgRecord* args) {
            if (argc != 4 || args[3].tag != QBARG_VAR) return -1;
            qbVarSetString(int(args[3].value), "/usr/include/x.h");
            return 0;
        },
        nullptr);
    EXPECT_EQ(qbRefactorLocateFile(1, "main.c", "x.h", buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "/usr/in") << "cut to size - 1";
    qbHostUnregisterMacroFunction("refactor_locate_file");
}

TEST(Callbacks, PromptToSkipPassesCancelAndUnknownTransactions) {
    MacroRecorder prompt("refactor_prompt_to_skip", 1);
    EXPECT_EQ(promptToSkip(0, "a.c", -2038), -2038);
    EXPECT_EQ(promptToSkip(31337, "a.c", -7516), -7502);
    EXPECT_TRUE(prompt.calls.empty());
}

TEST(Preprocess, EveryFileGetsItsBannerInParseOrder) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/b.c", "int b;\n");
    writeFile(dir + "/a.c", "int a;\n");
    int t = begin();
    addFile(t, dir + "/b.c");
    addFile(t, dir + "/a.c");
    int wid = qbHostWindowCreate("");
    EXPECT_EQ(run("refactor_c_preprocess", {qbArgInt(t), qbArgInt(wid), qbArgInt(1)}), 0);
    std::string text = windowText(wid);
    std::string bannerA = rule() + "// " + dir + "/a.c\n" + rule();
    std::string bannerB = rule() + "// " + dir + "/b.c\n" + rule();
    ASSERT_EQ(text.find(bannerA), 0u) << text;
    EXPECT_NE(text.find(bannerB), std::string::npos) << text;
    EXPECT_LT(text.find(bannerA), text.find(bannerB));
    qbHostWindowDestroy(wid);
    cancel(t);
}

TEST(Preprocess, AnUnknownWindowIsTheHostsStatus) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/a.c", "int a;\n");
    int t = begin();
    addFile(t, dir + "/a.c");
    EXPECT_EQ(run("refactor_c_preprocess", {qbArgInt(t), qbArgInt(987654), qbArgInt(0)}),
              qbmsg::NoWindow);
    cancel(t);
}
