#include "CliRunner.h"

#include <sys/wait.h>

#include <cstdio>

Outcome runCli(const std::string& arguments, const std::string& environment) {
    std::string command = environment + " " QB_CLI_PATH " " + arguments + " 2>&1";
    Outcome o{-1, ""};
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return o;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) o.output.append(buffer, n);
    int status = pclose(pipe);
    o.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return o;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}
