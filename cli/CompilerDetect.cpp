#include "CompilerDetect.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <set>
#include <sstream>

extern char** environ;

namespace qbcli {
namespace {

// Definitions for GNU extensions the grammar does not know. An entry with a probe applies only
// when the compiler, in the configuration's mode, compiles the probe.
enum Applies { BOTH, C_ONLY, CXX_ONLY };
struct Compatibility {
    const char* macro;  // name, with parameters for a function-like macro
    const char* body;
    Applies applies;
    const char* probe;  // null: always
};

const Compatibility kCompatibility[] = {
    {"__attribute__(x)", "", BOTH, nullptr},
    {"__attribute(x)", "", BOTH, nullptr},
    {"__extension__", "", BOTH, nullptr},
    {"__restrict", "", BOTH, nullptr},
    {"__restrict__", "", BOTH, nullptr},
    {"__thread", "", BOTH, nullptr},
    {"__typeof__", "__typeof", BOTH, nullptr},
    {"__alignof__(x)", "sizeof(x)", BOTH, nullptr},
    {"__alignof(x)", "sizeof(x)", BOTH, nullptr},
    {"__builtin_va_list", "char*", BOTH, nullptr},
    {"__builtin_va_start(v, l)", "((void)0)", BOTH, nullptr},
    {"__builtin_va_end(v)", "((void)0)", BOTH, nullptr},
    {"__builtin_va_copy(d, s)", "((void)0)", BOTH, nullptr},
    {"__builtin_va_arg(v, t)", "(*(t*)0)", BOTH, nullptr},
    {"__builtin_offsetof(t, m)", "((unsigned long)&((t*)0)->m)", BOTH, nullptr},
    {"__int128", "long long", BOTH, nullptr},
    {"__int128_t", "long long", BOTH, nullptr},
    {"__uint128_t", "unsigned long long", BOTH, nullptr},
    {"__complex__", "", BOTH, nullptr},
    {"__null", "0", CXX_ONLY, nullptr},
    {"_Float16", "float", BOTH, "_Float16 x;"},
    {"_Float32", "float", BOTH, "_Float32 x;"},
    {"_Float64", "double", BOTH, "_Float64 x;"},
    {"_Float128", "long double", BOTH, "_Float128 x;"},
    {"_Float32x", "double", BOTH, "_Float32x x;"},
    {"_Float64x", "long double", BOTH, "_Float64x x;"},
    {"__float128", "long double", BOTH, "__float128 x;"},
    {"__float80", "long double", BOTH, "__float80 x;"},
    {"_Complex", "", BOTH, "double _Complex x;"},
    {"_Noreturn", "", C_ONLY, "_Noreturn void f(void);"},
    {"_Thread_local", "", C_ONLY, "_Thread_local int x;"},
    {"_Alignas(x)", "", C_ONLY, "_Alignas(8) int x;"},
    {"_Alignof(x)", "sizeof(x)", C_ONLY, "int x = _Alignof(int);"},
    {"_Static_assert(c, m)", "", C_ONLY, "_Static_assert(1, \"\");"},
    {"_Atomic", "", C_ONLY, "_Atomic int x;"},
};

std::vector<std::string> cLocaleEnvironment() {
    std::vector<std::string> env;
    for (char** e = environ; *e; ++e) {
        std::string entry(*e);
        if (entry.rfind("LC_", 0) == 0 || entry.rfind("LANG=", 0) == 0 ||
            entry.rfind("LANGUAGE=", 0) == 0)
            continue;
        env.push_back(entry);
    }
    env.push_back("LC_ALL=C");
    return env;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& t : texts) pointers.push_back(&t[0]);
    pointers.push_back(nullptr);
    return pointers;
}

std::string readAll(int fd) {
    std::string text;
    char chunk[8192];
    for (;;) {
        ssize_t n = read(fd, chunk, sizeof chunk);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        text.append(chunk, size_t(n));
    }
    return text;
}

int spawnCapturing(std::vector<std::string> argv, int stream, int pipeWrite, int pipeRead,
                   pid_t& pid) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, stream == 1 ? 2 : 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, pipeWrite, stream);
    posix_spawn_file_actions_addclose(&actions, pipeRead);
    posix_spawn_file_actions_addclose(&actions, pipeWrite);
    std::vector<std::string> env = cLocaleEnvironment();
    std::vector<char*> args = pointersTo(argv), envp = pointersTo(env);
    int rc = posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    return rc;
}

