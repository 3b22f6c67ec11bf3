// The message file as the engine reads it: lookup, parameters, fallbacks, and a text for every
// status the engine gives.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/ModuleHost.h"
#include "QBMessageFile.h"
#include "QBMessageTexts.h"
#include "qbmessagefile.h"

using namespace testhost;

namespace {

const std::string builtFile = QB_BINARY_DIR "/share/qbrefactor/qbedit.qbb";

void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

}  // namespace

TEST(MessageFile, KnownNumbersGiveTheirTextAndUnknownOnesTheFallback) {
    setMessageFilePath(builtFile.c_str());
    EXPECT_STREQ(getMessage(-7502), "No transaction with that handle");
    std::string unknown = getMessage(0);
    EXPECT_FALSE(unknown.empty());
    EXPECT_EQ(getMessage(-7510), unknown) << "a gap in the numbers";
    EXPECT_EQ(getMessage(-99999), unknown);
    EXPECT_EQ(getMessage(5), unknown) << "positive numbers read as 0";
}

TEST(MessageFile, ParametersFillTheirSlots) {
    setMessageFilePath(builtFile.c_str());
    setMessageParameter(0, "main.c");
    setMessageParameter(1, "12");
    setMessageParameter(2, "4");
    EXPECT_STREQ(getMessage(-8000), "main.c:12:4: error: ");
    setMessageParameter(0, "f");
    setMessageParameter(1, "g");
    EXPECT_STREQ(getMessage(-8028), "cannot convert from 'f' to 'g'");
    EXPECT_STREQ(getMessage(-8035), "operands of '%' must be integral");
    setMessageParameter(10, "ignored");
    setMessageParameter(-1, "ignored");
    setMessageParameter(0, std::string(5000, 'x').c_str());
    EXPECT_EQ(std::string(getMessage(-8020)), "'" + std::string(1023, 'x') + "' not found");
}

TEST(MessageFile, TextsExpandPercentFormsAsWritten) {
    std::string dir = scratchDir();
    // magic, base, then (0,0) (-1,6) (-2,25) and the end
    std::string texts = std::string("zero") + '\0' + '\0' + "%s3 and %s4 %%done" + '\0' +
                        "%sq then % plain" + '\0';
    auto word = [](int v) {
        std::string w(4, '\0');
        for (int i = 0; i < 4; ++i) w[i] = char((unsigned(v) >> (8 * i)) & 0xFF);
        return w;
    };
    std::string bytes = word(4386) + word(40) + word(0) + word(0) + word(-1) + word(6) + word(-2) +
                        word(25) + word(0) + word(-1);
    ASSERT_EQ(bytes.size(), 40u);
    writeBytes(dir + "/qbedit.qbb", bytes + texts);
    setMessageFilePath((dir + "/qbedit.qbb").c_str());
    setMessageParameter(3, "three");
    setMessageParameter(4, "four");
    EXPECT_STREQ(getMessage(-1), "three and four %done");
    EXPECT_STREQ(getMessage(-2), "%sq index too large then % plain");
    EXPECT_STREQ(getMessage(-3), "zero");
}

TEST(MessageFile, BrokenFilesGiveTheirFallbackWithThePath) {
    std::string dir = scratchDir();
    std::string missing = dir + "/none.qbb";
    setMessageFilePath(missing.c_str());
    EXPECT_EQ(std::string(getMessage(-7502)),
              "Unable to open message file '" + missing + "' not found");
    writeBytes(dir + "/empty.qbb", "");
    setMessageFilePath((dir + "/empty.qbb").c_str());
    EXPECT_EQ(std::string(getMessage(-7502)), "Message file '" + dir + "/empty.qbb' empty");
    writeBytes(dir + "/bad.qbb", "not a message file");
    setMessageFilePath((dir + "/bad.qbb").c_str());
    EXPECT_EQ(std::string(getMessage(-1)), "Message file '" + dir + "/bad.qbb' not valid");
}

