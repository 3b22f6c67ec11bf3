#include "ModuleLoader.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "qbapi_host.h"

namespace cli {

std::string programFolder() {
    char buffer[4096];
    ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (n <= 0) return "./";
    std::string path(buffer, size_t(n));
    return path.substr(0, path.rfind('/') + 1);
}

std::string modulePath() {
    const char* chosen = std::getenv("QBREFACTOR_MODULE");
    if (chosen && *chosen) return chosen;
    return programFolder() + "../lib/libqbrefactor.so";
}

// QBROOT names the message file's folder only while the module and the host's texts load: the
// engine also reads it as the root that compilers.xml and its headers are relative to, and a
// folder of the build must not become that.
bool loadEngine() {
    const char* root = std::getenv("QBROOT");
    bool borrowed = !root || !*root;
    if (borrowed) setenv("QBROOT", (programFolder() + "../share/qbrefactor/").c_str(), 1);
    std::string path = modulePath();
    int registered = 0;
    int module = qbHostLoadModule(path.c_str(), &registered);
    qbHostMessageText(0);
    if (borrowed) unsetenv("QBROOT");
    if (module < 1) {
        std::fprintf(stderr, "qbrefactor: cannot load the engine %s: %s\n", path.c_str(),
                     qbHostLastLoadError());
        return false;
    }
    if (registered < 0) {
        std::fprintf(stderr, "qbrefactor: the engine did not register its commands: %s\n",
                     qbHostMessageText(registered));
        return false;
    }
    return true;
}

}  // namespace cli
