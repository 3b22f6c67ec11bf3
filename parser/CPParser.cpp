#include "CPParser.h"

#include <new>

#include "BPSourceCache.h"
#include "CPParse.h"
#include "CPParseTree.h"
#include "CPPreprocessorIfAdapter.h"
#include "CPPreprocessorNodes.h"
#include "QBMessageCodes.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace {

// The file's source record, from the shared cache when there is one.
BPSourceHandle loadSource(BPSourceCache* cache, const QBString& name, int& status) {
    if (cache) return cache->getSource(name, BPSourceText::MAIN_FILE, status);
    BPSourceHandle handle;
    status = handle.makePrivate();
    if (status >= 0) status = handle.load(name);
    return status < 0 ? BPSourceHandle() : handle;
}

}  // namespace

// The lexer and preprocessor live inside this object: the count taken here keeps the token
// sources that hold them from ever deleting them.
CPParser::CPParser() : host(*this), lexer(BPSourceHandle(), 0), preprocessor(&lexer, &host) {
    lexer.addRef();
    preprocessor.addRef();
    cpInstallIfEvaluator();
}

CPParser::~CPParser() { BPRefCountObject::assign(root, static_cast<CPParseTree*>(nullptr)); }

// ---- Preprocessor settings ----------------------------------------------------------------

int CPParser::addUserIncludePath(const QBString& path) {
    QBString entry(path);
    if (entry.strip(" \t") < 0) return qbmsg::OutOfMemory;
    return entry.isEmpty() ? 0 : preprocessor.addUserIncludePath(entry);
}

int CPParser::addSystemIncludePath(const QBString& path) {
    QBString entry(path);
    if (entry.strip(" \t") < 0) return qbmsg::OutOfMemory;
    return entry.isEmpty() ? 0 : preprocessor.addSystemIncludePath(entry);
}

// "-xc" reads the file and its headers as C, "-xc++" as C++ (the default). The editor never
// sends either, so its files keep the one mode; the option applies to the definitions after it.
int CPParser::addDefineOption(const QBString& option) {
    bool c = option == "-xc";
    if (!c && !(option == "-xc++")) return preprocessor.addDefineOption(option);
    lexer.setReadsC(c);
    preprocessor.setReadsC(c);
    return 0;
}

int CPParser::setConfigFile(const QBString& path) {
    if (int rc = preprocessor.setConfigFile(path.get())) return rc;
    configFile = path;
    return 0;
}

// ---- The pipeline -------------------------------------------------------------------------

int CPParser::open(const QBString& name) {
    fileName = name;
    int status = 0;
    BPSourceHandle loaded = loadSource(preprocessor.getSourceCache(), name, status);
    if (status < 0) {
        // A file that can't be read is reported against itself, so the user learns why.
        if (logError(status, 2, fileName) == qbmsg::OutOfMemory) return qbmsg::OutOfMemory;
        return status;
    }
    source = loaded;
    while (lexer.getSourceCount() > 0) lexer.popSource();
    return lexer.pushSource(source) < 0 ? qbmsg::OutOfMemory : 0;
}

// SyntaxError when any tree of the file carries the error flag.
int CPParser::treeStatus() const {
    if (!root || root->hasError() || preprocessor.hasErrors()) return qbmsg::SyntaxError;
    return 0;
}

// Reading the first token makes the preprocessor read the source tree and run it, so the whole
// file is preprocessed before the first declaration is parsed.
int CPParser::parse(const QBString& name) {
    if (cancelled) return qbmsg::Cancelled;
    if (int rc = open(name)) return rc;
    CPParseTree* unit = cpParseCompilationUnit(preprocessor);
    BPRefCountObject::assign(root, unit);
    if (cancelled) return qbmsg::Cancelled;
    if (CPPreprocessorUnit* sourceTree = preprocessor.getSourceTree()) sourceTree->source = source;
    if (!root && !preprocessor.getSourceTree()) return qbmsg::OutOfMemory;
    return treeStatus();
}

int CPParser::preprocess(QBString& out, bool addLineMarkers) {
    if (cancelled) return qbmsg::Cancelled;
    if (int rc = open(fileName)) return rc;
    int rc = preprocessor.writePreprocessedText(out, addLineMarkers);
    if (rc < 0) return cancelled ? qbmsg::Cancelled : rc;
    if (out.append('\n') < 0) return qbmsg::OutOfMemory;
    return preprocessor.hasErrors() ? qbmsg::SyntaxError : 0;
}

// Analysis is not there yet: both passes only check that there is a tree to analyse.
int CPParser::analyzeFirstPass() {
    if (!root) return qbmsg::NothingToWorkOn;
    return checkCancelled();
}

int CPParser::analyzeSecondPass() {
    if (!root) return qbmsg::NothingToWorkOn;
    return checkCancelled();
}

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
    if (rc >= 0) rc = loadErrors.addRecord(record);
    if (rc >= 0) rc = errors.addRecord(record);
    return rc < 0 ? qbmsg::OutOfMemory : 0;
}

// Gathered afresh each time, so that calling it twice doesn't repeat a message.
int CPParser::collectAllErrors() {
    errors.clearRecords();
    if (errors.merge(loadErrors) < 0) return qbmsg::OutOfMemory;
    if (int rc = preprocessor.collectErrors(errors); rc < 0) return rc;
    if (!root || !root->hasError()) return 0;
    return root->collectErrors(errors);
}

int CPParser::getErrorCount() const { return errors.getErrorCount(); }

int CPParser::getWarningCount() const { return errors.getWarningCount(); }

int CPParser::getErrorTexts(QBArray<QBString>& out) const {
    return errors.appendTexts(out) < 0 ? qbmsg::OutOfMemory : 0;
}

// ---- Host callbacks -----------------------------------------------------------------------

int CPParser::reportMessage(const char* text, int flag) {
    if (cancelled) return qbmsg::Cancelled;
    if (!messageCallback) return 0;
    int answer = messageCallback(text, flag);
    if (answer < 0) cancelled = true;
    return answer;
}

// Phases share one bar: preprocessing the first third, parsing up to five sixths, analysis the
// rest.
int CPParser::reportProgress(int64_t current, int64_t total, int phase) {
    if (cancelled) return qbmsg::Cancelled;
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
    if (answer == qbmsg::Cancelled) cancelled = true;
    return answer;
}

int CPParser::Host::reportMessage(const char* text, int flag) {
    return parser.reportMessage(text, flag);
}

int CPParser::Host::reportProgress(int64_t current, int64_t total, int phase) {
    return parser.reportProgress(current, total, phase);
}

int CPParser::Host::locateFile(const char* name, char* buffer, int size) {
    return parser.locateFile(name, buffer, size);
}
