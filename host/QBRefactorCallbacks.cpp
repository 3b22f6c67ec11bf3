// Each callback finds its macro function by name on first use and remembers the handle. While
// the host has no such function the lookup is tried again on each call, and nothing is called.
#include "QBRefactorCallbacks.h"

#include "BPHostMessages.h"
#include "QBMessageFile.h"
#include "QBMessageCodes.h"
#include "QBRefactorTransaction.h"
#include "qbapi.h"

namespace {

enum Callback { MESSAGE, PROGRESS, FILE_MESSAGE, LOCATE_FILE, SHOW_ERRORS, PROMPT_TO_SKIP,
                CALLBACK_COUNT };

const char* const callbackNames[CALLBACK_COUNT] = {
    "refactor_message",     "refactor_progress",    "refactor_file_message",
    "refactor_locate_file", "refactor_show_errors", "refactor_prompt_to_skip",
};

int rememberedHandles[CALLBACK_COUNT];

// The handle, or 0 when the host lacks the function.
int resolve(Callback which) {
    int& handle = rememberedHandles[which];
    if (handle >= 1) return handle;
    handle = qbFindMacroFunction(callbackNames[which], 17);
    return qbIsMacroFunction(handle) ? handle : 0;
}

// The macro's result, left in variable 1. A call that the host refused, because the function
// has gone since it was found, made no answer: the caller then acts as for a missing function.
bool call(int handle, int argCount, const QBArgRecord* args, int& answer) {
    if (qbCallMacroFunction(0, handle, argCount, args) < 0) return false;
    answer = qbVarGetInt(QBVAR_RESULT);
    return true;
}

int callOr(int missing, int handle, int argCount, const QBArgRecord* args) {
    int answer = missing;
    return call(handle, argCount, args, answer) ? answer : missing;
}

QBArgRecord intArg(int64_t value, int tag = QBARG_INT32) { return QBArgRecord{tag, value}; }
QBArgRecord textArg(const char* text) {
    return QBArgRecord{QBARG_STRING, int64_t(reinterpret_cast<intptr_t>(text ? text : ""))};
}

}  // namespace

int qbRefactorMessage(const char* text, int flag) {
    int handle = resolve(MESSAGE);
    if (!handle) return 0;
    QBArgRecord args[] = {textArg(text), intArg(flag)};
    return callOr(0, handle, 2, args);
}

int qbRefactorProgress(int64_t current, int64_t total) {
    int handle = resolve(PROGRESS);
    if (!handle) return 0;
    QBArgRecord args[] = {intArg(current, QBARG_INT64), intArg(total, QBARG_INT64)};
    return callOr(0, handle, 2, args);
}

int qbRefactorFileMessage(const char* fileName, int index, int count) {
    setMessageParameter(0, fileName ? fileName : "(null)");
    int handle = resolve(FILE_MESSAGE);
    if (!handle) return 0;
    QBArgRecord args[] = {textArg(fileName), intArg(index), intArg(count)};
    return callOr(0, handle, 3, args);
}

int qbRefactorLocateFile(int transactionHandle, const char* sourceFile, const char* includedFile,
                         char* buffer, int size) {
    if (buffer && size > 0) buffer[0] = 0;
    int handle = resolve(LOCATE_FILE);
    if (!handle) return 0;
    int var = qbVarNewTemp(0);
    QBArgRecord args[] = {intArg(transactionHandle), textArg(sourceFile), textArg(includedFile),
                          intArg(var, QBARG_VAR)};
    int result = callOr(0, handle, 4, args);
    const char* found = qbVarGetString(var);
    if (buffer && size > 0 && found) {
        int n = 0;
        for (; n < size - 1 && found[n]; ++n) buffer[n] = found[n];
        buffer[n] = 0;
    }
    qbVarFreeTemp(var);
    return result;
}

int showFileErrors(int transactionId, const char* fileName) {
    int handle = resolve(SHOW_ERRORS);
    if (!handle) return qbmsg::NoShowErrors;
    QBArgRecord args[] = {intArg(transactionId), textArg(fileName)};
    return callOr(qbmsg::NoShowErrors, handle, 2, args);
}

int promptToSkip(int transactionId, const char* fileName, int status) {
    if (status == qbmsg::Cancelled) return status;
    QBRefactorTransaction* t = findTransaction(transactionId);
    if (!t) return qbmsg::NoTransaction;
    // With every file failed already there is nothing left to go on with.
    if (int(t->parsers.count()) - t->errorFiles.count() < 1) return status;
    int handle = resolve(PROMPT_TO_SKIP);
    if (!handle) return status;
    QBArgRecord args[] = {textArg(fileName)};
    return callOr(status, handle, 1, args);
}

int sendMessage(int code) { return qbRefactorMessage(getMessage(code), 0); }
