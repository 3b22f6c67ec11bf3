// A project's compile_commands.json, read into the options that the engine takes per file:
// the language and standard, include directories, -D and -U definitions and forced includes.
// The command line's own compiler options are read by the same reader.
#pragma once

#include <string>
#include <vector>

namespace qbcli {

struct CompileOptions {
    std::string file;       // absolute and normalized
    std::string directory;  // where the compiler ran; relative paths are taken from here
    std::string language;                     // -x: "c" or "c++"; empty when not given
    std::string standard;                     // "-std=..." or "-ansi"; empty when not given
    std::vector<std::string> userIncludes;    // -I, -iquote; absolute
    std::vector<std::string> systemIncludes;  // -isystem; absolute
    std::vector<std::string> afterIncludes;   // -idirafter, searched after the compiler's own
    std::vector<std::string> macroOptions;    // "-DNAME", "-DNAME=VALUE", "-UNAME" in order
    std::vector<std::string> forcedIncludes;  // -include; absolute

    // Adds what later options say: lists grow, the language and standard are replaced.
    void append(const CompileOptions& later);
};

// Reads DIR/compile_commands.json (or the file itself when path names a file). False with error
// when it can't be read or isn't a compilation database.
bool readCompileCommands(const std::string& path, std::vector<CompileOptions>& entries,
                         std::string& error);
// The entry of a file, found by its absolute path (symbolic links resolved); null when the
// database has none. With several entries for a file, the first counts.
const CompileOptions* findCompileOptions(const std::vector<CompileOptions>& entries,
                                         const std::string& fileName);

// A command line split as a POSIX shell does: blanks, quotes and backslashes.
std::vector<std::string> splitCommandLine(const std::string& command);
// The options of one compiler invocation (arguments[0] is the compiler).
CompileOptions optionsFromArguments(const std::vector<std::string>& arguments,
                                    const std::string& directory, const std::string& file);
// Whether arg, an option of a compiler, takes the next argument as its value ("-I" alone, "-D",
// "-include", "-x", ...); the readers of command lines need it to tell values from files.
bool takesSeparateValue(const std::string& arg);

}  // namespace qbcli
