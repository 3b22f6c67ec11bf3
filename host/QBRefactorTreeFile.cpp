// The trees of a parsed file for people and tools: the compilation unit printed, the messages,
// and the text a refactoring would store after parsing (the source tree's text), so that anyone
// can check that parsing changes no byte. Both entries parse a file of a transaction, with the
// include folders, definitions and configuration it was added with.
#include <cstring>

#include "CPParseTree.h"
#include "CPParser.h"
#include "CPPreprocessorNodes.h"
#include "QBRefactorExport.h"
#include "QBRefactorParseDriver.h"
#include "QBMessageCodes.h"
#include "QBRefactorTransaction.h"

using quernbase::QBString;

QBREFACTOR_EXPORT int qbRefactorOutput(const char* text);

namespace {

enum { TREE_PRINT = 0, TREE_ROUNDTRIP = 1, TREE_ERRORS = 2 };

void flush(QBString& out) {
    if (out.isNotEmpty()) qbRefactorOutput(out.get());
    out.makeEmpty();
}

bool sourceTextEquals(CPParser& parser, const QBString& text) {
    BPSourceText* source = nullptr;
    if (CPPreprocessorUnit* tree = parser.getSourceTree()) source = tree->source.get();
    return source && text.length() == source->length &&
           (text.length() == 0 || std::memcmp(text.get(), source->begin, text.length()) == 0);
}

// The parser of a file of a transaction, parsed; null with status NoTransaction, or
// FileNotFound for a file that isn't in it; else status is the parse's.
CPParser* parsedFile(int handle, const char* fileName, int& status) {
    QBRefactorTransaction* t = findTransaction(handle);
    status = t ? qbmsg::FileNotFound : qbmsg::NoTransaction;
    int index = -1;
    CPParser* parser = t ? t->findParser(QBString(fileName), index) : nullptr;
    if (parser) status = parseFile(t, parser, false);
    return parser;
}

}  // namespace

// Parses a file of a transaction with the options it was added with, and prints its tree
// through qbRefactorOutput (options 0), or compares the source tree's text with the file (1:
// bit 0 set when they differ, bit 1 when the parse logged errors), or prints the messages (2).
// NoTransaction, FileNotFound for a file that isn't in it; a file that can't be read gives its
// status.
QBREFACTOR_EXPORT int qbRefactorTreeOfFile(int handle, const char* fileName, int options) {
    int status;
    CPParser* parser = parsedFile(handle, fileName, status);
    if (!parser || !parser->getSourceTree()) return status;
    if (parser->collectAllErrors() < 0) return qbmsg::OutOfMemory;
    QBString out("");
    bool errors = parser->getErrorCount() > 0;
    if (options == TREE_ROUNDTRIP) {
        parser->getSourceTree()->getText(out);
        return (sourceTextEquals(*parser, out) ? 0 : 1) + (errors ? 2 : 0);
    }
    if (options == TREE_ERRORS) {
        quernbase::QBArray<QBString> texts;
        parser->getErrorTexts(texts);
        for (const QBString& text : texts) out.append(text), out.append('\n');
    } else if (parser->getRoot()) {
        parser->getRoot()->printToString(out, 0, false);
    }
    flush(out);
    return errors ? 1 : 0;
}

// Parses a file of a transaction (its messages go to the transaction's error store) and copies
// its source tree's text into buffer. Gives the text's length, which may exceed size: then call
// again with a larger buffer (the parse is kept for that). NoTransaction, FileNotFound for
// a file that isn't in it, or the parse's status when no text came of it.
QBREFACTOR_EXPORT int qbRefactorParsedFileText(int handle, const char* fileName, char* buffer,
                                               int size) {
    int status;
    CPParser* parser = parsedFile(handle, fileName, status);
    if (!parser) return status;
    CPPreprocessorUnit* tree = parser->getSourceTree();
    if (!tree) return status < 0 ? status : qbmsg::NoParser;
    QBString text("");
    if (tree->getText(text) < 0) return qbmsg::OutOfMemory;
    size_t copied = text.length() < unsigned(size) ? text.length() : size_t(size);
    if (buffer && size > 0 && copied > 0) std::memcpy(buffer, text.get(), copied);
    return int(text.length());
}
