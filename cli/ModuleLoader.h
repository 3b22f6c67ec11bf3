// Finding and loading the engine module the way the editor does.
#pragma once

#include <string>

namespace cli {

// The folder of the running program, with a trailing separator.
std::string programFolder();
// $QBREFACTOR_MODULE, else ../lib/libqbrefactor.so beside the program's folder.
std::string modulePath();
// Loads and registers the module, with the built message file's folder as QBROOT unless the
// caller set it (for the load only). Prints why on failure and returns false.
bool loadEngine();

}  // namespace cli