TEST(MessageFile, PathIsTheRootOrTheModuleWithTheNameGluedOn) {
    setenv("QBROOT", "/opt/editor/", 1);
    formMessageFilePath("/lib/libqbrefactor.so");
    EXPECT_STREQ(getMessageFilePath(), "/opt/editor/qbedit.qbb");
    unsetenv("QBROOT");
    formMessageFilePath("/lib/libqbrefactor.so");
    EXPECT_STREQ(getMessageFilePath(), "/lib/libqbrefactor.soqbedit.qbb");
    setenv("QBROOT", "", 1);
    formMessageFilePath(nullptr);
    EXPECT_STREQ(getMessageFilePath(), ".qbedit.qbb");
    formMessageFilePath(std::string(600, 'd').c_str());
    EXPECT_EQ(std::string(getMessageFilePath()).size(), 512u);
}

// The engine and our host give no number but by a name of the table, and the build writes every
// row of the table into the file once, with its text.
TEST(MessageFile, BuiltFileHoldsEveryRowOfTheTableOnce) {
    std::ifstream in(builtFile, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::map<int, std::vector<std::string>> inFile;
    auto status = qbmessagefile::forEachEntry(
        bytes.data(), bytes.size(),
        [&](int code, const char* text) { inFile[code].push_back(text); });
    ASSERT_EQ(status, qbmessagefile::VALID);
    std::set<std::string> names, texts;
    for (const qbmsg::Entry& row : qbmsg::kEntries) {
        SCOPED_TRACE(row.name);
        EXPECT_LE(row.code, 0);
        EXPECT_TRUE(names.insert(row.name).second) << "a name given twice";
        EXPECT_TRUE(texts.insert(row.text).second) << "a text under two numbers: " << row.text;
        ASSERT_EQ(inFile[row.code].size(), 1u) << "the file should hold " << row.code << " once";
        EXPECT_EQ(inFile[row.code][0], row.text);
    }
    EXPECT_EQ(inFile.size(), qbmsg::kEntryCount) << "a number in the file that the table lacks";
    EXPECT_EQ(qbmsg::WrongConfigurationType, qbmsg::Preprocessing) << "one number, two contracts";
}

// A status written as a bare number in engine or host code would be a number the table may lack.
TEST(MessageFile, EngineAndHostCodeNameEveryStatus) {
    std::regex rawStatus("-[0-9]{4}\\b");
    int files = 0;
    for (const char* folder : {"foundation", "framework", "lexer", "preprocessor", "parser",
                               "analysis", "refactorings", "host", "qbapi"}) {
        std::string root = std::string(QB_SOURCE_DIR) + "/" + folder;
        if (!std::filesystem::exists(root)) continue;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
            std::string ext = entry.path().extension().string();
            if (ext != ".cpp" && ext != ".h" && ext != ".inc") continue;
            ++files;
            std::ifstream file(entry.path());
            std::string line;
            for (int number = 1; std::getline(file, line); ++number)
                EXPECT_FALSE(std::regex_search(line, rawStatus))
                    << entry.path().string() << ":" << number << ": " << line;
        }
    }
    EXPECT_GT(files, 100);
}

TEST(MessageFile, ModuleFormatsErrorsThroughTheFileUnderQBROOT) {
    loadModule();
    std::string dir = scratchDir();
    int t = run("refactor_begin_transaction");
    std::string name = dir + "/x.c";
    run("refactor_add_file", {qbArgInt(t), qbArgString(name.c_str()), qbArgString(""),
                              qbArgString(""), qbArgString(""), qbArgString("")});
    run("refactor_c_parse", {qbArgInt(t), qbArgInt(0)});
    int var = qbHostVarNew();
    run("refactor_get_error", {qbArgInt(t), qbArgString(name.c_str()), qbArgInt(0), qbArgVar(var)});
    EXPECT_EQ(std::string(qbVarGetString(var)), name + ":0:0: error: File not found");
    qbVarFreeTemp(var);
    run("refactor_cancel_transaction", {qbArgInt(t)});
}
