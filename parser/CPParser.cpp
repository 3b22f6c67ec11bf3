#include "CPParser.h"

#include <new>

#include "BPHostMessages.h"
#include "BPSourceCache.h"
#include "CPLexer.h"
#include "CPPreprocessor.h"
#include "qbapi.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace {

enum { ERR_NO_MEMORY = -8, ERR_CANCELLED = -2038, ERR_INVALID_ARGUMENT = -3015,
       ERR_NO_ROOT = -8024 };

// The preprocessor's view of its parser: the cancel flag and the host's callbacks.
class ParserHost : public CPPreprocessorHost {
public:
    explicit ParserHost(CPParser& owner) : parser(owner) {}
    bool isCancelled() const override { return parser.cancelled; }
    int reportMessage(const char* text, int flag) override {
        return parser.reportMessage(text, flag);
    }
    int reportProgress(int64_t current, int64_t total, int phase) override {
        return parser.reportProgress(current, total, phase);
    }
    int locateFile(const char* name, char* buffer, int size) override {
        return parser.locateFile(name, buffer, size);
    }

private:
    CPParser& parser;
};

// The file's source record, from the transaction's cache when there is one.
BPSourceHandle loadSource(BPSourceCache* cache, const QBString& name, int& status) {
    if (cache) return cache->getSource(name, BPSourceText::MAIN_FILE, status);
    BPSourceHandle handle;
    status = handle.makePrivate();
    if (status >= 0) status = handle.load(name);
    return status < 0 ? BPSourceHandle() : handle;
}

}  // namespace

CPParser::CPParser() {}

CPParser::~CPParser() = default;

// ---- Preprocessor settings ----------------------------------------------------------------
// They are kept here until the preprocessor exists to take them.

int CPParser::addIncludePath(QBArray<QBString>& list, const QBString& path) {
    QBString entry(path);
    if (entry.strip(" \t") < 0) return ERR_NO_MEMORY;
    if (entry.beginsWith("-I") || entry.beginsWith("/I")) {
        if (entry.remove(0, 2) < 0 || entry.strip(" \t") < 0) return ERR_NO_MEMORY;
    }
    if (entry.isEmpty()) return 0;
    return list.add(entry);
}

int CPParser::addUserIncludePath(const QBString& path) {
    return addIncludePath(userIncludePaths, path);
}

int CPParser::addSystemIncludePath(const QBString& path) {
    return addIncludePath(systemIncludePaths, path);
}

// Only the option's kind is checked here: -D and -U (or /D, /U), or a bare definition. Reading
// the definition itself is the preprocessor's.
int CPParser::addDefineOption(const QBString& option) {
    QBString text(option);
    char first = text.first_char();
    if (text.length() >= 2 && (first == '"' || first == '\'') && text.last_char() == first) {
        text = text.sub(1, text.length() - 2);
    }
    first = text.first_char();
    if (first == '-' || first == '/') {
        char kind = text.charAt(1);
        if (kind != 'D' && kind != 'U') return ERR_INVALID_ARGUMENT;
    }
    return defines.add(text);
}

int CPParser::setConfigFile(const QBString& path) {
    QBString text;
    int rc = qbReadFileToString(path, text, 0, 0, 2);
    if (rc < 0) return rc;
    configFile = path;
    return 0;
}

// ---- The pipeline -------------------------------------------------------------------------

int CPParser::open(const QBString& name) {
    fileName = name;
    // The text is read straight from the host until the shared source cache takes this over.
    QBString text;
    int rc = qbReadFileToString(name, text, 0, 0, 2);
    if (rc < 0) return rc;
    sourceText = text;
    sourceLoaded = true;
    return 0;
}

int CPParser::parse() {
    if (cancelled) return ERR_CANCELLED;
    int rc = open(fileName);
    if (rc < 0) {
        // A file that can't be read is reported against itself, so the user learns why.
        if (logError(rc, 2, fileName) == ERR_NO_MEMORY) return ERR_NO_MEMORY;
        return rc;
    }
    // Not yet there: the lexer, the preprocessor's trees and the grammar. No tree is made.
    return cancelled ? ERR_CANCELLED : 0;
}

