// The host side of qbapi: what an editor (or the command-line host, or a test) does with a
// module. Load it, let it register its commands, then call any command by its macro name with
// argument records, exactly as macro code would; provide macro functions written in C++ for the
// module's callbacks; own variables and windows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "QBMessageCodes.h"
#include "qbapi.h"

// Statuses of host operations are the names of the message table from NoMacroFunction to
// FileUnreadable, apart from the engine's numbers so a message file can carry both.

extern "C" {

// ---- Modules ----------------------------------------------------------------------------------
// Loads a module and runs its qbDllRegisterExports. The result is a module id (1 or more) or a
// negative status; registerStatus (may be null) receives what qbDllRegisterExports returned.
// The loader's own message, if any, is available from qbHostLastLoadError().
int qbHostLoadModule(const char* path, int* registerStatus);
const char* qbHostLastLoadError(void);
// An exported function of a loaded module (the result of qbHostLoadModule), found by name, for
// entry points that are not macro commands. Null when absent.
void* qbHostModuleSymbol(int module, const char* name);

// ---- Registered exports -----------------------------------------------------------------------
enum QBHostParamType {
    QBPARAM_INT = 0,     // int
    QBPARAM_STRING = 1,  // QBPSZ
    QBPARAM_VAR = 2,     // QBHREFVAR
};
struct QBHostParam {
    int type;              // QBHostParamType
    const char* name;
    int hasDefault;
    const char* defaultText;  // as written inside QBDEFAULT(...)
};
struct QBHostExportInfo {
    const char* signature;  // the text as registered
    const char* module;     // the part ahead of ':'
    const char* name;       // the macro name
    int isCommand;          // "_command" prefix
    int returnsVoid;
    int paramCount;
    const QBHostParam* params;
};
// Every registration in order, repeats included; pointers stay valid for the process.
int qbHostExportCount(void);
int qbHostExportInfo(int index, QBHostExportInfo* out);

// ---- Calling ----------------------------------------------------------------------------------
// Calls a registered command or a macro function by name. Arguments follow the signature; missing
// trailing ones take their defaults. A QBHREFVAR argument must be a variable (QBARG_VAR); a QBPSZ
// takes a string, or a variable whose text is passed. On success the status is 0, *result (may
// be null) gets the function's result and variable 1 holds it too.
int qbHostInvoke(const char* name, int argCount, const QBArgRecord* args, int* result);

// A macro function written in C++; its result is what macro code sees in variable 1.
typedef int (*QBHostMacroFunction)(void* user, int argCount, const QBArgRecord* args);
// Registers or replaces a macro function; gives its handle. A handle stays the same for a name,
// so a module that remembered it keeps reaching the current function.
int qbHostRegisterMacroFunction(const char* name, QBHostMacroFunction function, void* user);
// The name stays known, but the function is no longer callable (qbIsMacroFunction gives 0).
int qbHostUnregisterMacroFunction(const char* name);
// Number of calls made to a macro function by name since the start, for tests and tracing.
int qbHostMacroCallCount(const char* name);

// ---- Variables --------------------------------------------------------------------------------
// A new variable that lives until qbVarFreeTemp; starts as an empty string.
int qbHostVarNew(void);
// Turns the variable into an array of count elements (each an empty string variable).
int qbHostVarMakeArray(int var, int count);
int qbHostVarSetInt64(int var, int64_t value);

// ---- Windows ----------------------------------------------------------------------------------
// A new text buffer holding text (may be null), with its cursor at the end; gives its id.
int qbHostWindowCreate(const char* text);
int qbHostWindowDestroy(int wid);
// The buffer's bytes (not terminated when the text holds zero bytes); null for an unknown id.
const char* qbHostWindowText(int wid, size_t* length);
int qbHostWindowSetText(int wid, const char* text, size_t length);
int qbHostWindowSetCursor(int wid, size_t offset);

// ---- Messages ---------------------------------------------------------------------------------
// The raw text of a message number from $QBROOT/qbedit.qbb, read once; parameters are not filled.
// An unknown number gives the text of 0; an unusable file, a text that says so with its path.
const char* qbHostMessageText(int code);

// ---- Output -----------------------------------------------------------------------------------
// Where qbShowText and qbPrint go; stdout when no sink is set. A shown text arrives with its
// line end. Null restores stdout.
typedef void (*QBHostOutputSink)(void* user, const char* text);
void qbHostSetOutputSink(QBHostOutputSink sink, void* user);
}

// Record makers for C++ callers.
inline QBArgRecord qbArgInt(int value) { return QBArgRecord{QBARG_INT32, value}; }
inline QBArgRecord qbArgInt64(int64_t value) { return QBArgRecord{QBARG_INT64, value}; }
inline QBArgRecord qbArgVar(int var) { return QBArgRecord{QBARG_VAR, var}; }
inline QBArgRecord qbArgString(const char* text) {
    return QBArgRecord{QBARG_STRING, int64_t(reinterpret_cast<intptr_t>(text))};
}
inline const char* qbArgText(const QBArgRecord& record) {
    return reinterpret_cast<const char*>(intptr_t(record.value));
}
