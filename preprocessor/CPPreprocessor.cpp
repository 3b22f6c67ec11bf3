// The driver of one file's preprocessing: read the source tree, run it into the output tree,
// serve the output tree's leaves.
//
// Running a node (preprocess) appends what it produces to a target node. Unless `flat` is asked
// for, a node wraps its output in a fresh token run whose origin is the node, so the output tree
// mirrors the source; system headers run flat, to spare a wrapper per macro call.
#include "CPPreprocessor.h"

#include <ctime>

#include "BPHostMessages.h"
#include "CPLexer.h"
#include "CPPreprocessedToken.h"
#include "CPPreprocessorReader.h"
#include "CPWhitespaceFilter.h"
#include "QBMessageCodes.h"

using quernbase::QBArray;
using quernbase::QBString;

enum { PROGRESS_STEP = 100 };

// Walks the output tree's leaves in order, telling for each the node that holds it and where.
class CPOutputWalker : public quernbase::QBMemory {
public:
    typedef TBPToken<CPParseNodeType> Token;

    explicit CPOutputWalker(CPPreprocessorFilter* root) { stack.add(Frame{root, -1}); }

    Token* next(CPPreprocessorFilter*& owner, unsigned& index) {
        while (stack.count() > 0) {
            Frame& top = stack[stack.count() - 1];
            if (unsigned(++top.index) >= top.node->getChildCount()) {
                stack.removeAt(stack.count() - 1);
                continue;
            }
            TBPParseNode<CPParseNodeType>* child = top.node->getChild(unsigned(top.index));
            if (!child) continue;
            if (child->isToken()) {
                owner = top.node;
                index = unsigned(top.index);
                return static_cast<Token*>(child);
            }
            if (CPPreprocessorFilter* node = CPPreprocessorFilter::from(child))
                if (stack.add(Frame{node, -1}) != 0) return nullptr;
        }
        return nullptr;
    }

private:
    struct Frame {
        CPPreprocessorFilter* node;
        int index;
    };
    quernbase::QBArray<Frame> stack;
};

namespace {

unsigned countLeaves(TBPParseNode<CPParseNodeType>* node) {
    if (!node) return 0;
    if (node->isToken()) return 1;
    unsigned n = 0;
    for (unsigned i = 0; i < node->getChildCount(); ++i) n += countLeaves(node->getChild(i));
    return n;
}

// Blanks, and a leading -I or /I, come off an include path.
int cleanPath(const QBString& path, QBArray<QBString>& list) {
    QBString entry(path);
    if (entry.strip(" \t") < 0) return qbmsg::OutOfMemory;
    if (entry.beginsWith("-I") || entry.beginsWith("/I"))
        if (entry.remove(0, 2) < 0) return qbmsg::OutOfMemory;
    return list.add(entry);
}

}  // namespace

CPPreprocessor::CPPreprocessor(TBPTokenSource<CPParseNodeType>* source, CPPreprocessorHost* owner)
    : TBPTokenFilter<CPParseNodeType>(source), host(owner) {
    formatDateAndTime();
}

CPPreprocessor::~CPPreprocessor() {
    delete walker;
    BPRefCountObject::assign(sourceTree, static_cast<CPPreprocessorUnit*>(nullptr));
    BPRefCountObject::assign(outputTree, static_cast<CPPreprocessorUnit*>(nullptr));
    BPRefCountObject::assign(sourceCache, static_cast<BPSourceCache*>(nullptr));
    BPRefCountObject::assign(parseCache, static_cast<TBPParseCache<CPParseNodeType>*>(nullptr));
}

void CPPreprocessor::formatDateAndTime() {
    std::time_t now = std::time(nullptr);
    struct tm local;
    if (!localtime_r(&now, &local)) return;
    char buffer[32];
    if (std::strftime(buffer, sizeof buffer, "%b %d %Y", &local)) {
        dateText = buffer;
        if (dateText.charAt(3) == '0') dateText[3] = ' ';
    }
    if (std::strftime(buffer, sizeof buffer, "%H:%M:%S", &local)) timeText = buffer;
}

BPSourceCache* CPPreprocessor::getSourceCache() {
    if (!sourceCache) {
        BPSourceCache* cache = new (std::nothrow) BPSourceCache;
        if (cache) setSourceCache(cache);
    }
    return sourceCache;
}