int CPParser::preprocess(QBString& out, bool addLineMarkers) {
    int status = 0;
    BPSourceHandle source = loadSource(sourceCache, fileName, status);
    if (status < 0) {
        if (logError(status, 2, fileName) == ERR_NO_MEMORY) return ERR_NO_MEMORY;
        return status;
    }
    CPLexer* lexer = new (std::nothrow) CPLexer(source, 0);
    if (!lexer) return ERR_NO_MEMORY;
    lexer->addRef();
    ParserHost host(*this);
    CPPreprocessor* pp = new (std::nothrow) CPPreprocessor(lexer, &host);
    int rc = pp ? 0 : ERR_NO_MEMORY;
    if (pp) {
        pp->addRef();
        pp->setSourceCache(sourceCache);
        for (unsigned i = 0; rc >= 0 && i < userIncludePaths.count(); ++i)
            rc = pp->addUserIncludePath(userIncludePaths[i]);
        for (unsigned i = 0; rc >= 0 && i < systemIncludePaths.count(); ++i)
            rc = pp->addSystemIncludePath(systemIncludePaths[i]);
        for (unsigned i = 0; rc >= 0 && i < defines.count(); ++i)
            rc = pp->addDefineOption(defines[i]);
        if (rc >= 0 && configFile.isNotEmpty()) rc = pp->setConfigFile(configFile.get());
        if (rc >= 0) rc = pp->writePreprocessedText(out, addLineMarkers);
        pp->release();
    }
    lexer->release();
    if (rc < 0) return rc == ERR_CANCELLED || cancelled ? ERR_CANCELLED : rc;
    return out.append('\n');
}

int CPParser::analyzeFirstPass() {
    // Analysis runs on the root, which the grammar (not yet there) makes.
    return ERR_NO_ROOT;
}

int CPParser::analyzeSecondPass() { return ERR_NO_ROOT; }

// ---- Messages -----------------------------------------------------------------------------

int CPParser::logError(int code, int severity, const QBString& argument) {
    TBPErrorInfo<CPParseNodeType> record;
    record.code = code;
    record.severity = severity;
    // File, line, column, code, then the message's own argument.
    int rc = record.arguments.add(fileName);
    if (rc >= 0) rc = record.arguments.add(QBString("0"));
    if (rc >= 0) rc = record.arguments.add(QBString("0"));
    if (rc >= 0) rc = record.addNumber(code);
    if (rc >= 0) rc = record.arguments.add(argument);
    if (rc >= 0) rc = errors.addRecord(record);
    return rc < 0 ? ERR_NO_MEMORY : 0;
}

int CPParser::collectAllErrors() {
    // The trees' own messages join these once the trees exist.
    return 0;
}

int CPParser::getErrorCount() const { return errors.getErrorCount(); }

int CPParser::getWarningCount() const { return errors.getWarningCount(); }

int CPParser::getErrorTexts(QBArray<QBString>& out) const {
    return errors.appendTexts(out) < 0 ? ERR_NO_MEMORY : 0;
}

// ---- Host callbacks -----------------------------------------------------------------------

int CPParser::reportMessage(const char* text, int flag) {
    if (cancelled) return ERR_CANCELLED;
    if (!messageCallback) return 0;
    int answer = messageCallback(text, flag);
    if (answer < 0) cancelled = true;
    return answer;
}

// Phases share one bar: preprocessing the first third, parsing up to five sixths, analysis the
// rest.
int CPParser::reportProgress(int64_t current, int64_t total, int phase) {
    if (cancelled) return ERR_CANCELLED;
    if (!progressCallback) return 0;
    int64_t sentCurrent = current, sentTotal = total;
    if (phase == 1) sentTotal = total * 3;
    if (phase == 2) sentCurrent = current + (total * 2) / 3, sentTotal = total * 2;
    if (phase == 3) sentCurrent = current + total * 5, sentTotal = total * 6;
    int answer = progressCallback(sentCurrent, sentTotal);
    if (answer < 0) cancelled = true;
    return answer;
}

int CPParser::locateFile(const char* includeName, char* buffer, int size) {
    if (buffer && size > 0) buffer[0] = 0;
    if (!locateFileCallback) return 0;
    int answer = locateFileCallback(transactionId, fileName.get(), includeName, buffer, size);
    if (answer == ERR_CANCELLED) cancelled = true;
    return answer;
}
