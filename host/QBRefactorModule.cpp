// The module's entry points for the host: registration of the macro commands, version and
// copyright, and what happens at load.
#include <dlfcn.h>

#include "BPHostMessages.h"
#include "QBMessageFile.h"
#include "QBRefactorExport.h"
#include "qbapi.h"

namespace {

// In order of registration; the host's macro code depends on this list. refactor_c_move_field
// is there twice, and the second form is the one the exported function serves.
const char* const signatures[] = {
#include "QBRefactorSignatures.def"
};

const char* const versionText = "qbrefactor.dll Version 16.0.3.0";
const char* const copyrightText =
    "qbrefactor.dll Version 16.0.3.0 Copyright (c) the qbrefactor developers";

const void* moduleHandle = nullptr;

// Load records who we are and where the message file is; nothing else may be done before
// qbDllRegisterExports.
__attribute__((constructor)) void onModuleLoad() {
    Dl_info info;
    const char* path = nullptr;
    if (dladdr(reinterpret_cast<void*>(&onModuleLoad), &info) && info.dli_fname) {
        moduleHandle = info.dli_fbase;
        path = info.dli_fname;
    }
    formMessageFilePath(path);
    BPHostMessages::install(getMessage, setMessageParameter);
}

}  // namespace

QBREFACTOR_EXPORT int qbDllRegisterExports() {
    int status = 0;
    for (const char* signature : signatures) status = qbRegisterExport(signature, 0, 0);
    return status;
}

QBREFACTOR_EXPORT int qbrefactor_version() { return qbShowText(versionText); }
QBREFACTOR_EXPORT int qbrefactor_copyright() { return qbShowText(copyrightText); }

QBREFACTOR_EXPORT int qbRefactorInitialize() { return 0; }
QBREFACTOR_EXPORT void qbRefactorFinalize() {}
QBREFACTOR_EXPORT int qbrefactor_initialize() { return qbRefactorInitialize(); }
QBREFACTOR_EXPORT void qbrefactor_finalize() { qbRefactorFinalize(); }