TBPParseCache<CPParseNodeType>* CPPreprocessor::getParseCache() {
    if (!parseCache) {
        TBPParseCache<CPParseNodeType>* cache = new (std::nothrow) TBPParseCache<CPParseNodeType>;
        if (cache) BPRefCountObject::assign(parseCache, cache);
    }
    return parseCache;
}

int CPPreprocessor::addUserIncludePath(const QBString& path) {
    return cleanPath(path, userIncludePaths);
}

int CPPreprocessor::addSystemIncludePath(const QBString& path) {
    return cleanPath(path, systemIncludePaths);
}

int CPPreprocessor::setConfigFile(const char* path) {
    configFile = path ? path : "";
    if (configFile.isEmpty()) return 0;
    int status = 0;
    BPSourceCache* cache = getSourceCache();
    if (cache) cache->getSource(configFile, BPSourceText::INCLUDED_FILE, status);
    return status;
}

// ---- Reading and running --------------------------------------------------------------------

int CPPreprocessor::readSourceTree() {
    if (sourceTree) return 0;
    if (!upstream) return qbmsg::NothingToWorkOn;
    CPWhitespaceFilter* filter = new (std::nothrow) CPWhitespaceFilter(upstream);
    if (!filter) return qbmsg::OutOfMemory;
    filter->addRef();
    CPPreprocessorUnit* unit = cpParseUnit(*filter, 0);
    filter->release();
    if (!unit) return qbmsg::OutOfMemory;
    BPRefCountObject::assign(sourceTree, unit);
    if (TBPToken<CPParseNodeType>* first = unit->getFirstToken())
        unit->source = first->getPosition()->source;
    if (configFile.isNotEmpty()) {
        CPPreprocessorConfigFile* config = new (std::nothrow) CPPreprocessorConfigFile;
        if (!config) return qbmsg::OutOfMemory;
        config->path = configFile;
        if (unit->insertChild(0, config) != 0) {
            delete config;
            return qbmsg::OutOfMemory;
        }
    }
    return 0;
}

int CPPreprocessor::reportMessageCode(int code) {
    return host ? host->reportMessage(BPHostMessages::getMessage(code), 0) : 0;
}

int CPPreprocessor::run() {
    if (outputTree) return 0;
    if (int rc = readSourceTree()) return rc;
    CPPreprocessorUnit* output = new (std::nothrow) CPPreprocessorUnit;
    if (!output) return qbmsg::OutOfMemory;
    BPRefCountObject::assign(outputTree, output);
    outputTree->setOrigin(sourceTree);
    int rc = sourceTree->preprocess(this, outputTree, false, nullptr, 0);
    if (rc == qbmsg::Cancelled || rc == qbmsg::OutOfMemory) return rc;
    if (reportMessageCode(qbmsg::PreprocessorOutputBuilt) < 0) return qbmsg::Cancelled;
    delete walker;
    walker = new (std::nothrow) CPOutputWalker(outputTree);
    if (!walker) return qbmsg::OutOfMemory;
    tokenCount = countLeaves(outputTree);
    if (reportMessageCode(qbmsg::Parsing) < 0) return qbmsg::Cancelled;
    return 0;
}

TBPToken<CPParseNodeType>* CPPreprocessor::readToken() {
    if (!upstream) return nullptr;
    if (!outputTree || !walker) {
        if (run() != 0) return nullptr;
    } else if (++served % PROGRESS_STEP == 0 && host &&
               host->reportProgress(int64_t(served), tokenCount, 1) < 0) {
        return nullptr;
    }
    return nextServedToken();
}

// The next leaf, wrapped; a wrapper that came back to the pool is used again.
TBPToken<CPParseNodeType>* CPPreprocessor::nextServedToken() {
    CPPreprocessorFilter* owner = nullptr;
    unsigned index = 0;
    Token* leaf = walker ? walker->next(owner, index) : nullptr;
    CPPreprocessorToken* source = CPPreprocessorToken::from(leaf);
    if (!source) return leaf;
    CPPreprocessedToken* token = nullptr;
    while (!token) {
        Token* pooled = takePooledToken();
        if (!pooled) break;
        token = dynamic_cast<CPPreprocessedToken*>(pooled);
        if (!token) delete pooled;
    }
    if (token) {
        token->reinitialize(source->getType(), *source->getPosition(), source->getLength(),
                            source->getFilePosition());
        token->setSourceToken(source, index);
        token->setOwnerNode(owner);
        return token;
    }
    return new (std::nothrow) CPPreprocessedToken(source, owner, index);
}

