// Drives the built module through qbapi the way the editor's macro code does.
#pragma once

#include <string>
#include <vector>

#include "qbapi_host.h"

namespace testhost {

// Loads the module once per process, with QBROOT naming the built message file.
void loadModule();
// Calls a command by macro name; a host-level failure fails the test. Returns the result.
int run(const char* name, std::vector<QBArgRecord> args = {});
// The host status of a call (0 when the command ran).
int hostStatus(const char* name, std::vector<QBArgRecord> args = {});
// A function of the module by its exported name.
void* moduleSymbol(const char* name);

// A fresh folder for one test, removed at the end of the process.
std::string scratchDir();
void writeFile(const std::string& path, const std::string& text);
std::string readFile(const std::string& path);
std::string windowText(int wid);

// Records every call of a macro function and answers with a fixed value.
struct MacroRecorder {
    explicit MacroRecorder(const char* name, int answer = 0);
    ~MacroRecorder();
    std::string name;
    int answer;
    std::vector<std::vector<std::string>> calls;  // each argument as text
};

}  // namespace testhost
