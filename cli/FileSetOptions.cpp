#include "FileSetOptions.h"

#include <cstring>

namespace cli {

namespace {

std::string joined(const std::vector<std::string>& parts, char separator) {
    std::string out;
    for (const std::string& p : parts) {
        if (!out.empty()) out += separator;
        out += p;
    }
    return out;
}

// "-Ifoo" or "-I foo": the value, and whether the next argument was taken.
bool valueOf(const char* option, int argc, char** argv, int& i, std::string& value) {
    size_t n = std::strlen(option);
    if (std::strncmp(argv[i], option, n) != 0) return false;
    if (argv[i][n]) {
        value = argv[i] + n;
        return true;
    }
    if (i + 1 >= argc) return false;
    value = argv[++i];
    return true;
}

bool isFlag(const char* arg, const char* shortName, const char* longName) {
    return (shortName && std::strcmp(arg, shortName) == 0) || std::strcmp(arg, longName) == 0;
}

}  // namespace

std::string FileSetOptions::userIncludePath() const { return joined(userIncludes, ';'); }
std::string FileSetOptions::systemIncludePath() const { return joined(systemIncludes, ';'); }

// A definition with a blank in it travels in double quotes.
std::string FileSetOptions::defineOptions() const {
    std::string out;
    for (const std::string& d : defines) {
        if (!out.empty()) out += ' ';
        out += d.find(' ') == std::string::npos ? d : "\"" + d + "\"";
    }
    return out;
}

bool parseFileSetOptions(int argc, char** argv, int first, FileSetOptions& out,
                         std::string& error) {
    for (int i = first; i < argc; ++i) {
        const char* arg = argv[i];
        std::string value;
        if (isFlag(arg, "-h", "--help")) out.help = true;
        else if (isFlag(arg, "-k", "--keep-going")) out.keepGoing = true;
        else if (isFlag(arg, "-v", "--verbose")) out.verbose = true;
        else if (isFlag(arg, nullptr, "--line-markers")) out.lineMarkers = true;
        else if (std::strncmp(arg, "-isystem", 8) == 0 && valueOf("-isystem", argc, argv, i, value))
            out.systemIncludes.push_back(value);
        else if (valueOf("-I", argc, argv, i, value)) out.userIncludes.push_back(value);
        else if (valueOf("-D", argc, argv, i, value)) out.defines.push_back("-D" + value);
        else if (valueOf("-U", argc, argv, i, value)) out.defines.push_back("-U" + value);
        else if (arg[0] == '-' && arg[1]) {
            error = std::string("unknown or incomplete option '") + arg + "'";
            return false;
        } else {
            out.files.push_back(arg);
        }
    }
    if (out.files.empty() && !out.help) {
        error = "no input files";
        return false;
    }
    return true;
}

}  // namespace cli
