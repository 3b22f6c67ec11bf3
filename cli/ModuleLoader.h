// Finding and loading the engine module the way the editor does.
#pragma once

#include <string>

namespace cli {

// The folder of the running program, with a trailing separator.
std::string programFolder();
// $QBREFACTOR_MODULE, else ../lib/libqbrefactor.so beside the program's folder.
std::string modulePath();
// Sets QBROOT to the built message file's folder unless the caller set it, then loads and
// registers the module. Prints why on failure and returns false.
bool loadEngine();

}  // namespace cli
