// The host operations the engine calls. The editor supplies them; libqbapi is our own provider.
// The engine module links none of this: the names are resolved from the loading process.
#pragma once

#include <cstddef>
#include <cstdint>

#include "QBString.h"

extern "C" {

// A macro-function argument: a tag and a 64-bit value.
enum QBArgTag {
    QBARG_INT32 = 0,   // 32-bit integer by value
    QBARG_VAR = 2,     // handle of a host variable
    QBARG_STRING = 3,  // zero-terminated string (the value holds the pointer)
    QBARG_INT64 = 8,   // 64-bit integer by value
};
struct QBArgRecord {
    int32_t tag;
    int64_t value;
};

// Variable 1 holds the result of the last macro-function call.
enum { QBVAR_RESULT = 1 };

// Exports and macro functions
int qbRegisterExport(const char* signature, int reserved1, int reserved2);
int qbFindMacroFunction(const char* name, int kindFlags);  // the engine passes 17
int qbIsMacroFunction(int handle);  // non-zero if callable
int qbCallMacroFunction(int reserved, int handle, int argCount, const QBArgRecord* args);

// Host variables
int qbVarGetInt(int var);
int64_t qbVarGetInt64(int var);
const char* qbVarGetString(int var);
int qbVarSetInt(int var, int value);
int qbVarSetString(int var, const char* text);
int qbVarNewTemp(int reserved);
void qbVarFreeTemp(int var);
int qbVarArrayLength(int var);
int qbVarArrayElement(int var, int index);

// Showing and printing
int qbShowText(const char* text);
int qbPrint(const char* format, const char* text);

// The host's heap, for buffers shared with the host
void* qbAlloc(size_t size);
void* qbRealloc(void* block, size_t size);
void qbFree(void* block);

// Windows: text buffers by id
enum { QBWINDOW_TEXT_SIZE = 217 };
int64_t qbWindowGetProperty(int wid, int property);
int qbWindowReadText(int wid, int64_t size, int reserved1, char* buffer, int reserved2);
// lineEnd1/lineEnd2 describe the line ending (13, 10); negative statuses are passed on.
int qbWindowInsert(int wid, const char* text, int64_t length, int atCursor, int lineEnd1,
                   int lineEnd2);
int qbWindowLineQuery(int wid, int line);
int qbWindowLineAdd(int wid);
}

// Reads a whole file into out; a negative status on failure.
int qbReadFileToString(const quernbase::QBString& fileName, quernbase::QBString& out, int reserved1,
                       int reserved2, int mode);
// The value of an environment variable, null if unset.
quernbase::QBString qbpsGetEnv(const char* name);
