#include "BPSourceText.h"

#include <new>

#include "QBMessageCodes.h"
#include "qbapi.h"

using quernbase::QBString;

// Resolved from the loading process; weak so that a program without the host's library (a unit
// test, a tool) still links and gets a clear status instead of a crash.
int qbReadFileToString(const QBString& fileName, QBString& out, int reserved1, int reserved2,
                       int mode) __attribute__((weak));

namespace {

int readWithHost(const QBString& name, QBString& out) {
    if (!&qbReadFileToString) return qbmsg::FileNotFound;
    return qbReadFileToString(name, out, 0, 0, 0);
}

BPSourceHandle::ReadFileFunction readFile = readWithHost;

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }
bool isBlankOrTab(char c) { return c == ' ' || c == '\t' || c == '\v'; }

}  // namespace

BPSourceHandle& BPSourceHandle::assignOther(const BPSourceHandle& other) {
    BPSourceText* old = record;
    record = other.record;
    retain();
    if (old && --old->refCount == 0) delete old;
    return *this;
}

void BPSourceHandle::drop() {
    if (record && --record->refCount == 0) delete record;
    record = nullptr;
}

void BPSourceHandle::reset() { drop(); }

bool BPSourceHandle::operator==(const BPSourceHandle& other) const {
    if (record == other.record) return true;
    if (!record || !other.record) return false;
    return record->kind == other.record->kind && record->fileName == other.record->fileName &&
           record->text == other.record->text && record->firstLine == other.record->firstLine &&
           record->seekBase == other.record->seekBase;
}

int BPSourceHandle::makePrivate() {
    if (!record) {
        record = new (std::nothrow) BPSourceText;
        return record ? 0 : qbmsg::OutOfMemory;
    }
    if (record->refCount < 2) return 0;
    BPSourceText* copy = new (std::nothrow) BPSourceText;
    if (!copy) return qbmsg::OutOfMemory;
    copy->kind = record->kind;
    copy->includeOnce = record->includeOnce;
    copy->isSystem = record->isSystem;
    copy->fileName = record->fileName;
    copy->text = record->text;  // shares the body, so begin and end stay valid
    copy->begin = record->begin;
    copy->end = record->end;
    copy->length = record->length;
    copy->firstLine = record->firstLine;
    copy->seekBase = record->seekBase;
    --record->refCount;
    record = copy;
    return 0;
}

int BPSourceHandle::adoptText(const QBString& text) {
    QBString stored(text);
    if (stored.makeNotNull() != 0 || stored.nullTerminate() != 0) return qbmsg::OutOfMemory;
    record->text = stored;
    record->length = record->text.length();
    record->begin = record->text.get();
    record->end = record->begin + record->length;
    return 0;
}

int BPSourceHandle::load(const QBString& name) {
    if (name.isEmpty()) return qbmsg::InvalidArgument;
    if (int rc = makePrivate()) return rc;
    QBString text;
    int rc = readFile(name, text);
    if (rc < 0) return rc;
    if (adoptText(text) != 0) return qbmsg::OutOfMemory;
    record->fileName = name;
    record->firstLine = 1;
    record->seekBase = 0;
    return 0;
}

int BPSourceHandle::setText(const QBString& text) {
    if (int rc = makePrivate()) return rc;
    return adoptText(text);
}

BPSourceHandle BPSourceHandle::makeTextSource(const QBString& text, uint32_t firstLine,
                                              uint32_t seekBase) {
    BPSourceHandle handle;
    if (handle.setText(text) != 0) {
        handle.reset();
        return handle;
    }
    handle->kind = BPSourceText::TEXT;
    handle->firstLine = firstLine;
    handle->seekBase = seekBase;
    return handle;
}

BPSourceHandle::ReadFileFunction BPSourceHandle::setReadFileFunction(ReadFileFunction reader) {
    ReadFileFunction old = readFile;
    readFile = reader ? reader : readWithHost;
    return old;
}

uint32_t BPSourcePosition::getLine() const {
    return source.isNull() ? line : source->firstLine + line;
}

uint32_t BPSourcePosition::getSeekPosition() const {
    if (!cursor || source.isNull()) return 0;
    return uint32_t(cursor - source->begin) + source->seekBase;
}

uint32_t BPSourcePosition::getColumn(int tabSize) const {
    if (source.isNull() || !cursor) return 0;
    const char* start = cursor;
    while (start > source->begin && !isLineEnd(start[-1])) --start;
    bool sawTab = false;
    for (const char* p = start; p < cursor; ++p) sawTab = sawTab || *p == '\t';
    if (tabSize <= 0 || !sawTab) {
        // Only the first line counts from 1: a historical quirk that callers rely on.
        uint32_t column = uint32_t(cursor - start);
        return start == source->begin ? column + 1 : column;
    }
    uint32_t column = 1;
    for (const char* p = start; p < cursor; ++p) {
        uint32_t rest = column % uint32_t(tabSize);
        column += (*p == '\t' && rest != 0) ? uint32_t(tabSize) - rest + 1 : 1;
    }
    return column;
}

bool BPSourcePosition::isFirstOnLine() const {
    if (source.isNull() || !cursor) return false;
    if (cursor < source->end && (isBlankOrTab(*cursor) || isLineEnd(*cursor))) return false;
    const char* p = cursor;
    while (p > source->begin && isBlankOrTab(p[-1])) --p;
    return p == source->begin || isLineEnd(p[-1]);
}

QBString BPSourcePosition::getFileName() const {
    if (source.isNull()) return QBString("");
    return source->fileName.isNull() ? QBString("") : source->fileName;
}
