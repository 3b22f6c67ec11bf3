// A whole transaction through the macro commands, with each status where it belongs.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <dirent.h>
#include <string>

#include "support/ModuleHost.h"

using namespace testhost;

namespace {

const int NO_TRANSACTION = -7502;
const int FILE_NOT_FOUND = -2;
const int CANCELLED = -2038;

int begin() { return run("refactor_begin_transaction"); }

int addFile(int t, const std::string& name, const char* defines = "") {
    return run("refactor_add_file", {qbArgInt(t), qbArgString(name.c_str()), qbArgString(""),
                                     qbArgString(""), qbArgString(defines), qbArgString("")});
}

// Stores text as the new contents of a file, the way an editor hands back a corrected text.
int setModified(int t, const std::string& name, const std::string& text) {
    int wid = qbHostWindowCreate(text.c_str());
    int rc = run("refactor_set_modified_file_contents",
                 {qbArgInt(wid), qbArgInt(t), qbArgString(name.c_str())});
    qbHostWindowDestroy(wid);
    return rc;
}

std::string stringResult(const char* command, std::vector<QBArgRecord> args, int* rc = nullptr) {
    int var = qbHostVarNew();
    args.push_back(qbArgVar(var));
    int result = run(command, args);
    if (rc) *rc = result;
    std::string text = qbVarGetString(var);
    qbVarFreeTemp(var);
    return text;
}

int filesIn(const std::string& dir) {
    int n = 0;
    DIR* d = opendir(dir.c_str());
    while (dirent* e = readdir(d))
        if (e->d_name[0] != '.' || std::string(e->d_name).find("qbrefactor") != std::string::npos)
            n += std::string(e->d_name) != "." && std::string(e->d_name) != "..";
    closedir(d);
    return n;
}

}  // namespace

TEST(Transactions, HandlesCountUpAndAreNeverReused) {
    loadModule();
    int a = begin(), b = begin();
    EXPECT_GE(a, 0);
    EXPECT_EQ(b, a + 1);
    EXPECT_EQ(run("refactor_cancel_transaction", {qbArgInt(a)}), 0);
    EXPECT_EQ(run("refactor_cancel_transaction", {qbArgInt(a)}), NO_TRANSACTION);
    int c = begin();
    EXPECT_EQ(c, b + 1);
    EXPECT_EQ(run("refactor_count_modified_files", {qbArgInt(b)}), 0);
    EXPECT_EQ(run("refactor_cancel_transaction", {qbArgInt(b)}), 0);
    EXPECT_EQ(run("refactor_cancel_transaction", {qbArgInt(c)}), 0);
}

TEST(Transactions, UnknownHandleIsRefusedByEveryCommand) {
    loadModule();
    const int h = 424242;
    int wid = qbHostWindowCreate("x");
    int var = qbHostVarNew();
    EXPECT_EQ(run("refactor_commit_transaction", {qbArgInt(h)}), NO_TRANSACTION);
    EXPECT_EQ(run("refactor_cancel_transaction", {qbArgInt(h)}), NO_TRANSACTION);
    EXPECT_EQ(addFile(h, "a.c"), NO_TRANSACTION);
    EXPECT_EQ(run("refactor_remove_file", {qbArgInt(h), qbArgString("a.c")}), NO_TRANSACTION);
    EXPECT_EQ(run("refactor_add_user_include_directory",
                  {qbArgInt(h), qbArgString("a.c"), qbArgString("inc")}),
              NO_TRANSACTION);
    EXPECT_EQ(run("refactor_count_modified_files", {qbArgInt(h)}), NO_TRANSACTION);
    EXPECT_EQ(run("refactor_get_modified_file_name", {qbArgInt(h), qbArgInt(0), qbArgVar(var)}),
              NO_TRANSACTION);
    EXPECT_EQ(run("refactor_get_modified_file_contents",
                  {qbArgInt(wid), qbArgInt(h), qbArgString("a.c")}),
              NO_TRANSACTION);
    EXPECT_EQ(run("refactor_set_modified_file_contents",
                  {qbArgInt(wid), qbArgInt(h), qbArgString("a.c")}),
              NO_TRANSACTION);
    EXPECT_EQ(run("refactor_count_error_files", {qbArgInt(h)}), NO_TRANSACTION);
    EXPECT_EQ(run("refactor_get_error_file_name", {qbArgInt(h), qbArgInt(0), qbArgVar(var)}),
              NO_TRANSACTION);
    EXPECT_EQ(run("refactor_count_errors", {qbArgInt(h), qbArgString("")}), NO_TRANSACTION);
    EXPECT_EQ(run("refactor_get_error",
                  {qbArgInt(h), qbArgString("a.c"), qbArgInt(0), qbArgVar(var)}),
              NO_TRANSACTION);
    EXPECT_EQ(run("refactor_c_parse", {qbArgInt(h), qbArgInt(0)}), NO_TRANSACTION);
    EXPECT_EQ(run("refactor_c_preprocess", {qbArgInt(h), qbArgInt(wid), qbArgInt(0)}),
              NO_TRANSACTION);
    EXPECT_EQ(std::string(qbHostWindowText(wid, nullptr)), "x");
    qbVarFreeTemp(var);
    qbHostWindowDestroy(wid);
}

