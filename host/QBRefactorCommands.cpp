// The transaction commands of the macro language, and their plain twins. A macro form hands a
// string back through its QBHREFVAR argument and returns 0; a twin copies it into the caller's
// buffer and returns its length.
#include "BPHostMessages.h"
#include "CPParser.h"
#include "QBRefactorExport.h"
#include "QBRefactorParseDriver.h"
#include "QBMessageCodes.h"
#include "QBRefactorTransaction.h"
#include "QBRefactorWindow.h"
#include "qbapi.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace {

// Null stays null, so that "no file name" can be told from an empty one.
QBString textOf(const char* s) { return s ? QBString(s) : QBString(); }

int copyOut(const QBString& text, char* buffer, int size) {
    if (buffer && size > 0) {
        unsigned n = text.length() < unsigned(size) ? text.length() : unsigned(size - 1);
        for (unsigned i = 0; i < n; ++i) buffer[i] = text[i];
        buffer[n] = 0;
    }
    return int(text.length());
}

int toVariable(int status, const QBString& text, int var) {
    if (status < 0) return status;
    int rc = qbVarSetString(var, text.get() ? text.get() : "");
    return rc < 0 ? rc : 0;
}

// The key at a position of bucket order; a bad index gives the empty string.
template <class V>
QBString keyAt(const quernbase::QBHashTable<QBString, V>& table, int index) {
    QBString found("");
    int i = 0;
    table.forEach([&](const QBString& key, const V&) {
        if (i++ == index) found = key;
    });
    return found;
}

int modifiedFileName(int handle, int index, QBString& out) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    out = keyAt(t->modifiedFiles, index);
    return 0;
}

int errorFileName(int handle, int index, QBString& out) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    out = keyAt(t->errorFiles, index);
    return 0;
}

int errorText(int handle, const char* fileName, int errorIndex, QBString& out) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    out = "";
    const QBArray<QBString>* list = fileName ? t->errorFiles.find(QBString(fileName)) : nullptr;
    if (list && errorIndex >= 0 && unsigned(errorIndex) < list->count())
        out = (*list)[unsigned(errorIndex)];
    return 0;
}

int addIncludeDirectory(int handle, const char* fileName, const char* paths) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    int index;
    CPParser* parser = t->findParser(textOf(fileName), index);
    if (!parser) return qbmsg::FileNotFound;
    QBArray<QBString> parts;
    if (textOf(paths).split(';', parts) < 0) return qbmsg::IncludePathRefused;
    for (const QBString& part : parts)
        if (parser->addUserIncludePath(part) < 0) return qbmsg::IncludePathRefused;
    return 0;
}

}  // namespace

// ---- Begin, commit, cancel ----------------------------------------------------------------

QBREFACTOR_EXPORT int qbRefactorBeginTransaction() { return beginTransaction(); }
QBREFACTOR_EXPORT int refactor_begin_transaction() { return beginTransaction(); }

QBREFACTOR_EXPORT int qbRefactorCommitTransaction(int handle) { return commitTransaction(handle); }
QBREFACTOR_EXPORT int refactor_commit_transaction(int handle) { return commitTransaction(handle); }

QBREFACTOR_EXPORT int qbRefactorCancelTransaction(int handle) { return cancelTransaction(handle); }
QBREFACTOR_EXPORT int refactor_cancel_transaction(int handle) { return cancelTransaction(handle); }

// ---- The file set -------------------------------------------------------------------------

QBREFACTOR_EXPORT int qbRefactorAddFile(int handle, const char* fileName,
                                        const char* userIncludePath,
                                        const char* systemIncludePath, const char* defineOptions,
                                        const char* compilerConfig) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    return t->addFile(textOf(fileName), textOf(userIncludePath), textOf(systemIncludePath),
                      textOf(defineOptions), textOf(compilerConfig), -1);
}
QBREFACTOR_EXPORT int refactor_add_file(int handle, const char* fileName,
                                        const char* userIncludePath,
                                        const char* systemIncludePath, const char* defineOptions,
                                        const char* compilerConfig) {
    return qbRefactorAddFile(handle, fileName, userIncludePath, systemIncludePath, defineOptions,
                             compilerConfig);
}

QBREFACTOR_EXPORT int qbRefactorRemoveFile(int handle, const char* fileName) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    return t->removeFile(textOf(fileName));
}
QBREFACTOR_EXPORT int refactor_remove_file(int handle, const char* fileName) {
    return qbRefactorRemoveFile(handle, fileName);
}

QBREFACTOR_EXPORT int qbRefactorAddUserIncludeDirectory(int handle, const char* fileName,
                                                        const char* userIncludePath) {
    return addIncludeDirectory(handle, fileName, userIncludePath);
}
QBREFACTOR_EXPORT int refactor_add_user_include_directory(int handle, const char* fileName,
                                                          const char* userIncludePath) {
    return addIncludeDirectory(handle, fileName, userIncludePath);
}

