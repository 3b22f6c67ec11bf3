// How each file reaches the engine through the commands a user runs: the detected configuration
// of its language (detected on first use), --config, -x, -std, -p, and -D, -U and -include as
// gcc reads them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../host/support/ConfigTestSupport.h"
#include "FileSetOptions.h"
#include "FileSetup.h"
#include "support/CliRunner.h"

using configtest::fileExists;
using configtest::readFile;
using configtest::ScratchDir;
using configtest::writeFile;
using namespace qbcli;

namespace {

using Strings = std::vector<std::string>;

// Preprocesses text as a file named name (in a fresh folder) with the options; the output.
struct Sample {
    ScratchDir dir;
    Outcome outcome;
    Sample(const std::string& name, const std::string& text, const std::string& options,
        const std::string& command = "preprocess") {
        writeFile(dir.file(name), text);
        outcome = runCli(command + " " + options + " " + dir.file(name));
    }
    bool has(const std::string& part) const { return contains(outcome.output, part); }
};

const char* const versions =
    "#ifdef __cplusplus\nlong cxx = __cplusplus;\n#endif\n"
    "#ifdef __STDC_VERSION__\nlong c = __STDC_VERSION__;\n#else\nint c89;\n#endif\n";

}  // namespace

TEST(FileSetup, ACFileIsCThroughTheDetectedConfiguration) {
    Sample c("f.c", std::string(versions) + "int f(int template) { return template + new; }\n", "",
          "parse");
    EXPECT_EQ(c.outcome.exitCode, 0) << c.outcome.output;
    Sample text("f.c", versions, "");
    EXPECT_FALSE(text.has("long cxx")) << text.outcome.output;
    EXPECT_TRUE(text.has("long c=201710L;") || text.has("long c=2")) << text.outcome.output;
    Sample cxx("f.cpp", versions, "");
    EXPECT_TRUE(cxx.has("long cxx=199711L;")) << cxx.outcome.output;
    EXPECT_TRUE(cxx.has("long c=199711L;")) << "C++ keeps the engine's one mode: "
                                            << cxx.outcome.output;
}

TEST(FileSetup, TheLanguageComesFromXThenTheStandardThenTheName) {
    Sample header("f.h", versions, "-x c");
    EXPECT_FALSE(header.has("long cxx")) << header.outcome.output;
    Sample asCxx("f.c", versions, "-x c++");
    EXPECT_TRUE(asCxx.has("long cxx=")) << asCxx.outcome.output;
    Sample byStandard("f.h", versions, "-std=gnu99");
    EXPECT_TRUE(byStandard.has("long c=199901L;")) << byStandard.outcome.output;
    Sample named("f.cpp", versions, "--config gcc");
    EXPECT_FALSE(named.has("long cxx")) << "a C configuration reads the file as C: "
                                        << named.outcome.output;
    Sample none("f.c", versions, "--no-config");
    EXPECT_TRUE(none.has("long cxx=199711L;")) << "no configuration: the engine's one mode: "
                                               << none.outcome.output;
}

TEST(FileSetup, TheStandardAsksTheConfigurationsCompiler) {
    Sample c99("f.c", versions, "-std=c99");
    EXPECT_TRUE(c99.has("long c=199901L;")) << c99.outcome.output;
    Sample ansi("f.c", versions + std::string("#ifdef __STRICT_ANSI__\nint strict;\n#endif\n"),
             "-ansi");
    EXPECT_TRUE(ansi.has("int c89;")) << ansi.outcome.output;
    EXPECT_TRUE(ansi.has("int strict;")) << ansi.outcome.output;
    Sample cxx11("f.cpp", versions, "-std=gnu++11");
    EXPECT_TRUE(cxx11.has("long cxx=201103L;")) << cxx11.outcome.output;
    EXPECT_TRUE(fileExists(sharedConfigHome() + "/qbrefactor/gcc@c99.h"));
    Sample wrong("f.c", versions, "--config gcc -std=c++11");
    EXPECT_TRUE(wrong.has("-std=c++11 is not a standard of configuration gcc's language"))
        << wrong.outcome.output;
    EXPECT_TRUE(wrong.has("long c=201710L;")) << wrong.outcome.output;
}