TEST(Transactions, ModifiedTextRoundTripsAndCommitWritesIt) {
    loadModule();
    std::string dir = scratchDir();
    std::string a = dir + "/shape.cpp", b = dir + "/shape.h";
    writeFile(a, "int area();\n");
    writeFile(b, "#pragma once\n");
    int t = begin();
    ASSERT_EQ(addFile(t, a), 0);
    ASSERT_EQ(addFile(t, b), 0);
    EXPECT_EQ(run("refactor_count_modified_files", {qbArgInt(t)}), 0);

    ASSERT_EQ(setModified(t, a, "int area(int side);\n"), 0);
    EXPECT_EQ(run("refactor_count_modified_files", {qbArgInt(t)}), 1);
    int rc = 1;
    EXPECT_EQ(stringResult("refactor_get_modified_file_name", {qbArgInt(t), qbArgInt(0)}, &rc), a);
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(stringResult("refactor_get_modified_file_name", {qbArgInt(t), qbArgInt(5)}), "");

    // Read it into a window, correct it there, and hand it back.
    int wid = qbHostWindowCreate("");
    EXPECT_EQ(run("refactor_get_modified_file_contents",
                  {qbArgInt(wid), qbArgInt(t), qbArgString(a.c_str())}),
              0);
    EXPECT_EQ(windowText(wid), "int area(int side);\n");
    qbHostWindowSetText(wid, "int area(int width, int height);\n", 33);
    EXPECT_EQ(run("refactor_set_modified_file_contents",
                  {qbArgInt(wid), qbArgInt(t), qbArgString(a.c_str())}),
              0);
    EXPECT_EQ(run("refactor_count_modified_files", {qbArgInt(t)}), 1);
    EXPECT_EQ(run("refactor_get_modified_file_contents",
                  {qbArgInt(wid), qbArgInt(t), qbArgString(b.c_str())}),
              FILE_NOT_FOUND);
    qbHostWindowDestroy(wid);

    EXPECT_EQ(readFile(a), "int area();\n");  // nothing on disk before the commit
    EXPECT_EQ(run("refactor_commit_transaction", {qbArgInt(t)}), 0);
    EXPECT_EQ(readFile(a), "int area(int width, int height);\n");
    EXPECT_EQ(readFile(b), "#pragma once\n");
    EXPECT_EQ(run("refactor_count_modified_files", {qbArgInt(t)}), NO_TRANSACTION);
}

TEST(Transactions, CommitWithNothingModifiedWritesNothingAndEnds) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/a.c", "int a;\n");
    int t = begin();
    addFile(t, dir + "/a.c");
    EXPECT_EQ(run("refactor_commit_transaction", {qbArgInt(t)}), 0);
    EXPECT_EQ(run("refactor_cancel_transaction", {qbArgInt(t)}), NO_TRANSACTION);
    EXPECT_EQ(readFile(dir + "/a.c"), "int a;\n");
}

