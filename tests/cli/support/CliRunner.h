// Running the qbrefactor program as a user does, for the command-line tests.
#pragma once

#include <string>

struct Outcome {
    int exitCode;
    std::string output;  // stdout and stderr together
};

Outcome runCli(const std::string& arguments, const std::string& environment = "");
bool contains(const std::string& text, const std::string& part);