bool isExecutableFile(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

std::string baseName(const std::string& path) {
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string trim(const std::string& text) {
    size_t start = text.find_first_not_of(" \t\r");
    size_t end = text.find_last_not_of(" \t\r");
    return start == std::string::npos ? std::string() : text.substr(start, end - start + 1);
}

std::string macroName(const char* macro) {
    std::string name(macro);
    return name.substr(0, name.find('('));
}

// Compiles the probe in the compiler's mode; true when it is accepted.
bool compilerAccepts(const CompilerInfo& info, const char* probe) {
    char path[] = "/tmp/qbrefactor-probe-XXXXXX";
    int fd = mkstemp(path);
    if (fd < 0) return false;
    bool written = write(fd, probe, std::strlen(probe)) == ssize_t(std::strlen(probe));
    close(fd);
    std::vector<std::string> argv{info.path};
    argv.insert(argv.end(), info.modeOptions.begin(), info.modeOptions.end());
    argv.insert(argv.end(), {"-fsyntax-only", path});
    std::string output, error;
    bool accepted = written && runProgram(argv, 2, output, error) == 0;
    unlink(path);
    return accepted;
}

void chooseCompatibility(CompilerInfo& info) {
    std::vector<std::string> predefined = definedNames(info.macros);
    std::set<std::string> taken(predefined.begin(), predefined.end());
    for (const Compatibility& entry : kCompatibility) {
        if (entry.applies == (info.language == SourceLanguage::C ? CXX_ONLY : C_ONLY)) continue;
        if (taken.count(macroName(entry.macro))) continue;
        if (entry.probe && !compilerAccepts(info, entry.probe)) continue;
        std::string line = std::string("#define ") + entry.macro;
        if (*entry.body) line += std::string(" ") + entry.body;
        info.compatibility.push_back(line);
    }
}

bool ask(const CompilerInfo& info, std::vector<std::string> options, int stream,
         std::string& output, std::string& error) {
    std::vector<std::string> argv{info.path};
    argv.insert(argv.end(), info.modeOptions.begin(), info.modeOptions.end());
    argv.insert(argv.end(), options.begin(), options.end());
    int status = runProgram(argv, stream, output, error);
    if (status == 0) return true;
    if (status > 0) error = info.command + " exited with status " + std::to_string(status);
    return false;
}

}  // namespace

int runProgram(const std::vector<std::string>& argv, int stream, std::string& output,
               std::string& error) {
    output.clear();
    if (argv.empty() || (stream != 1 && stream != 2)) {
        error = "nothing to run";
        return -1;
    }
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) {
        error = std::strerror(errno);
        return -1;
    }
    pid_t pid;
    int rc = spawnCapturing(argv, stream, fds[1], fds[0], pid);
    close(fds[1]);
    if (rc == 0) output = readAll(fds[0]);
    close(fds[0]);
    if (rc != 0) {
        error = "cannot run " + argv[0] + ": " + std::strerror(rc);
        return -1;
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127) {
        error = "cannot run " + argv[0];
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string findOnPath(const std::string& command) {
    if (command.find('/') != std::string::npos)
        return isExecutableFile(command) ? command : std::string();
    const char* path = std::getenv("PATH");
    std::stringstream dirs(path ? path : "/usr/bin:/bin");
    std::string dir;
    while (std::getline(dirs, dir, ':')) {
        std::string candidate = (dir.empty() ? "." : dir) + "/" + command;
        if (isExecutableFile(candidate)) return candidate;
    }
    return std::string();
}

std::vector<std::string> defaultCompilerCommands() { return {"gcc", "g++", "clang", "clang++"}; }

SourceLanguage languageOfCompiler(const std::string& command) {
    std::string name = baseName(command);
    bool cxx = name.find("++") != std::string::npos || name == "c++" || name.find("cxx") != std::string::npos;
    return cxx ? SourceLanguage::Cxx : SourceLanguage::C;
}

SourceLanguage languageOfFile(const std::string& fileName) {
    std::string name = baseName(fileName);
    size_t dot = name.rfind('.');
    std::string extension = dot == std::string::npos ? "" : name.substr(dot + 1);
    return extension == "c" ? SourceLanguage::C : SourceLanguage::Cxx;
}

std::vector<std::string> parseIncludeSearchList(const std::string& verboseOutput) {
    std::vector<std::string> dirs;
    std::stringstream lines(verboseOutput);
    std::string line;
    bool inside = false;
    while (std::getline(lines, line)) {
        if (line.rfind("#include <...> search starts here:", 0) == 0) {
            inside = true;
        } else if (line.rfind("End of search list.", 0) == 0) {
            break;
        } else if (inside && !line.empty() && line[0] == ' ') {
            std::string dir = trim(line);
            const std::string framework = " (framework directory)";
            if (dir.size() > framework.size() &&
                dir.compare(dir.size() - framework.size(), framework.size(), framework) == 0)
                dir.erase(dir.size() - framework.size());
            dirs.push_back(dir);
        }
    }
    return dirs;
}

std::vector<std::string> definedNames(const std::string& defineLines) {
    std::vector<std::string> names;
    std::stringstream lines(defineLines);
    std::string line;
    while (std::getline(lines, line)) {
        std::string text = trim(line);
        if (text.rfind("#define ", 0) != 0) continue;
        size_t start = text.find_first_not_of(' ', 8);
        size_t end = text.find_first_of(" (", start);
        names.push_back(text.substr(start, end == std::string::npos ? end : end - start));
    }
    return names;
}

bool detectCompiler(const std::string& command, CompilerInfo& info, std::string& error,
                    const std::string& standard) {
    info = CompilerInfo();
    info.command = command;
    info.configName = baseName(command);
    info.path = findOnPath(command);
    if (info.path.empty()) {
        error = command + ": not found";
        return false;
    }
    info.language = languageOfCompiler(command);
    // Old standard for C++, so that library headers take the paths the grammar reads.
    info.modeOptions = info.language == SourceLanguage::C
                           ? std::vector<std::string>{"-x", "c"}
                           : std::vector<std::string>{"-x", "c++", "-std=gnu++98"};
    if (!standard.empty()) {
        if (info.language == SourceLanguage::Cxx) info.modeOptions.pop_back();
        info.modeOptions.push_back(standard);
    }
    std::string verbose;
    if (!ask(info, {"-dM", "-E", "/dev/null"}, 1, info.macros, error)) return false;
    if (!ask(info, {"-E", "-v", "/dev/null"}, 2, verbose, error)) return false;
    info.includeDirs = parseIncludeSearchList(verbose);
    if (definedNames(info.macros).empty()) {
        error = command + " printed no predefined macros";
        return false;
    }
    chooseCompatibility(info);
    return true;
}

const char kOriginStart[] = "/* Predefined macros of ";
const char kOriginMiddle[] = ", read with: ";
const char kOriginEnd[] = " -dM -E /dev/null */";

std::string compilerHeaderText(const CompilerInfo& info) {
    std::string mode;
    for (const std::string& option : info.modeOptions) mode += " " + option;
    std::string text = kOriginStart + info.path + kOriginMiddle + info.command + mode +
                       kOriginEnd + "\n";
    text += info.macros;
    if (!text.empty() && text.back() != '\n') text += '\n';
    text += "\n/* GNU extensions that the parser does not know */\n";
    for (const std::string& line : info.compatibility) text += line + "\n";
    return text;
}

bool headerOrigin(const std::string& headerText, std::string& compilerPath,
                  std::vector<std::string>& modeOptions) {
    std::string line = headerText.substr(0, headerText.find('\n'));
    size_t middle = line.find(kOriginMiddle);
    size_t end = line.rfind(kOriginEnd);
    if (line.compare(0, sizeof kOriginStart - 1, kOriginStart) != 0 ||
        middle == std::string::npos || end == std::string::npos || end < middle)
        return false;
    compilerPath = line.substr(sizeof kOriginStart - 1, middle - (sizeof kOriginStart - 1));
    std::stringstream words(line.substr(middle + sizeof kOriginMiddle - 1,
                                        end - middle - (sizeof kOriginMiddle - 1)));
    std::string word;
    modeOptions.clear();
    words >> word;  // the command as it was given
    while (words >> word) modeOptions.push_back(word);
    return !compilerPath.empty();
}

SourceLanguage languageOfStandard(const std::string& standard, SourceLanguage fallback) {
    if (standard.compare(0, 5, "-std=") != 0) return fallback;
    return standard.find("++") != std::string::npos ? SourceLanguage::Cxx : SourceLanguage::C;
}

std::vector<std::string> defaultConfigurationNames(SourceLanguage language) {
    return language == SourceLanguage::C ? std::vector<std::string>{"gcc", "clang", "cc"}
                                         : std::vector<std::string>{"g++", "clang++", "c++"};
}

std::string defaultConfigurationFor(const std::string& fileName,
                                    const std::vector<std::string>& available) {
    for (const std::string& name : defaultConfigurationNames(languageOfFile(fileName)))
        if (std::find(available.begin(), available.end(), name) != available.end()) return name;
    return std::string();
}

}  // namespace qbcli
