#include "ModuleHost.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace testhost {

namespace {

void* moduleHandle = nullptr;

std::string argumentText(const QBArgRecord& r) {
    if (r.tag == QBARG_STRING) return qbArgText(r) ? qbArgText(r) : "(null)";
    if (r.tag == QBARG_VAR) return "var:" + std::to_string(r.value);
    return std::to_string(r.value);
}

int recordCall(void* user, int argCount, const QBArgRecord* args) {
    auto* recorder = static_cast<MacroRecorder*>(user);
    std::vector<std::string> call;
    for (int i = 0; i < argCount; ++i) call.push_back(argumentText(args[i]));
    recorder->calls.push_back(call);
    return recorder->answer;
}

}  // namespace

void loadModule() {
    if (moduleHandle) return;
    setenv("QBROOT", QB_BINARY_DIR "/share/qbrefactor/", 1);
    int registered = -1;
    ASSERT_GE(qbHostLoadModule(QB_MODULE_PATH, &registered), 1) << qbHostLastLoadError();
    ASSERT_EQ(registered, 0);
    moduleHandle = dlopen(QB_MODULE_PATH, RTLD_NOW | RTLD_NOLOAD);
}

int run(const char* name, std::vector<QBArgRecord> args) {
    int result = 0;
    int status = qbHostInvoke(name, int(args.size()), args.data(), &result);
    EXPECT_EQ(status, 0) << "host status calling " << name;
    return result;
}

int hostStatus(const char* name, std::vector<QBArgRecord> args) {
    int result = 0;
    return qbHostInvoke(name, int(args.size()), args.data(), &result);
}

void* moduleSymbol(const char* name) { return moduleHandle ? dlsym(moduleHandle, name) : nullptr; }

std::string scratchDir() {
    const char* base = std::getenv("QB_TEST_TMP");
    std::string root = base ? base : "/tmp";
    std::string cmd = "mkdir -p '" + root + "'";
    EXPECT_EQ(std::system(cmd.c_str()), 0);
    std::string pattern = root + "/hostXXXXXX";
    std::vector<char> buf(pattern.begin(), pattern.end());
    buf.push_back(0);
    const char* made = mkdtemp(buf.data());
    EXPECT_NE(made, nullptr);
    return made ? made : root;
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string windowText(int wid) {
    size_t length = 0;
    const char* text = qbHostWindowText(wid, &length);
    return text ? std::string(text, length) : std::string();
}

MacroRecorder::MacroRecorder(const char* name, int answer) : name(name), answer(answer) {
    qbHostRegisterMacroFunction(name, recordCall, this);
}

MacroRecorder::~MacroRecorder() { qbHostUnregisterMacroFunction(name.c_str()); }

}  // namespace testhost
