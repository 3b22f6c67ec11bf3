// Running files of a transaction through the front end, one parser alive at a time.
#pragma once

#include "QBString.h"

class CPParser;
class QBRefactorTransaction;

// Parses and analyses one file; 0 when it has no errors, FileHasErrors when it has, Cancelled on
// a cancel.
int parseFile(QBRefactorTransaction* transaction, CPParser* parser, bool showErrors);
// Runs only the preprocessor of one file into out.
int preprocessFile(QBRefactorTransaction* transaction, CPParser* parser,
                   quernbase::QBString& out, bool addLineMarkers);
int refreshSourceCache(QBRefactorTransaction* transaction);

// The commands: test every file, or write every file's preprocessed text into a window.
int parseAllFiles(int handle);
int preprocessAllFiles(int handle, int wid, int addLineMarkers);