TEST(FileSetup, DefinitionsMeanWhatTheyMeanToGcc) {
    const char* text =
        "[EMPTY] [LIST] [FLAG] [F(2)] [__GNUC__] [SPACED]\n"
        "#ifdef GONE\nint gone;\n#endif\n#ifdef __x86_64__\nint x86;\n#endif\n";
    Sample r("f.c", text,
          "-DEMPTY= -DLIST=a,b -DFLAG -D'F(x)=x+1' -D__GNUC__=99 '-DSPACED=a b' -DGONE -UGONE "
          "-U__x86_64__");
    EXPECT_EQ(r.outcome.exitCode, 0) << r.outcome.output;
    EXPECT_TRUE(r.has("[][a,b][1][2+1][99][a b]")) << r.outcome.output;
    EXPECT_FALSE(r.has("int gone;")) << r.outcome.output;
    EXPECT_FALSE(r.has("int x86;")) << r.outcome.output;
}

TEST(FileSetup, ForcedIncludesComeAheadOfTheFile) {
    ScratchDir dir;
    writeFile(dir.file("force.h"), "#define FORCED 7\nint forced_decl;\n");
    Sample r("f.c", "int v = FORCED;\n", "-include " + dir.file("force.h"));
    EXPECT_EQ(r.outcome.exitCode, 0) << r.outcome.output;
    size_t decl = r.outcome.output.find("int forced_decl;");
    ASSERT_NE(decl, std::string::npos) << r.outcome.output;
    EXPECT_LT(decl, r.outcome.output.find("int v=7;")) << r.outcome.output;
    Sample missing("f.c", "int v;\n", "-include /nonexistent/force.h");
    EXPECT_EQ(missing.outcome.exitCode, 1);
    EXPECT_TRUE(missing.has("force.h")) << missing.outcome.output;
}

TEST(FileSetup, EachFileGetsItsOwnEntryOfTheCompilationDatabase) {
    ScratchDir dir;
    writeFile(dir.file("inc/a.h"), "#define FROM_A 1\n");
    writeFile(dir.file("a.c"), "#include \"a.h\"\nint a = FROM_A + ONLY_A; long v = __STDC_VERSION__;\n");
    writeFile(dir.file("b.cpp"), "int b = ONLY_B;\n#ifdef ONLY_A\nint leak;\n#endif\n");
    writeFile(dir.file("c.c"), "int c = ONLY_A;\n");
    writeFile(dir.file("build/compile_commands.json"),
              "[{\"directory\": \"" + dir.file("build") + "\", \"file\": \"../a.c\","
              " \"command\": \"gcc -std=c99 -I../inc -DONLY_A=2 -c ../a.c\"},"
              " {\"directory\": \"" + dir.path() + "\", \"file\": \"b.cpp\","
              " \"arguments\": [\"g++\", \"-DONLY_B=\", \"-c\", \"b.cpp\"]}]");
    Outcome o = runCli("preprocess -p " + dir.file("build") + " " + dir.file("a.c") + " " +
                       dir.file("b.cpp") + " " + dir.file("c.c"));
    EXPECT_TRUE(contains(o.output, "int a=1+2;long v=199901L;")) << o.output;
    EXPECT_TRUE(contains(o.output, "int b=;")) << o.output;
    EXPECT_FALSE(contains(o.output, "int leak;")) << o.output;
    EXPECT_TRUE(contains(o.output, "int c=ONLY_A;")) << o.output;
    EXPECT_TRUE(contains(o.output, dir.file("c.c") + " is not in " + dir.file("build")))
        << o.output;
    Outcome bad = runCli("parse -p " + dir.path() + " " + dir.file("a.c"));
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(contains(bad.output, "cannot read " + dir.file("compile_commands.json")))
        << bad.output;
}

TEST(FileSetup, TheTreeCommandTakesTheSameWayIn) {
    Sample tree("f.c", "int f(int class) { return NUM; }\n", "-DNUM=3", "tree");
    EXPECT_EQ(tree.outcome.exitCode, 0) << tree.outcome.output;
    EXPECT_TRUE(tree.has("FunctionDefinition") || tree.has("Function")) << tree.outcome.output;
    Sample errors("f.c", "int f(int class) { return NUM }\n", "-DNUM=3", "tree --errors");
    EXPECT_EQ(errors.outcome.exitCode, 1);
    EXPECT_TRUE(errors.has("f.c:1:")) << errors.outcome.output;
    Sample roundTrip("f.c", "int f(int class) { return 1; }\n", "", "tree --roundtrip");
    EXPECT_TRUE(roundTrip.has("1 files, 1 identical, 0 differ, 0 unreadable, 1 parsed without "
                              "errors")) << roundTrip.outcome.output;
}

