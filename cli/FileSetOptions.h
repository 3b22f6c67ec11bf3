// The options of every command that parses a set of files: how each file is configured (a
// compiler configuration, a compilation database, compiler options as gcc takes them) and how
// the run behaves.
#pragma once

#include <string>
#include <vector>

namespace cli {

struct FileSetOptions {
    // -I, -iquote, -isystem, -idirafter, -D, -U, -include, -x, -std=, -ansi: as written, in
    // order, each option with its value in one or two arguments as given.
    std::vector<std::string> compilerArguments;
    std::string configName;       // --config NAME; empty for the file's default
    bool noConfig = false;        // --no-config: the engine's one mode, nothing predefined
    std::string compileCommands;  // -p DIR (or the file itself)
    std::vector<std::string> files;
    bool keepGoing = false;
    bool verbose = false;
    bool lineMarkers = false;
    bool help = false;
};

// Reads argv from index first; gives false with a message in error for a bad option.
bool parseFileSetOptions(int argc, char** argv, int first, FileSetOptions& out,
                         std::string& error);

// The lines of a command's usage that tell the options above, for --help.
const char* fileSetOptionsUsage();

}  // namespace cli
