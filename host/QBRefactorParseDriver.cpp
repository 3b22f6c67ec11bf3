#include "QBRefactorParseDriver.h"

#include "BPHostMessages.h"
#include "BPSourceCache.h"
#include "CPParser.h"
#include "QBRefactorCallbacks.h"
#include "QBMessageCodes.h"
#include "QBRefactorTransaction.h"
#include "QBRefactorWindow.h"

using quernbase::QBString;

namespace {

enum { PREPROCESS_RESERVE = 4194304, BANNER_WIDTH = 70 };

int indexOfParser(QBRefactorTransaction* t, CPParser* parser) {
    for (unsigned i = 0; i < t->parsers.count(); ++i)
        if (t->parsers[i] == parser) return int(i);
    return -1;
}

// The file's place in the walk goes to the host; a negative answer ends the file.
int announceFile(QBRefactorTransaction* t, CPParser* parser) {
    int answer = qbRefactorFileMessage(parser->fileName.get(), indexOfParser(t, parser) + 1,
                                       int(t->parsers.count()));
    return answer < 0 ? answer : 0;
}

int startStage(CPParser* parser, int message) {
    if (parser->reportProgress(0, 100, 0) < 0) return qbmsg::Cancelled;
    if (parser->reportMessage(BPHostMessages::getMessage(message), 0) < 0)
        return qbmsg::Cancelled;
    return 0;
}

// Shows the file's messages when asked to and there are only warnings.
void showWarnings(QBRefactorTransaction* t, CPParser* parser, bool showErrors) {
    if (showErrors && parser->getWarningCount() > 0) showFileErrors(t->id, parser->fileName.get());
}

int analyze(QBRefactorTransaction* t, CPParser* parser, bool showErrors) {
    if (parser->reportMessage(BPHostMessages::getMessage(qbmsg::Analyzing), 0) < 0)
        return qbmsg::Cancelled;
    int first = parser->analyzeFirstPass();
    if (first == qbmsg::Cancelled) return first;
    parser->reportMessage(BPHostMessages::getMessage(qbmsg::FinishingAnalysis), 0);
    int second = parser->analyzeSecondPass();
    if (first >= 0 && second >= 0) return 0;
    if (second == qbmsg::Cancelled) return second;
    t->storeErrors(parser);
    if (parser->getErrorCount() == 0) {
        showWarnings(t, parser, showErrors);
        return 0;
    }
    return qbmsg::FileHasErrors;
}

// What a failing file does to the walk: a cancel ends it, and otherwise the host is asked once
// whether to go on. The parser is released in every case.
int afterFile(QBRefactorTransaction* t, int index, int status, int& answer) {
    CPParser* parser = t->parsers[unsigned(index)];
    int result = 0;
    if (status == qbmsg::Cancelled) {
        result = status;
    } else if (status < 0 && answer == 0) {
        answer = promptToSkip(t->id, parser->fileName.get(), status);
        if (answer < 0) result = answer;
    }
    int released = t->releaseParser(index);
    return result < 0 ? result : released;
}

int appendBanner(int wid, const QBString& fileName, const QBString& text) {
    QBString out;
    QBString rule;
    if (rule.pad(BANNER_WIDTH, '/') < 0) return qbmsg::OutOfMemory;
    out.append(rule);
    out.append("\n// ");
    out.append(fileName);
    out.append('\n');
    out.append(rule);
    out.append('\n');
    if (out.append(text) < 0) return qbmsg::OutOfMemory;
    return qbRefactorInsertText(wid, out.get(), int(out.length()));
}

}  // namespace

// Each parse starts with no header marked as included. A record that an earlier parse's tokens
// still share is copied first, so that their flags stay as they were.
int refreshSourceCache(QBRefactorTransaction* transaction) {
    BPSourceCache* cache = transaction ? transaction->sourceCache : nullptr;
    if (!cache || cache->count() == 0) return 0;
    int count = cache->count();
    QBString* names = cache->keys();
    if (!names) return qbmsg::OutOfMemory;
    int rc = 0;
    for (int i = 0; i < count && rc == 0; ++i) {
        BPSourceHandle* entry = cache->find(names[i]);
        if (!entry) continue;
        rc = entry->makePrivate();
        if (rc == 0) (*entry)->includeOnce = false;
    }
    delete[] names;
    return rc;
}

int parseFile(QBRefactorTransaction* t, CPParser* parser, bool showErrors) {
    if (!parser) return qbmsg::NoParser;
    if (parser->hasOutputTree()) return 0;
    if (int rc = announceFile(t, parser)) return rc;
    if (refreshSourceCache(t) < 0) return qbmsg::FileHasErrors;
    if (int rc = startStage(parser, qbmsg::Parsing)) return rc;
    int status = parser->parse();
    if (status == qbmsg::Cancelled) return status;
    if (status < 0) {
        t->storeErrors(parser);
        if (parser->getErrorCount() == 0) showWarnings(t, parser, showErrors);
    }
    if (status >= 0 || parser->getErrorCount() == 0) {
        int rc = analyze(t, parser, showErrors);
        if (rc != qbmsg::FileHasErrors) return rc;
    }
    showFileErrors(t->id, parser->fileName.get());
    return qbmsg::FileHasErrors;
}

int preprocessFile(QBRefactorTransaction* t, CPParser* parser, QBString& out,
                   bool addLineMarkers) {
    if (!parser) return qbmsg::NoParser;
    if (int rc = announceFile(t, parser)) return rc;
    if (refreshSourceCache(t) < 0) return qbmsg::FileHasErrors;
    if (int rc = startStage(parser, qbmsg::Preprocessing)) return rc;
    int status = parser->preprocess(out, addLineMarkers);
    if (status >= 0) return 0;
    if (status == qbmsg::Cancelled) return status;
    t->storeErrors(parser);
    showFileErrors(t->id, parser->fileName.get());
    return parser->getErrorCount() > 0 ? qbmsg::FileHasErrors : 0;
}

// The walk of both commands: each live parser in order, a changed file passed over, and every
// parser released behind its file.
template <class RunFile>
int walkFiles(int handle, RunFile runFile) {
    QBRefactorTransaction* t = findTransaction(handle);
    if (!t) return qbmsg::NoTransaction;
    int answer = 0;
    for (unsigned i = 0; i < t->parsers.count(); ++i) {
        CPParser* parser = t->parsers[i];
        if (!parser) continue;
        int status = 0;
        if (!t->modifiedFiles.contains(parser->fileName)) status = runFile(t, parser);
        if (int rc = afterFile(t, int(i), status, answer)) return rc;
    }
    return 0;
}

int parseAllFiles(int handle) {
    return walkFiles(handle, [](QBRefactorTransaction* t, CPParser* parser) {
        return parseFile(t, parser, true);
    });
}

// Each file's text goes into the window behind its banner, whatever became of it, unless the
// host cancelled: then nothing more is written.
int preprocessAllFiles(int handle, int wid, int addLineMarkers) {
    return walkFiles(handle, [wid, addLineMarkers](QBRefactorTransaction* t, CPParser* parser) {
        QBString text;
        if (text.setCapacity(PREPROCESS_RESERVE) < 0) return int(qbmsg::OutOfMemory);
        QBString name = parser->fileName;
        int status = preprocessFile(t, parser, text, addLineMarkers != 0);
        if (status == qbmsg::Cancelled) return status;
        int inserted = appendBanner(wid, name, text);
        return inserted < 0 && status >= 0 ? inserted : status;
    });
}
