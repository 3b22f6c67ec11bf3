// qbrefactor preprocess --tree, --emit-source and --roundtrip: a file's source tree, read but
// never run, must give back the file byte for byte whatever the file holds.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../host/support/ConfigTestSupport.h"
#include "support/CliRunner.h"

using configtest::ScratchDir;
using configtest::readFile;
using configtest::writeFile;

namespace {

struct HostileFile {
    const char* name;
    std::string bytes;
};

std::vector<HostileFile> hostileFiles() {
    return {
        {"empty.c", ""},
        {"crlf.c", "#define A 1\r\n#if A\r\nint a;\r\n#endif\r\n"},
        {"lone_cr.c", "#define B 2\rint b = B;\r#if 1\rx\r#endif\r"},
        {"open_define.c", "int x;\n#define F(a, b) a ## b +"},
        {"open_directive.c", "#if defined(X) &&"},
        {"splice_at_eof.c", "#define G 1 \\\n  + 2 \\"},
        {"splice_crlf.c", "#define H(x) \\\r\n x\\\r\n"},
        {"if0_garbage.c",
         "#if 0\n'unterminated \"too\n@ $ ` \\ #bogus directive\n#else\nint ok;\n#endif\n"},
        {"unbalanced_calls.c",
         "#define M(x, y) x y\nM(1, (2)\nM)\nM(((\n#define N )\nM(a N\n)"},
        {"stray_branches.c", "#endif\n#else\n#elif 1\n#if 1\n#if 2\nint z;\n"},
        {"nul_bytes.c", std::string("int a\0b;\n#define Z \0\n\0", 22)},
        {"comments.c", "/* open #if\n#endif */ // \\\n#define C\n/* never closed"},
        {"high_bytes.c", "char* s = \"\xc3\xa9\xff\xfe\";\n#pragma \x80\x81\n"},
    };
}

// A node of that kind, and not merely one whose kind begins so.
bool hasNode(const std::string& print, const std::string& kind) {
    return contains(print, "[" + kind + "\n") || contains(print, "[" + kind + " ");
}

// More than the first buffer holds, so the text has to be fetched again.
std::string largeFile() {
    std::string text;
    for (int i = 0; i < 4000; ++i)
        text += "#if N" + std::to_string(i) + "\nint v" + std::to_string(i) + " = F(" +
                std::to_string(i) + ");\n#endif\r\n";
    text += std::string("tail\0", 5);
    return text;
}

}  // namespace

TEST(PreprocessSource, EmitSourceGivesBackHostileFilesByteForByte) {
    ScratchDir dir;
    std::vector<HostileFile> files = hostileFiles();
    files.push_back({"large.c", largeFile()});
    std::string all, names;
    for (const HostileFile& f : files) {
        SCOPED_TRACE(f.name);
        writeFile(dir.file(f.name), f.bytes);
        Outcome o = runCli("preprocess --emit-source " + dir.file(f.name));
        EXPECT_EQ(o.exitCode, 0) << o.output;
        EXPECT_EQ(o.output, f.bytes);
        all += f.bytes;
        names += " " + dir.file(f.name);
    }
    Outcome together = runCli("preprocess --emit-source" + names);
    EXPECT_EQ(together.exitCode, 0);
    EXPECT_TRUE(together.output == all) << "several files come out one after another, in order";
}

TEST(PreprocessSource, TreeShowsEveryDirectiveAndBranchWithoutOpeningIncludes) {
    ScratchDir dir;
    std::string file = dir.file("small.c");
    writeFile(file,
              "#include \"absent_header.h\"\n#define TWICE(x) ((x) * 2)\n#if 0\nint hidden;\n"
              "#else\nint shown = TWICE(3);\n#endif\n");
    Outcome o = runCli("preprocess --tree " + file);
    EXPECT_EQ(o.exitCode, 0) << o.output;
    EXPECT_EQ(o.output.rfind("[PreprocessorUnit", 0), 0u) << o.output;
    for (const char* kind : {"PreprocessorInclude", "PreprocessorIncludeArg", "PreprocessorDefine",
                             "PreprocessorDefineArg", "PreprocessorIfGroup", "PreprocessorIf",
                             "PreprocessorElse", "PreprocessorEndif", "PreprocessorMacroArg"})
        EXPECT_TRUE(hasNode(o.output, kind)) << kind << " in\n" << o.output;
    // The inactive branch is in the tree, and the header wasn't looked for.
    EXPECT_TRUE(contains(o.output, "IDENTIFIER=3           hidden\n")) << o.output;
    EXPECT_TRUE(contains(o.output, "IDENTIFIER=3           TWICE\n")) << o.output;
    EXPECT_FALSE(contains(o.output, "Cannot find include file")) << o.output;
    EXPECT_FALSE(contains(o.output, "***ERRORS***")) << o.output;
    EXPECT_FALSE(contains(o.output, "***INVALID***")) << o.output;
}

