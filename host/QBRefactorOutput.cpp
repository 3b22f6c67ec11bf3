// Text for the user that doesn't belong to a file: shown by the host unless a caller took it.
#include "QBRefactorExport.h"
#include "qbapi.h"

typedef int (*QBRefactorOutputCallback)(const char* text);

namespace {
QBRefactorOutputCallback outputCallback = nullptr;
}

QBREFACTOR_EXPORT int qbRefactorOutput(const char* text) {
    if (outputCallback) return outputCallback(text);
    return qbPrint("%s", text ? text : "");
}

QBREFACTOR_EXPORT QBRefactorOutputCallback qbRefactorSetOutputCB(QBRefactorOutputCallback cb) {
    if (cb) outputCallback = cb;
    return outputCallback;
}
