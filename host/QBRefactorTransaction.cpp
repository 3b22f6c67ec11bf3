#include "QBRefactorTransaction.h"

#include <new>

#include "BPSourceCache.h"
#include "CPParser.h"
#include "QBRefactorCallbacks.h"
#include "QBMessageCodes.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace {

// The extension is what follows the last dot behind the last path separator.
QBString extensionOf(const QBString& name) {
    int cut = -1;
    for (unsigned i = 0; i < name.length(); ++i) {
        char c = name[i];
        if (c == '\\' || c == '/' || c == ':') cut = -1;
        else if (c == '.') cut = int(i);
    }
    return cut < 0 ? QBString("") : name.sub(unsigned(cut) + 1);
}

// Blank-separated tokens; a token in double quotes runs to the next double quote. The first
// empty token ends the list.
int forEachDefineOption(const QBString& options, CPParser* parser) {
    unsigned at = 0, n = options.length();
    while (true) {
        while (at < n && (options[at] == ' ' || options[at] == '\t')) ++at;
        if (at >= n) return 0;
        unsigned start = at, end;
        if (options[at] == '"') {
            start = ++at;
            while (at < n && options[at] != '"') ++at;
            end = at;
        } else {
            while (at < n && options[at] != ' ' && options[at] != '\t') ++at;
            end = at;
        }
        at = end < n ? end + 1 : n;
        QBString token = options.sub(start, end - start);
        token.strip(" \t");
        if (token.isEmpty()) return 0;
        if (parser->addDefineOption(token) < 0) return qbmsg::DefineOptionRefused;
    }
}

typedef int (CPParser::*AddPath)(const QBString&);

int addIncludeList(CPParser* parser, const QBString& list, AddPath add) {
    if (list.isEmpty()) return 0;
    QBArray<QBString> parts;
    if (list.split(';', parts) < 0) return qbmsg::IncludePathRefused;
    for (const QBString& part : parts)
        if ((parser->*add)(part) < 0) return qbmsg::IncludePathRefused;
    return 0;
}

QBString joinWithSeparators(const QBArray<QBString>& list) {
    QBString out("");
    for (const QBString& s : list) {
        out.append(s);
        out.append(';');
    }
    return out;
}

}  // namespace

int compareParsers(CPParser* const& a, CPParser* const& b) {
    if (!a) return 1;
    if (!b) return -1;
    int byExtension = extensionOf(a->fileName).compare(extensionOf(b->fileName), 0);
    if (byExtension != 0) return byExtension;
    return a->fileName.compare(b->fileName, 0);
}

// Linux file names are case-sensitive: equal means the same bytes.
int compareFileNames(QBString a, QBString b) {
    if (a.sameBody(b)) return 0;
    if (a.length() != b.length()) return 1;
    return a.compare(b, 1) == 0 ? 0 : 1;
}

QBRefactorTransaction::QBRefactorTransaction(int id)
    : id(id), parsers(compareParsers), modifiedFiles(QBString::hashString, compareFileNames),
      errorFiles(QBString::hashString, compareFileNames) {
    BPRefCountObject::assign(sourceCache, new (std::nothrow) BPSourceCache);
    BPRefCountObject::assign(parseCache, new (std::nothrow) TBPParseCache<CPParseNodeType>);
}

QBRefactorTransaction::~QBRefactorTransaction() {
    sendMessage(qbmsg::ReleasingParser);
    for (CPParser* p : parsers) delete p;
    if (sourceCache) sourceCache->release();
    if (parseCache) parseCache->release();
    if (refactoringData) refactoringData->release();
}

bool QBRefactorTransaction::isComplete() const {
    return !parsers.isNull() && sourceCache && parseCache && modifiedFiles.getBucketCount() > 0 &&
           errorFiles.getBucketCount() > 0;
}

int QBRefactorTransaction::setModifiedFile(const QBString& name, const QBString& text) {
    return modifiedFiles.set(name, text);
}

CPParser* QBRefactorTransaction::findParser(const QBString& fileName, int& index) const {
    for (unsigned i = 0; i < parsers.count(); ++i) {
        CPParser* p = parsers[i];
        if (p && compareFileNames(p->fileName, fileName) == 0) {
            index = int(i);
            return p;
        }
    }
    index = -1;
    return nullptr;
}

int QBRefactorTransaction::addFile(const QBString& fileName, const QBString& userIncludePath,
                                   const QBString& systemIncludePath,
                                   const QBString& defineOptions, const QBString& compilerConfig,
                                   int slot) {
    CPParser* parser = new (std::nothrow) CPParser;
    if (!parser) return qbmsg::OutOfMemory;
    parser->defineOptions = defineOptions;
    parser->fileName = fileName;
    if (slot == -1) {
        if (int rc = parsers.insertSorted(parser)) {
            delete parser;
            return rc;
        }
    } else {
        if (slot < 0 || unsigned(slot) >= parsers.count() || parsers[unsigned(slot)]) {
            delete parser;
            return qbmsg::BadArgument;
        }
        parsers[unsigned(slot)] = parser;
    }
    parser->setSourceCache(sourceCache);
    parser->messageCallback = qbRefactorMessage;
    parser->progressCallback = qbRefactorProgress;
    parser->locateFileCallback = qbRefactorLocateFile;
    if (int rc = addIncludeList(parser, userIncludePath, &CPParser::addUserIncludePath)) return rc;
    if (int rc = addIncludeList(parser, systemIncludePath, &CPParser::addSystemIncludePath))
        return rc;
    if (int rc = forEachDefineOption(defineOptions, parser)) return rc;
    if (compilerConfig.isNotEmpty() && parser->setConfigFile(compilerConfig) < 0)
        return qbmsg::ConfigHeaderRefused;
    parser->transactionId = id;
    return 0;
}

int QBRefactorTransaction::removeFile(const QBString& fileName) {
    modifiedFiles.remove(fileName);
    errorFiles.remove(fileName);
    int index;
    if (!findParser(fileName, index)) return qbmsg::FileNotFound;
    return releaseParser(index);
}

int QBRefactorTransaction::releaseParser(int index) {
    if (index < 0 || unsigned(index) >= parsers.count()) return 0;
    sendMessage(qbmsg::ReleasingParser);
    delete parsers[unsigned(index)];
    parsers[unsigned(index)] = nullptr;
    return 0;
}

int QBRefactorTransaction::reloadParser(int index) {
    if (index < 0 || unsigned(index) >= parsers.count()) return 0;
    CPParser* old = parsers[unsigned(index)];
    QBString user, system, defines, config, name;
    if (old) {
        user = joinWithSeparators(old->getUserIncludePaths());
        system = joinWithSeparators(old->getSystemIncludePaths());
        defines = old->defineOptions;
        config = old->getConfigFile();
        name = old->fileName;
    }
    releaseParser(index);
    if (name.isNotEmpty()) addFile(name, user, system, defines, config, index);
    return 0;
}

int QBRefactorTransaction::storeErrors(CPParser* parser) {
    parser->collectAllErrors();
    QBArray<QBString> empty;
    if (int rc = errorFiles.set(parser->fileName, empty)) return rc;
    QBArray<QBString>* list = errorFiles.find(parser->fileName);
    return parser->getErrorTexts(*list);
}
