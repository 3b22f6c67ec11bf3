// The options that describe a set of files for a transaction: include folders, definitions and
// the files themselves, as a compiler takes them.
#pragma once

#include <string>
#include <vector>

namespace cli {

struct FileSetOptions {
    std::vector<std::string> userIncludes;
    std::vector<std::string> systemIncludes;
    std::vector<std::string> defines;  // "-DNAME=value" and "-UNAME"
    std::vector<std::string> files;
    bool keepGoing = false;
    bool verbose = false;
    bool lineMarkers = false;
    bool help = false;

    // The engine's forms: ';'-separated folders, blank-separated options.
    std::string userIncludePath() const;
    std::string systemIncludePath() const;
    std::string defineOptions() const;
};

// Reads argv from index first; gives false with a message in error for a bad option.
bool parseFileSetOptions(int argc, char** argv, int first, FileSetOptions& out,
                         std::string& error);

}  // namespace cli
