#include "FileSetOptions.h"

#include <cstring>

#include "CompileCommands.h"

namespace cli {

namespace {

bool isFlag(const char* arg, const char* shortName, const char* longName) {
    return (shortName && std::strcmp(arg, shortName) == 0) || std::strcmp(arg, longName) == 0;
}

// "--config NAME" or "--config=NAME", "-p DIR" or "-p=DIR". False when arg isn't the option;
// complete tells whether its value was there.
bool toolValue(const char* option, int argc, char** argv, int& i, std::string& value,
               bool& complete) {
    size_t n = std::strlen(option);
    const char* arg = argv[i];
    if (std::strncmp(arg, option, n) != 0 || (arg[n] && arg[n] != '=')) return false;
    if (arg[n] == '=') value = arg + n + 1;
    else if (i + 1 < argc) value = argv[++i];
    complete = !value.empty();
    return true;
}

bool takeToolValue(int argc, char** argv, int& i, FileSetOptions& out, bool& complete) {
    return toolValue("--config", argc, argv, i, out.configName, complete) ||
           toolValue("-p", argc, argv, i, out.compileCommands, complete);
}

// The compiler options that describe a file, with their values glued on or not.
const char* const kCompilerOptions[] = {"-isystem", "-idirafter", "-iquote", "-include",
                                        "-I", "-D", "-U", "-x"};

// Takes a compiler option and its value into out; false when arg is none of them or its value
// is missing.
bool takeCompilerOption(int argc, char** argv, int& i, FileSetOptions& out) {
    std::string arg = argv[i];
    if (arg.compare(0, 5, "-std=") == 0 || arg == "-ansi") {
        out.compilerArguments.push_back(arg);
        return arg == "-ansi" || arg.size() > 5;
    }
    for (const char* option : kCompilerOptions) {
        if (arg.compare(0, std::strlen(option), option) != 0) continue;
        out.compilerArguments.push_back(arg);
        if (!qbcli::takesSeparateValue(arg)) return true;
        if (i + 1 >= argc) return false;
        out.compilerArguments.push_back(argv[++i]);
        return true;
    }
    return false;
}

// Reads the argument at i (and its value); false for one that is unknown or lacks its value.
bool readArgument(int argc, char** argv, int& i, FileSetOptions& out) {
    const char* arg = argv[i];
    bool complete = true;
    if (isFlag(arg, "-h", "--help")) out.help = true;
    else if (isFlag(arg, "-k", "--keep-going")) out.keepGoing = true;
    else if (isFlag(arg, "-v", "--verbose")) out.verbose = true;
    else if (isFlag(arg, nullptr, "--line-markers")) out.lineMarkers = true;
    else if (isFlag(arg, nullptr, "--no-config")) out.noConfig = true;
    else if (takeToolValue(argc, argv, i, out, complete)) return complete;
    else if (arg[0] != '-' || !arg[1]) out.files.push_back(arg);
    else return takeCompilerOption(argc, argv, i, out);
    return true;
}

}  // namespace

bool parseFileSetOptions(int argc, char** argv, int first, FileSetOptions& out,
                         std::string& error) {
    for (int i = first; i < argc; ++i) {
        const char* arg = argv[i];
        if (!readArgument(argc, argv, i, out)) {
            error = std::string("unknown or incomplete option '") + arg + "'";
            return false;
        }
    }
    if (out.noConfig && !out.configName.empty()) {
        error = "--config and --no-config don't go together";
        return false;
    }
    if (out.files.empty() && !out.help) {
        error = "no input files";
        return false;
    }
    return true;
}

const char* fileSetOptionsUsage() {
    return "  --config NAME     parse with this compiler configuration (default: the detected\n"
           "                    one of the file's language, gcc or g++, detected on first use)\n"
           "  --no-config       no configuration: nothing predefined, no system folders\n"
           "  -p DIR            each file's options from DIR/compile_commands.json\n"
           "  -x c|c++          the language of the files (default: .c is C, the rest C++)\n"
           "  -std=STD, -ansi   the standard; the configuration's compiler tells its macros\n"
           "  -I DIR            add a folder to the user include path (also -iquote)\n"
           "  -isystem DIR      add a folder to the system include path (also -idirafter)\n"
           "  -D NAME[=VALUE]   define a macro, as gcc does (-DNAME= defines it empty)\n"
           "  -U NAME           undefine a macro\n"
           "  -include FILE     include FILE ahead of each file\n"
           "  -k, --keep-going  go on with the other files after a file fails\n"
           "  -v, --verbose     print each file and the engine's progress messages\n";
}

}  // namespace cli
