// Running the qbrefactor program as a user does, for the command-line tests.
#pragma once

#include <string>

struct Outcome {
    int exitCode;
    std::string output;  // stdout and stderr together
};

// Runs the program with the arguments (shell words) in the environment given (NAME=value
// words), in directory when one is given. Unless the environment names them, XDG_CONFIG_HOME
// is sharedConfigHome() and QBROOT is unset, so that no test reads or writes the user's own
// configurations.
Outcome runCli(const std::string& arguments, const std::string& environment = "",
               const std::string& directory = "");
bool contains(const std::string& text, const std::string& part);
// What a shell command prints on stdout.
std::string shellOutput(const std::string& command);
// A folder whose qbrefactor/compilers.xml holds the configurations `qbrefactor config detect`
// finds here; detected once for all the test programs (and again after the program is rebuilt).
std::string sharedConfigHome();
