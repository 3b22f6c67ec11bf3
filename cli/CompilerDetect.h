// Finding the installed C and C++ compilers and reading how each sees the world: its predefined
// macros and its system include directories, as the compiler itself reports them.
//
// A configuration's header holds the compiler's own macros, then a block of definitions for GNU
// extensions that our grammar does not know (__attribute__, __int128, ...). Definitions for
// keywords that not every compiler or mode has (the _FloatN types, C11 keywords) are written
// only when the compiler accepts the keyword: where it doesn't, the library headers declare those
// names themselves and a macro would break them.
#pragma once

#include <string>
#include <vector>

namespace qbcli {

enum class SourceLanguage { C, Cxx };

struct CompilerInfo {
    std::string configName;  // the configuration it becomes: the command's base name
    std::string command;     // as given
    std::string path;        // where it was found
    SourceLanguage language = SourceLanguage::C;
    std::vector<std::string> modeOptions;  // the language (and for C++ the standard) it is asked in
    std::string macros;                    // #define lines, exactly as the compiler printed them
    std::vector<std::string> compatibility;  // #define lines of the block that apply
    std::vector<std::string> includeDirs;    // in the compiler's order, as it spelled them
};

// Runs a program (found on PATH unless it holds a '/'), in the C locale, and keeps the text of
// one stream: 1 for stdout or 2 for stderr; the other goes to /dev/null. Gives the exit status,
// or -1 with error filled in when it could not run.
int runProgram(const std::vector<std::string>& argv, int stream, std::string& output,
               std::string& error);

std::string findOnPath(const std::string& command);  // empty when absent
std::vector<std::string> defaultCompilerCommands();  // gcc, g++, clang, clang++
SourceLanguage languageOfCompiler(const std::string& command);  // "++" in the name is C++
SourceLanguage languageOfFile(const std::string& fileName);     // by extension; headers are C++

// The directories between "#include <...> search starts here:" and "End of search list." in
// the output of -E -v.
std::vector<std::string> parseIncludeSearchList(const std::string& verboseOutput);
// The names that #define lines define, function-like or not.
std::vector<std::string> definedNames(const std::string& defineLines);

// Fills every field for a compiler command; false with error when it can't be run or read.
// standard ("-std=c99", "-ansi") asks for another mode than the usual one: the compiler's own
// default for C, gnu++98 for C++.
bool detectCompiler(const std::string& command, CompilerInfo& info, std::string& error,
                    const std::string& standard = std::string());
// The header text: a first line that names the compiler and the mode it was asked in, the
// macros, then the compatibility block.
std::string compilerHeaderText(const CompilerInfo& info);
// From a header's first line as compilerHeaderText writes it: the compiler's path and the mode
// options it was asked with. False for a header that detection did not write.
bool headerOrigin(const std::string& headerText, std::string& compilerPath,
                  std::vector<std::string>& modeOptions);
// The language of a standard option ("-std=gnu99" is C, "-std=c++11" C++); fallback for one
// that names no language ("-ansi") or none at all.
SourceLanguage languageOfStandard(const std::string& standard, SourceLanguage fallback);

// The configuration a file should be parsed with, among those available: the detected
// configuration of the file's language (gcc, then clang, for C; g++, then clang++, for C++).
// Empty when none of them is there.
std::string defaultConfigurationFor(const std::string& fileName,
                                    const std::vector<std::string>& available);
// The names defaultConfigurationFor prefers for a language, best first.
std::vector<std::string> defaultConfigurationNames(SourceLanguage language);

}  // namespace qbcli
