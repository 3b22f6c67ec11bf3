#include "QBRefactorWindow.h"

#include "QBMessageCodes.h"
#include "qbapi.h"

using quernbase::QBString;

int qbRefactorInsertText(int wid, const char* text, int length) {
    int rc = qbWindowInsert(wid, text, length, 1, 13, 10);
    if (rc < 0) return rc;
    if (qbWindowLineQuery(wid, 1) == 0) qbWindowLineAdd(wid);
    return 0;
}

int qbRefactorGetRText(int wid, char* buffer, int size) {
    int64_t textSize = qbWindowGetProperty(wid, QBWINDOW_TEXT_SIZE);
    if (textSize < 0) return int(textSize);
    if (!buffer) return int(textSize);
    if (size <= textSize) return qbmsg::OutOfMemory;
    int rc = qbWindowReadText(wid, textSize, 0, buffer, 0);
    if (rc < 0) return rc;
    buffer[textSize] = 0;
    return int(textSize);
}

int readWindowText(int wid, QBString& out) {
    int size = qbRefactorGetRText(wid, nullptr, 0);
    if (size < 0) return size;
    QBString text(size_t(size) + 1);
    if (text.setLength(unsigned(size) + 1) < 0) return qbmsg::OutOfMemory;
    int rc = qbRefactorGetRText(wid, text.get_nonconst(), size + 1);
    if (rc < 0) return rc;
    if (text.setLength(unsigned(size)) < 0) return qbmsg::OutOfMemory;
    out = text;
    return 0;
}
