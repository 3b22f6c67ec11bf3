#include "CliRunner.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

std::string capture(const std::string& command, int& exitCode) {
    std::string output;
    exitCode = -1;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return output;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, n);
    int status = pclose(pipe);
    exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return output;
}

bool newerThan(const std::string& path, const std::string& than) {
    std::error_code a, b;
    auto when = fs::last_write_time(path, a), other = fs::last_write_time(than, b);
    return !a && !b && when >= other;
}

}  // namespace

std::string sharedConfigHome() {
    const char* base = std::getenv("QB_TEST_TMP");
    std::string home = std::string(base && *base ? base : "/tmp") + "/cli-config-home";
    std::string xml = home + "/qbrefactor/compilers.xml";
    fs::create_directories(home);
    int fd = open((home + ".lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0644);
    if (fd >= 0) flock(fd, LOCK_EX);
    if (!newerThan(xml, QB_CLI_PATH)) {
        int rc;
        capture("env -u QBROOT XDG_CONFIG_HOME=" + home + " " QB_CLI_PATH " config detect 2>&1", rc);
    }
    if (fd >= 0) close(fd);
    return home;
}

Outcome runCli(const std::string& arguments, const std::string& environment,
               const std::string& directory) {
    std::string command = (directory.empty() ? "" : "cd '" + directory + "' && ") +
                          "env -u QBROOT XDG_CONFIG_HOME=" + sharedConfigHome() + " " +
                          environment + " " QB_CLI_PATH " " + arguments + " 2>&1";
    Outcome o{-1, ""};
    o.output = capture(command, o.exitCode);
    return o;
}

std::string shellOutput(const std::string& command) {
    int ignored;
    return capture(command, ignored);
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}
