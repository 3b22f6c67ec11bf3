// Calls from the engine into the host's macro code, and the engine's own entry points that
// carry messages and text to the host. A host that lacks a macro function simply gets no call.
#pragma once

#include <cstdint>

#include "QBRefactorExport.h"

QBREFACTOR_EXPORT int qbRefactorMessage(const char* text, int flag);
QBREFACTOR_EXPORT int qbRefactorProgress(int64_t current, int64_t total);
QBREFACTOR_EXPORT int qbRefactorFileMessage(const char* fileName, int index, int count);
QBREFACTOR_EXPORT int qbRefactorLocateFile(int handle, const char* sourceFile,
                                           const char* includedFile, char* buffer, int size);

// "refactor_show_errors" for one file; NoShowErrors if the host lacks it.
int showFileErrors(int transactionId, const char* fileName);
// Asks "refactor_prompt_to_skip" whether to go on after a file failed with status.
int promptToSkip(int transactionId, const char* fileName, int status);
// The text of a message number, sent through qbRefactorMessage.
int sendMessage(int code);