TEST(Transactions, CommitKeepsPermissionsAndLeavesNoTemporary) {
    loadModule();
    std::string dir = scratchDir();
    std::string a = dir + "/tool.c";
    writeFile(a, "old\n");
    ASSERT_EQ(chmod(a.c_str(), 0750), 0);
    symlink("tool.c", (dir + "/link.c").c_str());
    int t = begin();
    setModified(t, a, "new\n");
    setModified(t, dir + "/link.c", "through the link\n");
    EXPECT_EQ(run("refactor_commit_transaction", {qbArgInt(t)}), 0);
    struct stat st;
    ASSERT_EQ(stat(a.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0750u);
    ASSERT_EQ(lstat((dir + "/link.c").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode)) << "a link stays a link";
    std::string text = readFile(a);
    EXPECT_TRUE(text == "new\n" || text == "through the link\n") << text;
    EXPECT_EQ(filesIn(dir), 2) << "no temporary is left beside the files";
}

TEST(Transactions, FailedCommitKeepsTheTransactionOpen) {
    loadModule();
    std::string dir = scratchDir();
    int t = begin();
    setModified(t, dir + "/no/such/folder/x.c", "text\n");
    EXPECT_EQ(run("refactor_commit_transaction", {qbArgInt(t)}), FILE_NOT_FOUND);
    EXPECT_EQ(run("refactor_count_modified_files", {qbArgInt(t)}), 1);
    EXPECT_EQ(run("refactor_cancel_transaction", {qbArgInt(t)}), 0);
}

TEST(Transactions, CancelWritesNothing) {
    loadModule();
    std::string dir = scratchDir();
    writeFile(dir + "/a.c", "kept\n");
    int t = begin();
    setModified(t, dir + "/a.c", "dropped\n");
    EXPECT_EQ(run("refactor_cancel_transaction", {qbArgInt(t)}), 0);
    EXPECT_EQ(readFile(dir + "/a.c"), "kept\n");
}

TEST(Transactions, RemoveFileForgetsItsTextAndErrors) {
    loadModule();
    std::string dir = scratchDir();
    std::string missing = dir + "/missing.c", present = dir + "/present.c";
    writeFile(present, "int p;\n");
    int t = begin();
    addFile(t, missing);
    addFile(t, present);
    run("refactor_c_parse", {qbArgInt(t), qbArgInt(0)});
    EXPECT_EQ(run("refactor_count_errors", {qbArgInt(t), qbArgString(missing.c_str())}), 1);
    setModified(t, missing, "int m;\n");

    // The parse released the parsers, so the name is no longer in the file set.
    EXPECT_EQ(run("refactor_remove_file", {qbArgInt(t), qbArgString(missing.c_str())}),
              FILE_NOT_FOUND);
    EXPECT_EQ(run("refactor_count_errors", {qbArgInt(t), qbArgString(missing.c_str())}), 0);
    EXPECT_EQ(run("refactor_count_modified_files", {qbArgInt(t)}), 0);

    int t2 = begin();
    addFile(t2, present);
    EXPECT_EQ(run("refactor_remove_file", {qbArgInt(t2), qbArgString(present.c_str())}), 0);
    EXPECT_EQ(run("refactor_remove_file", {qbArgInt(t2), qbArgString(present.c_str())}),
              FILE_NOT_FOUND);
    EXPECT_EQ(run("refactor_add_user_include_directory",
                  {qbArgInt(t2), qbArgString(present.c_str()), qbArgString("inc")}),
              FILE_NOT_FOUND);
    run("refactor_cancel_transaction", {qbArgInt(t)});
    run("refactor_cancel_transaction", {qbArgInt(t2)});
}

TEST(Transactions, AddFileChecksDefineOptions) {
    loadModule();
    int t = begin();
    EXPECT_EQ(addFile(t, "a.c", "-DDEBUG -UNDEBUG \"-DNAME=a b\" LEVEL=2"), 0);
    EXPECT_EQ(addFile(t, "b.c", "-DOK -Xbad"), -7507);
    EXPECT_EQ(addFile(t, "c.c", "-DOK    -Wall"), -7507);
    EXPECT_EQ(addFile(t, "d.c", "   "), 0);
    EXPECT_EQ(run("refactor_add_file", {qbArgInt(t), qbArgString("e.c"), qbArgString("inc;;-I sys"),
                                        qbArgString("/usr/include"), qbArgString(""),
                                        qbArgString("/no/such/config.h")}),
              -7508);
    EXPECT_EQ(run("refactor_add_user_include_directory",
                  {qbArgInt(t), qbArgString("a.c"), qbArgString("more;other")}),
              0);
    run("refactor_cancel_transaction", {qbArgInt(t)});
}

TEST(Transactions, ParseCollectsFormattedErrorsPerFile) {
    loadModule();
    std::string dir = scratchDir();
    std::string missing = dir + "/gone.cpp", present = dir + "/here.c";
    writeFile(present, "int here;\n");
    MacroRecorder shown("refactor_show_errors");
    int t = begin();
    addFile(t, missing);
    addFile(t, present);
    EXPECT_EQ(run("refactor_c_parse", {qbArgInt(t), qbArgInt(0)}), -7516);
    EXPECT_EQ(run("refactor_count_errors", {qbArgInt(t), qbArgString("")}), 1);
    EXPECT_EQ(run("refactor_count_errors", {qbArgInt(t), qbArgInt(0)}), 1) << "a null name sums";
    EXPECT_EQ(run("refactor_count_errors", {qbArgInt(t), qbArgString(present.c_str())}), 0);
    EXPECT_EQ(stringResult("refactor_get_error",
                           {qbArgInt(t), qbArgString(missing.c_str()), qbArgInt(0)}),
              missing + ":0:0: error: File not found");
    EXPECT_EQ(stringResult("refactor_get_error",
                           {qbArgInt(t), qbArgString(missing.c_str()), qbArgInt(1)}),
              "");
    EXPECT_EQ(stringResult("refactor_get_error",
                           {qbArgInt(t), qbArgString("other.c"), qbArgInt(0)}),
              "");
    int files = run("refactor_count_error_files", {qbArgInt(t)});
    bool listed = false;
    for (int i = 0; i < files; ++i)
        listed |= stringResult("refactor_get_error_file_name", {qbArgInt(t), qbArgInt(i)}) == missing;
    EXPECT_TRUE(listed);
    ASSERT_EQ(shown.calls.size(), 1u);
    EXPECT_EQ(shown.calls[0][0], std::to_string(t));
    EXPECT_EQ(shown.calls[0][1], missing);
    run("refactor_cancel_transaction", {qbArgInt(t)});
}

TEST(Transactions, ParseOfAnEmptyTransactionSucceeds) {
    loadModule();
    int t = begin();
    EXPECT_EQ(run("refactor_c_parse", {qbArgInt(t), qbArgInt(0)}), 0);
    run("refactor_cancel_transaction", {qbArgInt(t)});
}
