// `qbrefactor config`: list, show, add, delete and detect compiler configurations.
//
// The command edits compilers.xml through the engine's own configuration commands, which it
// finds in the engine module with dlsym, as any host would; so what it writes is what the editor
// reads. The file lives in $QBROOT when that is set, else in $XDG_CONFIG_HOME/qbrefactor, else
// in ~/.config/qbrefactor; detected compiler headers are written beside it.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace qbcli {

// The engine module: $QBREFACTOR_MODULE, else lib/libqbrefactor.so beside the program's bin/.
std::string engineModulePath();
// Where compilers.xml lives for this user.
std::string configurationFilePath();
// Writes path whole, through a new file renamed over it, so that no reader sees half of it.
bool writeFileAtomically(const std::string& path, const std::string& text, std::string& error);

// One C or C++ configuration as the parse command needs it.
struct ConfigurationValues {
    std::string name;
    std::string header;
    std::vector<std::string> includes;
};

// The names of the configurations in xmlPath (a file that does not exist has none).
bool listConfigurationNames(const std::string& xmlPath, std::vector<std::string>& names,
                            std::string& error);
// Reads the named C or C++ configuration; false with error when it is absent or unreadable.
bool readConfiguration(const std::string& xmlPath, const std::string& name,
                       ConfigurationValues& values, std::string& error);
// Every C or C++ configuration of xmlPath, in its order (none when the file does not exist).
bool readConfigurations(const std::string& xmlPath, std::vector<ConfigurationValues>& values,
                        std::string& error);
// `qbrefactor config detect` on xmlPath: the usual compilers, each that is installed becomes a
// configuration with its header beside xmlPath. Gives the command's exit status.
int detectConfigurations(const std::string& xmlPath, std::ostream& out, std::ostream& err);

// argv[0] is the word "config"; the rest are its arguments. Gives the exit status: 0 done,
// 1 failed, 2 bad usage.
int runConfigCommand(int argc, char** argv, std::ostream& out, std::ostream& err);

}  // namespace qbcli

// The same, on stdout and stderr.
int runConfigCommand(int argc, char** argv);
