// Scratch directories, files and environment for the configuration tests (host and cli).
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace configtest {

// A fresh directory under the build's test area, removed with everything in it at the end.
class ScratchDir {
public:
    ScratchDir() {
        const char* base = std::getenv("QB_TEST_TMP");
        std::string root = base && *base ? base : "/tmp";
        std::filesystem::create_directories(root);
        std::string pattern = root + "/config-XXXXXX";
        if (!mkdtemp(&pattern[0])) throw std::runtime_error("mkdtemp failed under " + root);
        dir = pattern;
    }
    ~ScratchDir() {
        std::error_code ignored;
        std::filesystem::remove_all(dir, ignored);
    }
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    const std::string& path() const { return dir; }
    std::string file(const std::string& name) const { return dir + "/" + name; }

private:
    std::string dir;
};

// Sets (or, with a null value, unsets) an environment variable for one scope.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value) : name(name) {
        const char* current = std::getenv(name);
        hadOld = current != nullptr;
        if (hadOld) old = current;
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~ScopedEnv() {
        if (hadOld)
            setenv(name.c_str(), old.c_str(), 1);
        else
            unsetenv(name.c_str());
    }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    std::string name;
    std::string old;
    bool hadOld;
};

inline bool fileExists(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void writeFile(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream out(path, std::ios::binary);
    out << text;
}

}  // namespace configtest