bool CPPreprocessor::hasErrors() const {
    if ((sourceTree && sourceTree->hasError()) || (outputTree && outputTree->hasError()))
        return true;
    QBArray<TBPParseTree<CPParseNodeType>*> headers;
    if (!parseCache || parseCache->getTrees(headers) < 0) return false;
    for (TBPParseTree<CPParseNodeType>* header : headers)
        if (header && header->hasError()) return true;
    return false;
}

int CPPreprocessor::collectErrors(TBPErrorLog<CPParseNodeType>& log) {
    if (sourceTree && sourceTree->hasError())
        if (int rc = sourceTree->collectErrors(log); rc < 0) return rc;
    if (parseCache) {
        QBArray<TBPParseTree<CPParseNodeType>*> headers;
        if (parseCache->getTrees(headers) < 0) return qbmsg::OutOfMemory;
        for (TBPParseTree<CPParseNodeType>* header : headers)
            if (header && header->hasError())
                if (int rc = header->collectErrors(log); rc < 0) return rc;
    }
    if (outputTree && outputTree->hasError())
        if (int rc = outputTree->collectErrors(log); rc < 0) return rc;
    return 0;
}

CPLexer* CPPreprocessor::makeLexer(const BPSourceHandle& source, int mode) const {
    CPLexer* lexer = new (std::nothrow) CPLexer(source, mode);
    if (lexer) lexer->setReadsC(readsC);
    return lexer;
}

// ---- Command-line definitions ---------------------------------------------------------------

int CPPreprocessor::addDefineOption(const QBString& option) {
    QBString text(option);
    char first = text.first_char();
    if (text.length() >= 2 && (first == '"' || first == '\'') && text.last_char() == first)
        text = text.sub(1, text.length() - 2);
    first = text.first_char();
    if (first == '-' || first == '/') {
        char kind = text.charAt(1);
        if (kind != 'D' && kind != 'U') return qbmsg::InvalidArgument;
        text = text.sub(2);
        if (kind == 'U') return undefineNames(text);
    }
    // Commas split definitions, except inside double quotes.
    bool quoted = false;
    unsigned start = 0;
    for (unsigned i = 0; i <= text.length(); ++i) {
        char c = text.charAt(i);
        if (c == '"') quoted = !quoted;
        if (i < text.length() && (c != ',' || quoted)) continue;
        QBString piece = text.sub(start, i - start);
        start = i + 1;
        if (piece.isEmpty()) continue;
        if (int rc = addOneDefine(piece)) return rc;
    }
    return 0;
}

int CPPreprocessor::undefineNames(const QBString& names) {
    QBArray<QBString> list;
    if (names.split(',', list, false) < 0) return qbmsg::OutOfMemory;
    for (QBString& name : list) {
        name.strip(" \t");
        macroTable.removeName(name);
    }
    return 0;
}

// name[=value] becomes `#define name value`, read like a file and entered ahead of all others.
int CPPreprocessor::addOneDefine(const QBString& piece) {
    int eq = piece.cpos('=');
    QBString name = eq < 0 ? piece : piece.sub(0, unsigned(eq));
    QBString value = eq < 0 ? QBString("") : piece.sub(unsigned(eq) + 1);
    name.strip(" \t");
    value.strip(" \t");
    if (value.isEmpty()) value = "1";
    QBString text("#define ");
    text.append(name);
    text.append(' ');
    text.append(value);
    QBString sourceName("-D");
    sourceName.append(piece);
    BPSourceHandle handle = BPSourceHandle::makeTextSource(text, 1, 0);
    if (handle.isNull()) return qbmsg::OutOfMemory;
    handle->fileName = sourceName;
    if (BPSourceCache* cache = getSourceCache()) cache->set(sourceName, handle);
    CPLexer* lexer = makeLexer(handle, 0);
    if (!lexer) return qbmsg::OutOfMemory;
    lexer->addRef();
    CPWhitespaceFilter* filter = new (std::nothrow) CPWhitespaceFilter(lexer);
    CPPreprocessorDefine* define = nullptr;
    if (filter) {
        filter->addRef();
        if (filter->currentType() == CPT_POUND) define = cpParseDefine(*filter, 0);
        filter->release();
    }
    lexer->release();
    if (!define) return -1;
    define->addRef();
    int rc = -1;
    if (!define->hasError() && define->getNameToken()) rc = macroTable.add(define);
    define->release();
    return rc;
}
