// Text in and out of the host's windows.
#pragma once

#include "QBRefactorExport.h"
#include "QBString.h"

// Inserts at the window's cursor and makes sure the window has its first line.
QBREFACTOR_EXPORT int qbRefactorInsertText(int wid, const char* text, int length);
// With a null buffer, the size of the window's text; otherwise reads it, terminated. A size not
// over the text's size gives OutOfMemory.
QBREFACTOR_EXPORT int qbRefactorGetRText(int wid, char* buffer, int size);

// The whole text of a window.
int readWindowText(int wid, quernbase::QBString& out);
