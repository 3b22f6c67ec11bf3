// Calling the engine's macro commands by name, as macro code does.
#pragma once

#include <string>
#include <vector>

#include "qbapi_host.h"

namespace cli {

// The command's result; a host-level failure is printed and given as the result.
int engineCall(const char* command, std::vector<QBArgRecord> args);
// A command whose last argument is a QBHREFVAR string: gives that string.
std::string engineString(const char* command, std::vector<QBArgRecord> args, int* status = nullptr);
// "qbrefactor: <text>" on stderr for a status.
void reportStatus(const std::string& context, int status);

}  // namespace cli
