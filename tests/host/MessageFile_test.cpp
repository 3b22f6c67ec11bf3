// The message file as the engine reads it: lookup, parameters, fallbacks, and a text for every
// status the engine gives.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "support/ModuleHost.h"
#include "QBMessageFile.h"

using namespace testhost;

namespace {

const std::string builtFile = QB_BINARY_DIR "/share/qbrefactor/qbedit.qbb";

std::string source(const char* relative) {
    std::ifstream in(std::string(QB_SOURCE_DIR) + "/" + relative);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// Every "= -NNNN" in a header of named statuses.
std::set<int> codesIn(const char* header) {
    std::set<int> codes;
    std::string text = source(header);
    std::regex number("=\\s*(-[0-9]+)");
    for (std::sregex_iterator it(text.begin(), text.end(), number), end; it != end; ++it)
        codes.insert(std::stoi((*it)[1]));
    return codes;
}

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

TEST(MessageFile, EveryStatusHasItsOwnText) {
    setMessageFilePath(builtFile.c_str());
    std::set<int> codes = codesIn("host/QBRefactorStatus.h");
    for (int c : codesIn("qbapi/include/qbapi_host.h")) codes.insert(c);
    // The statuses and front-end diagnostics that other layers give.
    for (int c : {-1, -2, -8, -36, -54, -2038, -3015, -3022, -3024, -3073, -7500, -7501, -7502,
                  -7503, -7504, -7505, -7506, -7507, -7508, -7509, -7511, -7512, -7513, -7514,
                  -7515, -7516, -7517, -7518, -7519, -7520, -7524, -7525, -7526, -7527, -7528,
                  -7529, -7531, -7532, -7533, -7534, -7535})
        codes.insert(c);
    for (int c = -8089; c <= -8000; ++c)
        if (c != -8009 && c != -8061) codes.insert(c);
    ASSERT_GT(codes.size(), 130u);
    std::string unknown = getMessage(0);
    for (int c : codes) EXPECT_NE(std::string(getMessage(c)), unknown) << "no text for " << c;
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
