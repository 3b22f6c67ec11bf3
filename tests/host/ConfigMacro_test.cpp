// The configuration commands as the editor's macro code calls them: by macro name, with host
// variables for their out arguments, in the loaded module.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "qbapi.h"
#include "qbapi_xml.h"
#include "support/ConfigTestSupport.h"
#include "support/ModuleHost.h"

using configtest::ScratchDir;
using configtest::ScopedEnv;
using testhost::run;

namespace {

std::string stringOut(const char* command, std::vector<QBArgRecord> args, int* rc = nullptr) {
    int var = qbHostVarNew();
    args.push_back(qbArgVar(var));
    int result = run(command, args);
    if (rc) *rc = result;
    std::string text = qbVarGetString(var) ? qbVarGetString(var) : "";
    qbVarFreeTemp(var);
    return text;
}

class ConfigMacro : public ::testing::Test {
protected:
    // Loading sets QBROOT for the message file; it must be loaded before each test unsets it,
    // or a header would be stored relative to the build's message folder.
    static void SetUpTestSuite() { testhost::loadModule(); }
    void SetUp() override {
        ASSERT_EQ(std::getenv("QBROOT"), nullptr);
        ASSERT_EQ(run("refactor_config_open", {qbArgString(xml.c_str())}),
                  qbmsg::FileNotFound);
    }
    void TearDown() override { run("refactor_config_close"); }
    std::vector<std::string> includes(const char* name) {
        std::vector<std::string> out;
        int n = run("refactor_config_count_includes", {qbArgString(name)});
        for (int i = 0; i < n; ++i)
            out.push_back(stringOut("refactor_config_get_include", {qbArgString(name), qbArgInt(i)}));
        return out;
    }
    ScratchDir scratch;
    std::string xml = scratch.file("compilers.xml");
    ScopedEnv root{"QBROOT", nullptr};
};

}  // namespace

TEST_F(ConfigMacro, AddTwiceKeepsThreeIncludesInMemoryAndTwoInTheFile) {
    ASSERT_EQ(run("refactor_config_add",
                  {qbArgString("x"), qbArgString("/h/x.h"), qbArgString("a;b")}), 0);
    ASSERT_EQ(run("refactor_config_add", {qbArgString("x"), qbArgString("/h/y.h"), qbArgString("c")}),
              0);
    EXPECT_EQ(run("refactor_config_count"), 1);
    EXPECT_EQ(stringOut("refactor_config_get_name", {qbArgInt(0)}), "x");
    EXPECT_EQ(includes("x"), (std::vector<std::string>{"a", "b", "c"}));
    ASSERT_EQ(run("refactor_config_save", {qbArgString(xml.c_str())}), 0);
    ASSERT_EQ(run("refactor_config_open", {qbArgString(xml.c_str())}), 0);
    EXPECT_EQ(includes("x"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(stringOut("refactor_config_get_header", {qbArgString("x")}), "/h/x.h");
    EXPECT_NE(testhost::readFile(xml).find("Header=\"/h/x.h\""), std::string::npos)
        << testhost::readFile(xml);
}

TEST_F(ConfigMacro, MacroFormsCutTextsAt1023Characters) {
    std::string longName(2000, 'n'), longInclude(1500, 'i');
    ASSERT_EQ(run("refactor_config_add", {qbArgString(longName.c_str()), qbArgString("/h"),
                                           qbArgString(longInclude.c_str())}),
              0);
    std::string name = stringOut("refactor_config_get_name", {qbArgInt(0)});
    EXPECT_EQ(name, std::string(1023, 'n'));
    EXPECT_EQ(stringOut("refactor_config_get_include", {qbArgString(name.c_str()), qbArgInt(0)}),
              std::string(1023, 'i'));
}

TEST_F(ConfigMacro, DeleteAllOfTypeCppRemovesTheCConfigurations) {
    run("refactor_config_add", {qbArgString("c1"), qbArgString("/h1"), qbArgString("a")});
    run("refactor_config_add_java", {qbArgString("j1"), qbArgString("/src"), qbArgString("x.jar")});
    EXPECT_EQ(stringOut("refactor_config_get_type", {qbArgInt(0)}), "cpp");
    ASSERT_EQ(run("refactor_config_delete_all_type", {qbArgString("CPP")}), 0);
    EXPECT_EQ(run("refactor_config_count"), 1);
    EXPECT_EQ(stringOut("refactor_config_get_name", {qbArgInt(0)}), "j1");
    int rc = 0;
    EXPECT_EQ(stringOut("refactor_config_get_name", {qbArgInt(5)}, &rc), "");
    EXPECT_LT(rc, 0);
}
