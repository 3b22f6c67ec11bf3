// `qbrefactor config` list, show, add and delete, and its refusal to touch a bad compilers.xml.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "../host/support/ConfigTestSupport.h"
#include "ConfigCommand.h"

using configtest::fileExists;
using configtest::readFile;
using configtest::ScopedEnv;
using configtest::ScratchDir;
using configtest::writeFile;
using namespace qbcli;

namespace {

class ConfigCommand : public ::testing::Test {
protected:
    int run(std::vector<std::string> args) {
        args.insert(args.begin(), {"config", "--file", xml});
        std::vector<char*> argv;
        for (std::string& a : args) argv.push_back(&a[0]);
        std::ostringstream o, e;
        int rc = runConfigCommand(int(argv.size()), argv.data(), o, e);
        out = o.str();
        err = e.str();
        return rc;
    }
    ScratchDir scratch;
    std::string xml = scratch.file("compilers.xml");
    std::string out, err;
    ScopedEnv module{"QBREFACTOR_MODULE", QB_MODULE_PATH};
    ScopedEnv root{"QBROOT", nullptr};
};

TEST_F(ConfigCommand, AddListShowDelete) {
    ASSERT_EQ(run({"list"}), 0) << err;
    EXPECT_EQ(out, "");
    EXPECT_FALSE(fileExists(xml));
    ASSERT_EQ(run({"add", "mine", "/opt/h/mine.h", "/opt/inc", "/usr/include"}), 0) << err;
    EXPECT_EQ(out, "added mine\n");
    ASSERT_EQ(run({"add", "--java", "jdk", "/src", "/lib/a.jar"}), 0) << err;
    ASSERT_EQ(run({"list"}), 0) << err;
    EXPECT_EQ(out, "mine\tcpp\t/opt/h/mine.h\njdk\tjava\t/src\n");
    ASSERT_EQ(run({"show", "mine"}), 0) << err;
    EXPECT_EQ(out, "Name: mine\nType: cpp\nHeader: /opt/h/mine.h\nInclude: /opt/inc\n"
                   "Include: /usr/include\n");
    ASSERT_EQ(run({"show", "jdk"}), 0) << err;
    EXPECT_EQ(out, "Name: jdk\nType: java\nRoot: /src\nJAR: /lib/a.jar\n");
    ASSERT_EQ(run({"add", "mine", "/opt/h/other.h", "/x"}), 0) << err;
    EXPECT_EQ(out, "replaced mine\n");
    ConfigurationValues values;
    std::string error;
    ASSERT_TRUE(readConfiguration(xml, "mine", values, error)) << error;
    EXPECT_EQ(values.header, "/opt/h/other.h");
    EXPECT_EQ(values.includes, std::vector<std::string>{"/x"});
    EXPECT_FALSE(readConfiguration(xml, "jdk", values, error));
    ASSERT_EQ(run({"delete", "jdk"}), 0) << err;
    EXPECT_EQ(run({"delete", "jdk"}), 1);
    EXPECT_NE(err.find("no configuration named 'jdk'"), std::string::npos) << err;
    EXPECT_EQ(run({"show", "jdk"}), 1);
    std::vector<std::string> names;
    ASSERT_TRUE(listConfigurationNames(xml, names, error));
    EXPECT_EQ(names, std::vector<std::string>{"mine"});
}

TEST_F(ConfigCommand, RelativePathsAreTakenFromTheCurrentDirectory) {
    ASSERT_EQ(run({"add", "rel", "h/x.h", "inc"}), 0) << err;
    ConfigurationValues values;
    std::string error;
    ASSERT_TRUE(readConfiguration(xml, "rel", values, error)) << error;
    std::string cwd = std::filesystem::current_path().string();
    EXPECT_EQ(values.header, cwd + "/h/x.h");
    EXPECT_EQ(values.includes, std::vector<std::string>{cwd + "/inc"});
}

TEST_F(ConfigCommand, BadUsageSaysHow) {
    EXPECT_EQ(run({}), 2);
    EXPECT_NE(err.find("usage: qbrefactor config"), std::string::npos);
    EXPECT_EQ(run({"frobnicate"}), 2);
    EXPECT_EQ(run({"add", "only-a-name"}), 2);
    EXPECT_EQ(run({"show"}), 2);
    EXPECT_FALSE(fileExists(xml));
}

// A compilers.xml that can't be used stops every command before anything is written.
TEST_F(ConfigCommand, BadFileIsReportedAndLeftAlone) {
    struct Case {
        const char* what;
        const char* text;
        const char* message;
    } cases[] = {
        {"corrupt", "<Compilers Version=\"10.0\">\n<C_Configuration Name=\"a\">\n</Compilers>\n",
         "not well-formed XML (status -3042): line 3"},
        {"another root", "<Other/>\n", "no Compilers element"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        writeFile(xml, c.text);
        for (std::vector<std::string> args :
             {std::vector<std::string>{"list"}, {"add", "x", "/h"}, {"delete", "a"}, {"detect", "gcc"}}) {
            EXPECT_EQ(run(args), 1) << args[0];
            EXPECT_EQ(err.find("qbrefactor: cannot use " + xml + ": "), 0u) << err;
            EXPECT_NE(err.find(c.message), std::string::npos) << err;
            EXPECT_EQ(readFile(xml), c.text);
        }
    }
    EXPECT_FALSE(fileExists(scratch.file("gcc.h")));
    std::filesystem::remove(xml);
    std::filesystem::create_directory(xml);
    EXPECT_EQ(run({"list"}), 1);
    EXPECT_NE(err.find("could not be read (status -3041): not a regular file"), std::string::npos)
        << err;
}

TEST_F(ConfigCommand, UnwritableLocationIsReported) {
    writeFile(scratch.file("blocker"), "");
    xml = scratch.file("blocker/compilers.xml");
    EXPECT_EQ(run({"add", "x", "/h"}), 1);
    EXPECT_NE(err.find("cannot write " + xml), std::string::npos) << err;
}

TEST(ConfigLocation, RootThenXdgThenHome) {
    ScopedEnv root("QBROOT", "/opt/qb/");
    ScopedEnv xdg("XDG_CONFIG_HOME", "/xdg");
    ScopedEnv home("HOME", "/home/u");
    EXPECT_EQ(configurationFilePath(), "/opt/qb/compilers.xml");
    ScopedEnv noRoot("QBROOT", "");
    EXPECT_EQ(configurationFilePath(), "/xdg/qbrefactor/compilers.xml");
    ScopedEnv noXdg("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(configurationFilePath(), "/home/u/.config/qbrefactor/compilers.xml");
}

TEST(ConfigLocation, ModuleIsFoundBesideTheProgramOrWhereSaid) {
    ScopedEnv given("QBREFACTOR_MODULE", "/somewhere/libqbrefactor.so");
    EXPECT_EQ(engineModulePath(), "/somewhere/libqbrefactor.so");
    ScopedEnv unset("QBREFACTOR_MODULE", nullptr);
    EXPECT_TRUE(std::filesystem::equivalent(engineModulePath(), QB_MODULE_PATH));
    ScopedEnv wrong("QBREFACTOR_MODULE", "/no/such/module.so");
    std::vector<std::string> names;
    std::string error;
    EXPECT_FALSE(listConfigurationNames("/tmp/x.xml", names, error));
    EXPECT_NE(error.find("cannot load the engine module /no/such/module.so"), std::string::npos);
}

}  // namespace
