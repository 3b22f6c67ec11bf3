#include "ConfigTestSupport.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace configtest {

ScratchDir::ScratchDir() {
    const char* base = std::getenv("QB_TEST_TMP");
    std::string root = base && *base ? base : "/tmp";
    std::filesystem::create_directories(root);
    std::string pattern = root + "/config-XXXXXX";
    if (!mkdtemp(&pattern[0])) throw std::runtime_error("mkdtemp failed under " + root);
    dir = pattern;
}

ScratchDir::~ScratchDir() {
    std::error_code ignored;
    std::filesystem::permissions(dir, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ignored);
    std::filesystem::remove_all(dir, ignored);
}

ScopedEnv::ScopedEnv(const char* name, const char* value) : name(name) {
    const char* current = std::getenv(name);
    hadOld = current != nullptr;
    if (hadOld) old = current;
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

ScopedEnv::~ScopedEnv() {
    if (hadOld)
        setenv(name.c_str(), old.c_str(), 1);
    else
        unsetenv(name.c_str());
}

bool fileExists(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}

}  // namespace configtest