// The first parse with no configuration for the file's language detects the compilers.
TEST(FileSetup, DetectionHappensOnFirstUse) {
    ScratchDir home;
    std::string file = home.file("f.c");
    writeFile(file, "int f(int new) { return new; }\n");
    Outcome first = runCli("parse " + file, "XDG_CONFIG_HOME=" + home.path());
    EXPECT_EQ(first.exitCode, 0) << first.output;
    EXPECT_TRUE(contains(first.output, "detecting the installed compilers")) << first.output;
    EXPECT_TRUE(fileExists(home.file("qbrefactor/gcc.h")));
    Outcome second = runCli("parse " + file, "XDG_CONFIG_HOME=" + home.path());
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_EQ(second.output, "") << "detected once";
    std::string list = runCli("config list", "XDG_CONFIG_HOME=" + home.path()).output;
    EXPECT_TRUE(contains(list, "gcc\tcpp\t" + home.file("qbrefactor/gcc.h"))) << list;
}

TEST(FileSetupUnit, PreludesSayEachOptionAsGccDoes) {
    std::string text = preludeText("/cfg/gcc.h", {"-DA", "-DB=", "-DC=x,y", "-DF(a)=a", "-UD"},
                                   {"/p/force.h"});
    EXPECT_NE(text.find("#include \"/cfg/gcc.h\"\n#undef A\n#define A 1\n#undef B\n#define B \n"
                        "#undef C\n#define C x,y\n#undef F\n#define F(a) a\n#undef D\n"
                        "#include \"/p/force.h\"\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(preludeText("", {"-DX=1\nY"}, {}).find("#include"), std::string::npos);
    EXPECT_NE(preludeText("", {"-DA B", "-UC D"}, {}).find("#undef A\n#define A B 1\n#undef C\n"),
              std::string::npos)
        << "gcc's reading of a blank in a name";
    EXPECT_NE(preludeText("", {"-DX=1\nY"}, {}).find("#define X 1\n"), std::string::npos)
        << "a value ends at a line end";
}

TEST(FileSetupUnit, LanguageAndOrigin) {
    CompileOptions o;
    o.file = "/a/f.h";
    EXPECT_EQ(languageOfOptions(o), SourceLanguage::Cxx);
    o.standard = "-std=gnu11";
    EXPECT_EQ(languageOfOptions(o), SourceLanguage::C);
    o.language = "c++";
    EXPECT_EQ(languageOfOptions(o), SourceLanguage::Cxx);
    CompilerInfo info;
    info.path = "/opt/my gcc/bin/gcc";
    info.command = "gcc";
    info.modeOptions = {"-x", "c", "-std=c99"};
    std::string path;
    Strings mode;
    ASSERT_TRUE(headerOrigin(compilerHeaderText(info), path, mode));
    EXPECT_EQ(path, "/opt/my gcc/bin/gcc");
    EXPECT_EQ(mode, (Strings{"-x", "c", "-std=c99"}));
    EXPECT_FALSE(headerOrigin("#define __GNUC__ 12\n", path, mode));
}

TEST(FileSetupUnit, CommandLineOptions) {
    const char* argv[] = {"parse", "-I", "inc", "-isystem", "sys", "-DA=1", "-D", "B",
                          "-x", "c", "-std=c99", "--config", "gcc", "-p=build", "-include",
                          "f.h", "-k", "a.c", "b.c"};
    cli::FileSetOptions o;
    std::string error;
    ASSERT_TRUE(cli::parseFileSetOptions(19, const_cast<char**>(argv), 1, o, error)) << error;
    EXPECT_EQ(o.compilerArguments, (Strings{"-I", "inc", "-isystem", "sys", "-DA=1", "-D", "B",
                                            "-x", "c", "-std=c99", "-include", "f.h"}));
    EXPECT_EQ(o.configName, "gcc");
    EXPECT_EQ(o.compileCommands, "build");
    EXPECT_EQ(o.files, (Strings{"a.c", "b.c"}));
    EXPECT_TRUE(o.keepGoing);
    for (const char* bad : {"-std=", "-D", "--config", "-Wall", "--configure", "-p"}) {
        const char* args[] = {"parse", bad};
        cli::FileSetOptions none;
        EXPECT_FALSE(cli::parseFileSetOptions(2, const_cast<char**>(args), 1, none, error));
        EXPECT_EQ(error, std::string("unknown or incomplete option '") + bad + "'");
    }
}
