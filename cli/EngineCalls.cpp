#include "EngineCalls.h"

#include <cstdio>

namespace cli {

int engineCall(const char* command, std::vector<QBArgRecord> args) {
    int result = 0;
    int status = qbHostInvoke(command, int(args.size()), args.data(), &result);
    if (status < 0) {
        reportStatus(command, status);
        return status;
    }
    return result;
}

std::string engineString(const char* command, std::vector<QBArgRecord> args, int* status) {
    int var = qbHostVarNew();
    args.push_back(qbArgVar(var));
    int rc = engineCall(command, args);
    if (status) *status = rc;
    std::string text = qbVarGetString(var);
    qbVarFreeTemp(var);
    return text;
}

void reportStatus(const std::string& context, int status) {
    std::fprintf(stderr, "qbrefactor: %s: %s (%d)\n", context.c_str(), qbHostMessageText(status),
                 status);
}

}  // namespace cli