TEST(PreprocessSource, TreeMarksAReaderErrorAndFailsTheRun) {
    ScratchDir dir;
    std::string file = dir.file("open_if.c");
    writeFile(file, "#if 1\nint a;\n");
    Outcome o = runCli("preprocess --tree " + file);
    EXPECT_EQ(o.exitCode, 1) << o.output;
    EXPECT_TRUE(contains(o.output, "[PreprocessorUnit     ***ERRORS***\n")) << o.output;
}

TEST(PreprocessSource, RoundTripOverADirectoryCountsItsFiles) {
    ScratchDir dir;
    std::vector<HostileFile> files = hostileFiles();
    for (const HostileFile& f : files) writeFile(dir.file(f.name), f.bytes);
    Outcome o = runCli("preprocess --roundtrip " + dir.path() + "/*");
    std::string count = std::to_string(files.size());
    EXPECT_EQ(o.exitCode, 0) << o.output;
    EXPECT_TRUE(contains(o.output, count + " files, " + count + " identical, 0 differ, 0 unreadable"))
        << o.output;
    EXPECT_FALSE(contains(o.output, "differs:")) << o.output;
    // Files with reader errors are named, but only a difference fails the run.
    EXPECT_TRUE(contains(o.output, "errors: " + dir.file("stray_branches.c") + "\n")) << o.output;
    EXPECT_FALSE(contains(o.output, "errors: " + dir.file("crlf.c") + "\n")) << o.output;

    Outcome own = runCli("preprocess --roundtrip " QB_SOURCE_DIR "/preprocessor/*");
    EXPECT_EQ(own.exitCode, 0) << own.output;
    EXPECT_TRUE(contains(own.output, " 0 differ, 0 unreadable")) << own.output;
}

TEST(PreprocessSource, UnreadableFilesAreNamedAndFailTheRun) {
    ScratchDir dir;
    std::string good = dir.file("good.c");
    writeFile(good, "int witness;\n");
    std::string missing = dir.file("missing.c");
    Outcome rt = runCli("preprocess --roundtrip " + good + " " + missing + " " + dir.path());
    EXPECT_EQ(rt.exitCode, 1);
    EXPECT_TRUE(contains(rt.output, missing + ": error: File not found\n")) << rt.output;
    EXPECT_TRUE(contains(rt.output, dir.path() + ": error: ")) << rt.output;
    EXPECT_TRUE(contains(rt.output, "3 files, 1 identical, 0 differ, 2 unreadable")) << rt.output;
    for (const char* mode : {"--tree", "--emit-source"}) {
        SCOPED_TRACE(mode);
        Outcome o = runCli(std::string("preprocess ") + mode + " " + missing + " " + good);
        EXPECT_EQ(o.exitCode, 1);
        EXPECT_TRUE(contains(o.output, missing + ": error: File not found\n")) << o.output;
        EXPECT_TRUE(contains(o.output, "witness")) << "the other files are still done";
    }
}

TEST(PreprocessSource, BadUsageGivesTheUsageAndStatusTwo) {
    for (const char* args : {"--tree", "--emit-source", "--roundtrip", "--roundtrip -I /usr",
                             "--tree --roundtrip x.c", "--emit-source --frob x.c"}) {
        SCOPED_TRACE(args);
        Outcome o = runCli(std::string("preprocess ") + args);
        EXPECT_EQ(o.exitCode, 2) << o.output;
        EXPECT_TRUE(contains(o.output, "usage: qbrefactor preprocess")) << o.output;
    }
    Outcome help = runCli("preprocess --tree --help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(contains(help.output, "--emit-source")) << help.output;
}
