// The host's message file: every text the engine shows, by message number. It is read whole at
// the first request, and a text's %s0 to %s9 are filled from ten parameter slots.
#pragma once

#include "QBRefactorExport.h"

// The text for a number with its parameters filled in, in a buffer that the next call
// overwrites. An unknown number gives the text of number 0.
QBREFACTOR_EXPORT const char* getMessage(int code);
// Slots 0 to 9; other indexes are ignored. The text is cut at 1023 bytes.
QBREFACTOR_EXPORT void setMessageParameter(int index, const char* text);

// QBROOT, else the module's own file name, else "."; then "qbedit.qbb" glued on.
void formMessageFilePath(const char* modulePath);
// Names the file to read at the next request.
void setMessageFilePath(const char* path);
const char* getMessageFilePath();
