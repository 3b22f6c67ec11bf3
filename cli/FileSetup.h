// Each file's way into the engine, the same for every command that parses: the compiler
// configuration (named, or the detected one of the file's language, detected on first use),
// the compiler options of the file's compile_commands.json entry and of the command line, and
// from these the five strings that refactor_add_file takes.
//
// The engine's option string has rules of its own (an empty value means 1, a comma splits one
// option into two definitions), so definitions don't travel in it. A prelude header, written
// once for each distinct set of options, includes the configuration's header, then says each
// -D and -U as gcc means it (#undef, then #define), then includes each -include file. The
// prelude takes the configuration header's place, so it runs ahead of the file as a system
// header and its definitions are in force from the file's first line. The option string only
// carries "-xc", for a file that a C configuration reads.
//
// -std asks the configuration's compiler for its macros in that mode; the answer is kept beside
// the configuration's header (NAME@STD.h) and asked again when the header is newer.
#pragma once

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "CompileCommands.h"
#include "CompilerDetect.h"

namespace qbcli {

// What refactor_add_file takes for one file, besides its name.
struct AddFileArguments {
    std::string userIncludePath;    // ';'-separated
    std::string systemIncludePath;  // ';'-separated
    std::string defineOptions;      // "-xc" for a file read as C, else empty
    std::string compilerConfig;     // the prelude, the configuration's header, or empty
    std::string configurationName;    // empty for none
    std::string configurationHeader;  // the header for the file's mode, behind any prelude
};

struct FileSetupOptions {
    std::string xmlPath;          // compilers.xml
    std::string configName;       // empty: the default of the file's language
    bool noConfig = false;
    std::string compileCommands;  // a folder holding compile_commands.json, or the file; or empty
    std::vector<std::string> compilerArguments;  // the command line's compiler options
};

// The text of a prelude: header (may be empty), then the definitions, then the forced includes.
std::string preludeText(const std::string& header, const std::vector<std::string>& macroOptions,
                        const std::vector<std::string>& forcedIncludes);
// The language a file is read in: its -x, else its standard's, else its name's.
SourceLanguage languageOfOptions(const CompileOptions& options);

class FileSetup {
public:
    // Notes (a configuration detected, a file the database doesn't know) go to notes.
    FileSetup(const FileSetupOptions& options, std::ostream& notes);
    ~FileSetup();
    FileSetup(const FileSetup&) = delete;
    FileSetup& operator=(const FileSetup&) = delete;

    // Reads the database and the configurations; false with error when one can't be used.
    bool open(std::string& error);
    bool argumentsFor(const std::string& file, AddFileArguments& out, std::string& error);

private:
    struct Configuration {
        std::string name;
        std::string header;
        std::vector<std::string> includes;
        SourceLanguage language = SourceLanguage::Cxx;
        std::string compiler;                  // empty when detection didn't write the header
        std::vector<std::string> modeOptions;  // what the compiler was asked with
    };

    bool loadConfigurations(std::string& error);
    const Configuration* find(const std::string& name) const;
    const Configuration* defaultFor(SourceLanguage language);
    bool detectOnFirstUse(SourceLanguage language);
    std::string headerFor(const Configuration& config, const std::string& standard);
    std::string makeModeHeader(const Configuration& config, const std::string& standard);
    std::string preludeFor(const std::string& text);
    bool makePrivateFolder();
    void noteOnce(const std::string& text);

    FileSetupOptions options;
    std::ostream& notes;
    std::vector<CompileOptions> database;
    std::vector<Configuration> configurations;
    std::set<SourceLanguage> detected;
    std::map<std::string, std::string> modeHeaders;  // "NAME STD" -> header
    std::map<std::string, std::string> preludes;     // text -> path
    std::set<std::string> noted;
    std::string privateFolder;  // the run's preludes; removed with this object
};

}  // namespace qbcli
