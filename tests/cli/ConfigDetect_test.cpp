// Compiler detection: `qbrefactor config detect` against the compilers installed here, checked
// against what each compiler reports when asked directly.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <sstream>

#include "../host/support/ConfigTestSupport.h"
#include "CompilerDetect.h"
#include "ConfigCommand.h"
#include "support/CliRunner.h"

using configtest::fileExists;
using configtest::readFile;
using configtest::ScopedEnv;
using configtest::ScratchDir;
using configtest::writeFile;
using namespace qbcli;

namespace {

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

std::string modeOf(const std::string& compiler) {
    return compiler.find("++") != std::string::npos ? "-x c++ -std=gnu++98" : "-x c";
}

// Asked the compiler directly, through the shell, in the mode detection uses.
std::vector<std::string> reportedMacros(const std::string& compiler) {
    return lines(shellOutput(compiler + " " + modeOf(compiler) + " -dM -E /dev/null"));
}

std::vector<std::string> reportedIncludes(const std::string& compiler) {
    return lines(shellOutput("LC_ALL=C " + compiler + " " + modeOf(compiler) +
                       " -E -v /dev/null 2>&1 >/dev/null | sed -n "
                       "'/^#include <...> search starts here:/,/^End of search list./p' | "
                       "sed '1d;$d;s/^ //'"));
}

int runConfig(std::vector<std::string> args, std::string& out, std::string& err) {
    args.insert(args.begin(), "config");
    std::vector<char*> argv;
    for (std::string& a : args) argv.push_back(&a[0]);
    std::ostringstream o, e;
    int rc = runConfigCommand(int(argv.size()), argv.data(), o, e);
    out = o.str();
    err = e.str();
    return rc;
}

class ConfigDetect : public ::testing::Test {
protected:
    ScratchDir scratch;
    std::string xml = scratch.file("conf/compilers.xml");
    ScopedEnv module{"QBREFACTOR_MODULE", QB_MODULE_PATH};
    ScopedEnv root{"QBROOT", nullptr};
};

TEST(ConfigDetectPieces, IncludeSearchListIsReadBetweenItsMarkers) {
    const char* verbose =
        "ignoring nonexistent directory \"/nope\"\n"
        "#include \"...\" search starts here:\n"
        " /quoted\n"
        "#include <...> search starts here:\n"
        " /usr/lib/gcc/x86_64-linux-gnu/12/../../../../include/c++/12\n"
        " /usr/local/include\n"
        " /Library/Frameworks (framework directory)\n"
        "End of search list.\n"
        " /after\n";
    EXPECT_EQ(parseIncludeSearchList(verbose),
              (std::vector<std::string>{"/usr/lib/gcc/x86_64-linux-gnu/12/../../../../include/c++/12",
                                        "/usr/local/include", "/Library/Frameworks"}));
    EXPECT_TRUE(parseIncludeSearchList("no list at all\n").empty());
}

TEST(ConfigDetectPieces, DefinedNamesOfObjectAndFunctionMacros) {
    EXPECT_EQ(definedNames("#define A 1\n#define B(x) x\n  #define C\n#undef D\nint x;\n"),
              (std::vector<std::string>{"A", "B", "C"}));
}

TEST(ConfigDetectPieces, DefaultConfigurationFollowsTheFileLanguage) {
    std::vector<std::string> all{"clang", "g++", "gcc", "clang++"};
    EXPECT_EQ(defaultConfigurationFor("src/a.c", all), "gcc");
    EXPECT_EQ(defaultConfigurationFor("src/a.cpp", all), "g++");
    EXPECT_EQ(defaultConfigurationFor("a.h", all), "g++");
    EXPECT_EQ(defaultConfigurationFor("a.cc", {"clang++", "gcc"}), "clang++");
    EXPECT_EQ(defaultConfigurationFor("a.c", {"clang", "clang++"}), "clang");
    EXPECT_EQ(defaultConfigurationFor("a.c", {"g++", "mine"}), "");
    EXPECT_EQ(languageOfCompiler("/usr/bin/clang++-14"), SourceLanguage::Cxx);
    EXPECT_EQ(languageOfCompiler("gcc-12"), SourceLanguage::C);
}

TEST(ConfigDetectPieces, RunProgramKeepsOneStreamAndTheStatus) {
    std::string output, error;
    EXPECT_EQ(runProgram({"sh", "-c", "echo out; echo err >&2; exit 3"}, 1, output, error), 3);
    EXPECT_EQ(output, "out\n");
    EXPECT_EQ(runProgram({"sh", "-c", "echo out; echo err >&2"}, 2, output, error), 0);
    EXPECT_EQ(output, "err\n");
    EXPECT_EQ(runProgram({"sh", "-c", "echo $LC_ALL"}, 1, output, error), 0);
    EXPECT_EQ(output, "C\n");
    EXPECT_EQ(runProgram({"/no/such/program"}, 1, output, error), -1);
    EXPECT_NE(error.find("/no/such/program"), std::string::npos);
}

TEST_F(ConfigDetect, EachInstalledCompilerBecomesAConfiguration) {
    std::string out, err;
    ASSERT_EQ(runConfig({"--file", xml, "detect"}, out, err), 0) << err;
    std::vector<std::string> names;
    std::string error;
    ASSERT_TRUE(listConfigurationNames(xml, names, error)) << error;
    int checked = 0;
    for (const std::string& compiler : defaultCompilerCommands()) {
        if (findOnPath(compiler).empty()) continue;
        SCOPED_TRACE(compiler);
        ++checked;
        ConfigurationValues values;
        ASSERT_TRUE(readConfiguration(xml, compiler, values, error)) << error;
        EXPECT_EQ(values.header, scratch.file("conf/" + compiler + ".h"));
        EXPECT_EQ(values.includes, reportedIncludes(compiler));
        EXPECT_FALSE(values.includes.empty());

        std::vector<std::string> header = lines(readFile(values.header));
        std::set<std::string> written(header.begin(), header.end());
        std::vector<std::string> own = reportedMacros(compiler);
        ASSERT_GT(own.size(), 50u);
        for (const std::string& line : own) EXPECT_TRUE(written.count(line)) << line;
        // Everything else defined is the compatibility block, which never redefines the
        // compiler's own macros.
        std::set<std::string> ownSet;
        for (const std::string& n : definedNames(shellOutput(compiler + " " + modeOf(compiler) + " -dM -E /dev/null")))
            ownSet.insert(n);
        std::set<std::string> extra;
        for (const std::string& n : definedNames(readFile(values.header)))
            if (!ownSet.count(n)) extra.insert(n);
        EXPECT_EQ(definedNames(readFile(values.header)).size(), ownSet.size() + extra.size())
            << "a macro is defined twice";
        EXPECT_TRUE(extra.count("__attribute__"));
        EXPECT_TRUE(extra.count("__extension__"));
        EXPECT_TRUE(extra.count("__builtin_va_list"));
        EXPECT_TRUE(extra.count("__int128"));
        EXPECT_EQ(extra.count("__null"), compiler.find("++") != std::string::npos ? 1u : 0u);
        EXPECT_NE(out.find(compiler + "\t"), std::string::npos) << out;
    }
    EXPECT_GT(checked, 0);
    EXPECT_EQ(names.size(), size_t(checked));
}

TEST_F(ConfigDetect, FloatTypesAreDefinedOnlyWhereTheCompilerHasThem) {
    if (findOnPath("gcc").empty() || findOnPath("g++").empty()) GTEST_SKIP() << "needs gcc and g++";
    CompilerInfo c, cxx;
    std::string error;
    ASSERT_TRUE(detectCompiler("gcc", c, error)) << error;
    ASSERT_TRUE(detectCompiler("g++", cxx, error)) << error;
    auto defines = [](const CompilerInfo& info, const std::string& name) {
        for (const std::string& line : info.compatibility)
            if (definedNames(line + "\n") == std::vector<std::string>{name}) return true;
        return false;
    };
    // What the compiler accepts in that mode decides, as the library headers do.
    for (const char* type : {"_Float32", "_Float64", "_Float128"}) {
        bool cAccepts = shellOutput(std::string("echo '") + type + " x;' | gcc -x c -fsyntax-only - 2>&1").empty();
        bool cxxAccepts = shellOutput(std::string("echo '") + type +
                                " x;' | g++ -x c++ -std=gnu++98 -fsyntax-only - 2>&1").empty();
        EXPECT_EQ(defines(c, type), cAccepts) << type;
        EXPECT_EQ(defines(cxx, type), cxxAccepts) << type;
    }
    // The header must still let the compiler read its own library through it.
    std::string header = scratch.file("g++.h");
    writeFile(header, compilerHeaderText(cxx));
    std::string includes;
    for (const std::string& dir : cxx.includeDirs) includes += " -isystem " + dir;
    std::string result = shellOutput("printf '#include <stdio.h>\\n#include <vector>\\n' | g++ -x c++ "
                               "-std=gnu++98 -E -undef -nostdinc" + includes + " -include " +
                               header + " - >/dev/null 2>&1 && echo ok");
    EXPECT_EQ(result, "ok\n");
}

TEST_F(ConfigDetect, DetectingAgainReplacesTheConfiguration) {
    if (findOnPath("gcc").empty()) GTEST_SKIP() << "needs gcc";
    std::string out, err, error;
    ASSERT_EQ(runConfig({"--file", xml, "detect", "gcc"}, out, err), 0) << err;
    ASSERT_EQ(runConfig({"--file", xml, "detect", "gcc"}, out, err), 0) << err;
    ConfigurationValues values;
    ASSERT_TRUE(readConfiguration(xml, "gcc", values, error)) << error;
    EXPECT_EQ(values.includes, reportedIncludes("gcc"));
    std::vector<std::string> names;
    ASSERT_TRUE(listConfigurationNames(xml, names, error));
    EXPECT_EQ(names, std::vector<std::string>{"gcc"});
}

TEST_F(ConfigDetect, MissingCompilersAreReported) {
    std::string out, err;
    EXPECT_EQ(runConfig({"--file", xml, "detect", "/no/such/cc"}, out, err), 1);
    EXPECT_NE(err.find("/no/such/cc: not found"), std::string::npos) << err;
    EXPECT_FALSE(fileExists(xml));
    ScratchDir emptyBin;
    ScopedEnv path("PATH", emptyBin.path().c_str());
    EXPECT_EQ(runConfig({"--file", xml, "detect"}, out, err), 1);
    EXPECT_NE(err.find("no compiler found"), std::string::npos) << err;
    EXPECT_FALSE(fileExists(xml));
}

}  // namespace
