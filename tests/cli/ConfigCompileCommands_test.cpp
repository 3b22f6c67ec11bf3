// Reading a project's compile_commands.json into per-file options, from a database that CMake
// itself generates for a small project.
#include <gtest/gtest.h>

#include <filesystem>

#include "../host/support/ConfigTestSupport.h"
#include "CompileCommands.h"
#include "CompilerDetect.h"

using configtest::ScratchDir;
using configtest::writeFile;
using namespace qbcli;

namespace {

using Strings = std::vector<std::string>;

TEST(ConfigCompileCommands, CommandLinesSplitAsTheShellDoes) {
    EXPECT_EQ(splitCommandLine("cc  -c a.c\t-o a.o"), (Strings{"cc", "-c", "a.c", "-o", "a.o"}));
    EXPECT_EQ(splitCommandLine("cc \"-DX=a b\" '-DY=\"q\"' -DZ=\\\"s\\\" \"\" x"),
              (Strings{"cc", "-DX=a b", "-DY=\"q\"", "-DZ=\"s\"", "", "x"}));
    EXPECT_EQ(splitCommandLine("cc -I\"dir with space\"/inc a\\ b.c"),
              (Strings{"cc", "-Idir with space/inc", "a b.c"}));
    EXPECT_TRUE(splitCommandLine("   ").empty());
}

TEST(ConfigCompileCommands, OptionsInEverySpelling) {
    CompileOptions o = optionsFromArguments(
        {"cc", "-Iinc", "-I", "/abs", "-iquote", "q", "-isystem", "sys", "-isystem/abs/sys",
         "-idirafter", "late", "-DA", "-D", "B=2", "-UA", "-DC=x y", "-include", "pre.h",
         "--include=post.h", "--include-directory=ignored", "-O2", "-o", "out.o", "-std=c99",
         "-x", "c++", "-c", "src/f.c"},
        "/proj/build", "../src/f.c");
    EXPECT_EQ(o.file, "/proj/src/f.c");
    EXPECT_EQ(o.directory, "/proj/build");
    EXPECT_EQ(o.userIncludes, (Strings{"/proj/build/inc", "/abs", "/proj/build/q"}));
    EXPECT_EQ(o.systemIncludes, (Strings{"/proj/build/sys", "/abs/sys"}));
    EXPECT_EQ(o.afterIncludes, Strings{"/proj/build/late"});
    EXPECT_EQ(o.macroOptions, (Strings{"-DA", "-DB=2", "-UA", "-DC=x y"}));
    EXPECT_EQ(o.forcedIncludes, (Strings{"/proj/build/pre.h", "/proj/build/post.h"}));
    EXPECT_EQ(o.standard, "-std=c99");
    EXPECT_EQ(o.language, "c++");
    CompileOptions later = optionsFromArguments({"cc", "-xc-header", "-ansi", "-Ilater"}, "/p", "f.c");
    o.append(later);
    EXPECT_EQ(o.language, "c");
    EXPECT_EQ(o.standard, "-ansi");
    EXPECT_EQ(o.userIncludes.back(), "/p/later");
    EXPECT_EQ(o.file, "/proj/src/f.c") << "appending keeps the file";
}

TEST(ConfigCompileCommands, BadDatabasesAreRefused) {
    ScratchDir scratch;
    std::vector<CompileOptions> entries;
    std::string error;
    EXPECT_FALSE(readCompileCommands(scratch.path(), entries, error));
    EXPECT_NE(error.find("cannot read " + scratch.file("compile_commands.json")), std::string::npos);
    writeFile(scratch.file("compile_commands.json"), "[{\"directory\": \"/a\", \"file\": ");
    EXPECT_FALSE(readCompileCommands(scratch.path(), entries, error));
    EXPECT_NE(error.find("not a compilation database"), std::string::npos) << error;
    writeFile(scratch.file("compile_commands.json"), "{\"directory\": \"/a\"}");
    EXPECT_FALSE(readCompileCommands(scratch.path(), entries, error));
    writeFile(scratch.file("compile_commands.json"),
              "[{\"directory\": \"/a\", \"file\": \"x.c\", \"command\": \"cc x.c\"},"
              " {\"directory\": \"/a\", \"file\": \"y.c\"}]");
    EXPECT_FALSE(readCompileCommands(scratch.path(), entries, error));
    EXPECT_NE(error.find("entry 2"), std::string::npos) << error;
    writeFile(scratch.file("db.json"),
              "[{\"directory\": \"/a\", \"file\": \"x.c\", \"command\": \"cc -DQ x.c\"}]");
    ASSERT_TRUE(readCompileCommands(scratch.file("db.json"), entries, error)) << error;
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].macroOptions, Strings{"-DQ"});
}

TEST(ConfigCompileCommands, EachFileOfACMakeProjectGetsItsOwnOptions) {
    if (findOnPath("cmake").empty() || findOnPath("c++").empty()) GTEST_SKIP() << "needs cmake";
    ScratchDir scratch;
    std::string src = scratch.file("src"), build = scratch.file("build");
    writeFile(src + "/CMakeLists.txt",
              "cmake_minimum_required(VERSION 3.16)\n"
              "project(demo C CXX)\n"
              "add_library(core STATIC core/core.c)\n"
              "target_include_directories(core PUBLIC core/include PRIVATE core/private)\n"
              "target_compile_definitions(core PRIVATE CORE_ONLY=1 \"SPACED=a b\")\n"
              "add_executable(app app/main.cpp)\n"
              "target_link_libraries(app core)\n"
              "target_include_directories(app SYSTEM PRIVATE third_party)\n"
              "target_compile_definitions(app PRIVATE APP_ONLY)\n"
              "target_compile_options(app PRIVATE -UNDEBUG -include ${CMAKE_SOURCE_DIR}/app/pre.h)\n");
    writeFile(src + "/core/core.c", "int core(void) { return 0; }\n");
    writeFile(src + "/app/main.cpp", "int main() { return 0; }\n");
    writeFile(src + "/app/pre.h", "\n");
    std::string output, error;
    ASSERT_EQ(runProgram({"cmake", "-S", src, "-B", build, "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"}, 2,
                         output, error), 0) << output << error;

    std::vector<CompileOptions> entries;
    ASSERT_TRUE(readCompileCommands(build, entries, error)) << error;
    ASSERT_EQ(entries.size(), 2u);
    const CompileOptions* core = findCompileOptions(entries, src + "/core/core.c");
    const CompileOptions* app = findCompileOptions(entries, src + "/app/../app/main.cpp");
    ASSERT_TRUE(core && app);
    EXPECT_EQ(core->userIncludes, (Strings{src + "/core/include", src + "/core/private"}));
    EXPECT_TRUE(core->systemIncludes.empty());
    EXPECT_EQ(core->macroOptions, (Strings{"-DCORE_ONLY=1", "-DSPACED=a b"}));
    EXPECT_TRUE(core->forcedIncludes.empty());
    EXPECT_EQ(app->userIncludes, (Strings{src + "/core/include"}));
    EXPECT_EQ(app->systemIncludes, (Strings{src + "/third_party"}));
    EXPECT_EQ(app->macroOptions, (Strings{"-DAPP_ONLY", "-UNDEBUG"}));
    EXPECT_EQ(app->forcedIncludes, (Strings{src + "/app/pre.h"}));

    std::filesystem::create_directory_symlink(src, scratch.file("link"));
    EXPECT_EQ(findCompileOptions(entries, scratch.file("link/core/core.c")), core);
    EXPECT_EQ(findCompileOptions(entries, src + "/core/other.c"), nullptr);
}

}  // namespace