// ---- Modified files -----------------------------------------------------------------------

QBREFACTOR_EXPORT int qbRefactorCountModifiedFiles(int handle) {
    QBRefactorTransaction* t = findTransaction(handle);
    return t ? t->modifiedFiles.count() : qbmsg::NoTransaction;
}
QBREFACTOR_EXPORT int refactor_count_modified_files(int handle) {
    return qbRefactorCountModifiedFiles(handle);
}

QBREFACTOR_EXPORT int qbRefactorGetModifiedFileName(int handle, int index, char* buffer,
                                                    int size) {
    QBString name;
    int rc = modifiedFileName(handle, index, name);
    return rc < 0 ? rc : copyOut(name, buffer, size);
}
QBREFACTOR_EXPORT int refactor_get_modified_file_name(int handle, int index, int fileNameVar) {
    QBString name;
    return toVariable(modifiedFileName(handle, index, name), name, fileNameVar);
}

QBREFACTOR_EXPORT int qbRefactorGetModifiedFileContents(int wid, int handle,
                                                        const char* fileName) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    const QBString* text = t->modifiedFiles.find(textOf(fileName));
    if (!text) return qbmsg::FileNotFound;
    if (text->isNull()) return 0;
    return qbRefactorInsertText(wid, text->get(), int(text->length()));
}
QBREFACTOR_EXPORT int refactor_get_modified_file_contents(int wid, int handle,
                                                          const char* fileName) {
    return qbRefactorGetModifiedFileContents(wid, handle, fileName);
}

QBREFACTOR_EXPORT int qbRefactorSetModifiedFileContents(int wid, int handle,
                                                        const char* fileName) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    if (!fileName || !*fileName) return qbmsg::InvalidArgument;
    QBString text;
    if (int rc = readWindowText(wid, text)) return rc;
    return t->setModifiedFile(QBString(fileName), text);
}
QBREFACTOR_EXPORT int refactor_set_modified_file_contents(int wid, int handle,
                                                          const char* fileName) {
    return qbRefactorSetModifiedFileContents(wid, handle, fileName);
}

// ---- Error files --------------------------------------------------------------------------

QBREFACTOR_EXPORT int qbRefactorCountErrorFiles(int handle) {
    QBRefactorTransaction* t = findTransaction(handle);
    return t ? t->errorFiles.count() : qbmsg::NoTransaction;
}
QBREFACTOR_EXPORT int refactor_count_error_files(int handle) {
    return qbRefactorCountErrorFiles(handle);
}

QBREFACTOR_EXPORT int qbRefactorGetErrorFileName(int handle, int index, char* buffer, int size) {
    QBString name;
    int rc = errorFileName(handle, index, name);
    return rc < 0 ? rc : copyOut(name, buffer, size);
}
QBREFACTOR_EXPORT int refactor_get_error_file_name(int handle, int index, int fileNameVar) {
    QBString name;
    return toVariable(errorFileName(handle, index, name), name, fileNameVar);
}

// A null or empty name counts the errors of every file.
QBREFACTOR_EXPORT int qbRefactorCountErrors(int handle, const char* fileName) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    if (fileName && *fileName) {
        const QBArray<QBString>* list = t->errorFiles.find(QBString(fileName));
        return list ? int(list->count()) : 0;
    }
    int sum = 0;
    t->errorFiles.forEach([&](const QBString&, const QBArray<QBString>& list) {
        sum += int(list.count());
    });
    return sum;
}
QBREFACTOR_EXPORT int refactor_count_errors(int handle, const char* fileName) {
    return qbRefactorCountErrors(handle, fileName);
}

QBREFACTOR_EXPORT int qbRefactorGetError(int handle, const char* fileName, int errorIndex,
                                         char* buffer, int size) {
    QBString text;
    int rc = errorText(handle, fileName, errorIndex, text);
    return rc < 0 ? rc : copyOut(text, buffer, size);
}
QBREFACTOR_EXPORT int refactor_get_error(int handle, const char* fileName, int errorIndex,
                                         int errorStringVar) {
    QBString text;
    return toVariable(errorText(handle, fileName, errorIndex, text), text, errorStringVar);
}

// ---- Parse and preprocess -----------------------------------------------------------------

// flags is part of the command's signature and has no meaning yet.
QBREFACTOR_EXPORT int qbRefactorCParse(int handle, int) { return parseAllFiles(handle); }
QBREFACTOR_EXPORT int refactor_c_parse(int handle, int) { return parseAllFiles(handle); }

QBREFACTOR_EXPORT int qbRefactorCPreprocess(int handle, int wid, int addLineMarkers) {
    return preprocessAllFiles(handle, wid, addLineMarkers);
}
QBREFACTOR_EXPORT int refactor_c_preprocess(int handle, int wid, int addLineMarkers) {
    return preprocessAllFiles(handle, wid, addLineMarkers);
}
