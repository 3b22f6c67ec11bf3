// A file read as C ("-xc" in refactor_add_file's options): C++'s keywords are names, there is no
// __cplusplus, and __STDC_VERSION__ is what the configuration says. Without the option, the
// editor's one mode stays as it was.
#include <gtest/gtest.h>

#include <string>

#include "qbapi.h"
#include "support/ModuleHost.h"

using namespace testhost;

namespace {

const int FILE_HAS_ERRORS = -7516;
const int DEFINE_OPTION_REFUSED = -7507;

struct CFile {
    std::string dir = scratchDir();
    std::string path = dir + "/file.c";
    int t = -1;

    CFile(const std::string& text, const std::string& options, const std::string& config = "") {
        loadModule();
        writeFile(path, text);
        t = run("refactor_begin_transaction");
        added = run("refactor_add_file",
                    {qbArgInt(t), qbArgString(path.c_str()), qbArgString(dir.c_str()),
                     qbArgString(""), qbArgString(options.c_str()), qbArgString(config.c_str())});
    }
    ~CFile() { run("refactor_cancel_transaction", {qbArgInt(t)}); }

    int parse() {
        MacroRecorder shown("refactor_show_errors");
        return run("refactor_c_parse", {qbArgInt(t), qbArgInt(0)});
    }
    int errors() { return run("refactor_count_errors", {qbArgInt(t), qbArgString(path.c_str())}); }
    std::string firstError() {
        int var = qbHostVarNew();
        run("refactor_get_error", {qbArgInt(t), qbArgString(path.c_str()), qbArgInt(0), qbArgVar(var)});
        std::string text = qbVarGetString(var) ? qbVarGetString(var) : "";
        qbVarFreeTemp(var);
        return text;
    }
    std::string preprocess() {
        int wid = qbHostWindowCreate("");
        run("refactor_c_preprocess", {qbArgInt(t), qbArgInt(wid), qbArgInt(0)});
        std::string text = windowText(wid);
        qbHostWindowDestroy(wid);
        return text;
    }
    int added = 0;
};

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

const char* const cxxWordsAsNames =
    "int f(int template) { return template + new; }\n"
    "typedef int wchar_t;\n"
    "struct namespace { int private, public, protected; } class;\n"
    "int this, delete, operator, virtual, try, catch, throw, using, typename, friend;\n"
    "int bool = 0, true = 1, false = 0, and, or, not, xor, bitand, compl;\n"
    "int g(void) { this = delete + operator; return class.private + bool; }\n";

}  // namespace

TEST(CLanguage, CxxKeywordsAreNamesInACFile) {
    CFile c(cxxWordsAsNames, "-xc");
    ASSERT_EQ(c.added, 0);
    EXPECT_EQ(c.parse(), 0) << c.firstError();
    EXPECT_EQ(c.errors(), 0) << c.firstError();
}

TEST(CLanguage, WithoutTheOptionTheOneModeStays) {
    CFile plain(cxxWordsAsNames, "");
    EXPECT_EQ(plain.parse(), FILE_HAS_ERRORS);
    EXPECT_GT(plain.errors(), 0);
    CFile cxx(cxxWordsAsNames, "-xc++");
    ASSERT_EQ(cxx.added, 0);
    cxx.parse();
    EXPECT_EQ(cxx.errors(), plain.errors()) << "-xc++ is the default mode";
    CFile bad("int x;\n", "-xfortran");
    EXPECT_EQ(bad.added, DEFINE_OPTION_REFUSED);
}

TEST(CLanguage, NoCplusplusInC) {
    const char* text =
        "#ifdef __cplusplus\nint cxx;\n#else\nint c;\n#endif\n"
        "#if defined(__cplusplus) || __cplusplus\nint cxx2;\n#endif\n"
        "long v = __cplusplus;\n";
    std::string c = CFile(text, "-xc").preprocess();
    EXPECT_TRUE(has(c, "int c;")) << c;
    EXPECT_FALSE(has(c, "cxx")) << c;
    EXPECT_TRUE(has(c, "long v=__cplusplus;")) << c;
    std::string plain = CFile(text, "").preprocess();
    EXPECT_TRUE(has(plain, "int cxx;")) << plain;
    EXPECT_TRUE(has(plain, "int cxx2;")) << plain;
    EXPECT_TRUE(has(plain, "long v=199711L;")) << plain;
}

TEST(CLanguage, StdcVersionIsTheConfigurationsInC) {
    const char* text =
        "#ifdef __STDC_VERSION__\nlong v = __STDC_VERSION__;\n#else\nint c89;\n#endif\n"
        "int s = __STDC__;\n";
    std::string dir = scratchDir(), c99 = dir + "/c99.h", c89 = dir + "/c89.h";
    writeFile(c99, "#define __STDC_VERSION__ 199901L\n");
    writeFile(c89, "#define __GNUC__ 12\n");
    std::string withC99 = CFile(text, "-xc", c99).preprocess();
    EXPECT_TRUE(has(withC99, "long v=199901L;")) << withC99;
    std::string withC89 = CFile(text, "-xc", c89).preprocess();
    EXPECT_TRUE(has(withC89, "int c89;")) << withC89;
    EXPECT_TRUE(has(withC89, "int s=1;")) << withC89;
    std::string plain = CFile(text, "", c89).preprocess();
    EXPECT_TRUE(has(plain, "long v=199711L;")) << "the builtin of the one mode: " << plain;
}

TEST(CLanguage, HeadersPastesAndDefinitionsAreReadAsCToo) {
    const char* text = "#include \"names.h\"\n#define CAT(a, b) a##b\n"
                       "int CAT(cl, ass) = 1;\nint *p = &SELF;\n_Bool flag = 1;\n";
    CFile c(text, "-xc -DSELF=this");
    writeFile(c.dir + "/names.h", "extern int new, this;\nstruct template { int class; };\n");
    EXPECT_EQ(c.parse(), 0);
    EXPECT_EQ(c.errors(), 0) << c.firstError();
    CFile again(text, "-xc -DSELF=this");
    writeFile(again.dir + "/names.h", "extern int new, this;\n");
    std::string out = again.preprocess();
    EXPECT_TRUE(has(out, "int class=1;")) << out;
    EXPECT_TRUE(has(out, "&this;")) << out;
}

TEST(CLanguage, ACFileWithAnErrorStillFails) {
    CFile c("int new = ;\n", "-xc");
    EXPECT_EQ(c.parse(), FILE_HAS_ERRORS);
    EXPECT_GE(c.errors(), 1);
    EXPECT_TRUE(has(c.firstError(), "file.c")) << c.firstError();
}
