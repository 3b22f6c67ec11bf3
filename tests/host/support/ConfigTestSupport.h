// Scratch directories, files and environment for the configuration tests.
#pragma once

#include <string>

namespace configtest {

// A fresh directory under the build's test area, removed with everything in it at the end.
class ScratchDir {
public:
    ScratchDir();
    ~ScratchDir();
    const std::string& path() const { return dir; }
    std::string file(const std::string& name) const { return dir + "/" + name; }

private:
    std::string dir;
};

// Sets (or, with a null value, unsets) an environment variable for one scope.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value);
    ~ScopedEnv();

private:
    std::string name;
    std::string old;
    bool hadOld;
};

bool fileExists(const std::string& path);
std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& text);

}  // namespace configtest
