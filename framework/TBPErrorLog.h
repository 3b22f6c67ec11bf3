// Diagnostics of the front end. A message is not printed when it is found: it is stored on the
// tree node it belongs to (the node's TBPErrorLog), so a failed attempt of the parser takes its
// messages with it when its subtree is dropped. At the end of a parse the messages of the kept
// tree are gathered into one log and formatted through the host's message file, only then.
//
// A record's arguments are always: file name, line, column, code (as decimal text), then the
// message's own five arguments, empty ones kept as empty strings.
#pragma once

#include <cstdint>
#include <cstdio>

#include "BPHostMessages.h"
#include "BPSourceText.h"
#include "QBArray.h"
#include "QBHashTable.h"
#include "QBMessageCodes.h"
#include "QBString.h"

template <class T> class TBPSymbolInfo;

enum BPSeverity { BPSEVERITY_WARNING = 1, BPSEVERITY_ERROR = 2, BPSEVERITY_FATAL = 3 };

// A plain record, stored by value in the log's array.
template <class T>
struct TBPErrorInfo {
    enum { ARG_FILE, ARG_LINE, ARG_COLUMN, ARG_CODE, ARG_FIRST_MESSAGE_ARG, MESSAGE_ARGS = 5 };

    int32_t code = 0;
    int32_t severity = 0;
    const BPSourcePosition* position = nullptr;  // only while the record is being made
    quernbase::QBArray<quernbase::QBString> arguments;

    bool isError() const { return severity == BPSEVERITY_ERROR || severity == BPSEVERITY_FATAL; }
    bool isWarning() const { return severity == BPSEVERITY_WARNING; }

    // Fills the record; args holds the message's five arguments (null entries count as empty).
    int make(const BPSourcePosition* where, int messageCode, int messageSeverity,
             const quernbase::QBString* const* args) {
        code = messageCode;
        severity = messageSeverity;
        position = where;
        arguments.clear();
        quernbase::QBString fileName(where ? where->getFileName() : quernbase::QBString(""));
        int rc = fileName.breakLinkToExternalBuffer();
        rc = rc < 0 ? rc : arguments.add(fileName);
        rc = rc < 0 ? rc : addNumber(where ? where->getLine() : 0);
        rc = rc < 0 ? rc : addNumber(where ? where->getColumn(0) : 0);
        rc = rc < 0 ? rc : addNumber(messageCode);
        for (int i = 0; rc >= 0 && i < MESSAGE_ARGS; ++i)
            rc = arguments.add(args && args[i] && !args[i]->isNull() ? *args[i]
                                                                     : quernbase::QBString(""));
        position = nullptr;
        return rc < 0 ? rc : 0;
    }

    // Appends a number as one more argument. 0 or OutOfMemory.
    int addNumber(int64_t value) {
        quernbase::QBString text("");
        if (int rc = text.appendNumber(value, 10)) return rc;
        return arguments.add(text);
    }
};

template <class T>
class TBPErrorLog {
public:
    typedef TBPErrorInfo<T> Record;
    typedef quernbase::QBHashTable<quernbase::QBString, quernbase::QBArray<quernbase::QBString>>
        ErrorFiles;

    quernbase::QBArray<Record> errors;
    bool hasError = false;
    bool validated = false;
    bool valid = false;
    bool modified = false;
    // Symbols that refer to the node; filled and emptied by the symbol tables.
    quernbase::QBArray<TBPSymbolInfo<T>*> references;

    TBPErrorLog() = default;
    TBPErrorLog(const TBPErrorLog&) = delete;
    TBPErrorLog& operator=(const TBPErrorLog&) = delete;
    virtual ~TBPErrorLog() = default;

    int getCount() const { return int(errors.count()); }
    int getErrorCount() const { return countWhere(true); }
    int getWarningCount() const { return countWhere(false); }
    // Null past the last record.
    const Record* getRecord(int i) const {
        return i >= 0 && unsigned(i) < errors.count() ? &errors[unsigned(i)] : nullptr;
    }

    int addRecord(const Record& record) { return errors.add(record); }
    // Forgets the records, keeping the flags.
    void clearRecords() { errors.clear(); }
    // The flags travel with a copied node; the records never do.
    void copyFlagsFrom(const TBPErrorLog& other) {
        hasError = other.hasError;
        validated = other.validated;
        valid = other.valid;
        modified = other.modified;
    }

    // Appends copies of all of other's records. 0 or OutOfMemory.
    int merge(const TBPErrorLog& other) {
        if (&other == this) return 0;
        for (const Record& record : other.errors)
            if (int rc = errors.add(record)) return rc;
        return 0;
    }

    // The user's text of one record: the warning or error prefix (file, line, column, code),
    // then the message. The message parameters are global, so this is not re-entrant.
    static int format(const Record& record, quernbase::QBString& out) {
        const unsigned count = record.arguments.count();
        for (unsigned i = 0; i < count && i < Record::ARG_FIRST_MESSAGE_ARG; ++i)
            BPHostMessages::setMessageParameter(int(i), textOf(record.arguments[i]));
        int prefix = record.isWarning() ? qbmsg::WarningPrefix : qbmsg::ErrorPrefix;
        if (int rc = out.append(BPHostMessages::getMessage(prefix))) return rc;
        for (unsigned i = Record::ARG_FIRST_MESSAGE_ARG; i < count; ++i)
            BPHostMessages::setMessageParameter(int(i - Record::ARG_FIRST_MESSAGE_ARG),
                                                textOf(record.arguments[i]));
        return out.append(BPHostMessages::getMessage(record.code));
    }

    // Every record's text, each followed by a line end.
    int appendTo(quernbase::QBString& out) const {
        for (const Record& record : errors) {
            if (int rc = format(record, out)) return rc;
            if (int rc = out.append('\n')) return rc;
        }
        return 0;
    }

    void print() const {
        for (const Record& record : errors) {
            quernbase::QBString text("");
            format(record, text);
            std::printf("%s\n", textOf(text));
        }
    }

    // Appends every non-empty formatted text to out: one file's list for the host.
    int appendTexts(quernbase::QBArray<quernbase::QBString>& out) const {
        for (const Record& record : errors) {
            quernbase::QBString text("");
            if (int rc = format(record, text)) return rc;
            if (text.isEmpty()) continue;
            if (int rc = out.add(text)) return rc;
        }
        return 0;
    }

    // Makes or overwrites fileName's entry with a fresh list of this log's texts. 0 or OutOfMemory.
    int storeTexts(ErrorFiles& errorFiles, const quernbase::QBString& fileName) const {
        if (int rc = errorFiles.set(fileName, quernbase::QBArray<quernbase::QBString>())) return rc;
        quernbase::QBArray<quernbase::QBString>* list = errorFiles.find(fileName);
        return list ? appendTexts(*list) : qbmsg::OutOfMemory;
    }

private:
    int countWhere(bool wantErrors) const {
        int n = 0;
        for (const Record& record : errors)
            if (wantErrors ? record.isError() : record.isWarning()) ++n;
        return n;
    }
    static const char* textOf(const quernbase::QBString& s) { return s.isNull() ? "" : s.get(); }
};
