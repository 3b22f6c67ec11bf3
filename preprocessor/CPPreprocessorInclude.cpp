// Running #include and the configuration header.
//
// A header is read into a source tree once per preprocessor and kept in its parse cache; every
// inclusion runs that tree anew with the macros of the moment, so one header can take different
// branches for different includers. What is once per transaction instead is the text (the shared
// source cache) and the include-once mark on the text's record: a #pragma once or a recognised
// guard marks the record at the first reading, and the file is then never run again until the
// transaction clears the marks before its next parse.
//
// The search: beside the including file (quoted form only; a file found beside a system header
// is one too), the user paths, the system paths, and last the host's locate callback. Either
// slash separates directories in a name; both become '/'.
#include "CPPreprocessorInclude.h"

#include <sys/stat.h>

#include "CPLexer.h"
#include "CPPreprocessor.h"
#include "CPPreprocessorConditionals.h"
#include "CPPreprocessorMacros.h"
#include "CPPreprocessorReader.h"
#include "CPWhitespaceFilter.h"
#include "QBMessageCodes.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace {

typedef TBPToken<CPParseNodeType> Token;
typedef TBPParseNode<CPParseNodeType> Node;

// ---- Names and paths ------------------------------------------------------------------------

QBString spellingOf(Node* node) {
    return node && node->isToken() ? static_cast<Token*>(node)->getSpellingConst() : QBString("");
}

// "name" or L"name" without the quotes.
QBString unquote(const QBString& text) {
    QBString name(text);
    if (name.first_char() == 'L') name.remove(0, 1);
    if (name.first_char() == '"') name.remove(0, 1);
    if (name.last_char() == '"') name.remove(name.length() - 1, 1);
    return name;
}

QBString joinedBetweenBrackets(CPPreprocessorFilter* arg) {
    QBString name("");
    for (unsigned i = 1; i < arg->getChildCount(); ++i) {
        Node* child = arg->getChild(i);
        if (child && child->getType() == CPT_GT) break;
        name.append(spellingOf(child));
    }
    return name;
}

void collectLeaves(Node* node, CPPreprocessorFilter* into, int& rc) {
    if (!node || rc != 0) return;
    if (node->isToken()) {
        rc = into->addChild(node);
        return;
    }
    for (unsigned i = 0; i < node->getChildCount(); ++i) collectLeaves(node->getChild(i), into, rc);
}

// The macro form: what the argument expands to, read again as an argument.
QBString expandedName(CPPreprocessorIncludeArg* arg, CPPreprocessor* pp) {
    CPPreprocessorPPTokens* tokens = new (std::nothrow) CPPreprocessorPPTokens;
    CPPreprocessorIncludeArg* copy = new (std::nothrow) CPPreprocessorIncludeArg;
    QBString name("");
    if (tokens && copy) {
        tokens->addRef();
        copy->addRef();
        tokens->setOrigin(arg);
        int rc = arg->preprocess(pp, tokens, true, nullptr, 0);
        if (rc >= 0) collectLeaves(tokens, copy, rc);
        if (rc >= 0) name = cpGetIncludeName(copy, nullptr);
        copy->release();
        tokens->release();
    } else {
        delete tokens;
        delete copy;
    }
    return name;
}

bool isRegularFile(const QBString& path) {
    struct stat info;
    return path.isNotEmpty() && stat(path.get(), &info) == 0 && S_ISREG(info.st_mode);
}

bool isAbsolute(const QBString& name) { return name.first_char() == '/'; }

// dir/name, with one separator between; an absolute name stands alone.
QBString joinPath(const QBString& dir, const QBString& name) {
    if (dir.isEmpty() || isAbsolute(name)) return name;
    QBString path(dir);
    if (path.last_char() != '/') path.append('/');
    path.append(name);
    return path;
}

QBString withFinalSeparator(const QBString& dir) {
    QBString out(dir);
    out.replaceAll('\\', '/');
    if (out.last_char() != '/') out.append('/');
    return out;
}

bool isSystemDirectory(CPPreprocessor* pp, const QBString& dir) {
    QBString wanted = withFinalSeparator(dir);
    for (const QBString& system : pp->getSystemIncludePaths())
        if (withFinalSeparator(system) == wanted) return true;
    return false;
}

// The first of dirs that holds name; its index, or -1.
int searchList(const QBArray<QBString>& dirs, const QBString& name, QBString& path) {
    for (unsigned i = 0; i < dirs.count(); ++i) {
        QBString candidate = joinPath(withFinalSeparator(dirs[i]), name);
        if (isRegularFile(candidate)) {
            path = candidate;
            return int(i);
        }
    }
    return -1;
}

BPSourceHandle* findEntry(CPPreprocessor* pp, const QBString& path) {
    BPSourceCache* cache = pp->getSourceCache();
    return cache ? cache->find(path) : nullptr;
}

// ---- Finding the file -----------------------------------------------------------------------

struct IncludeSearch {
    CPPreprocessor* pp;
    CPPreprocessorInclude* directive;
    QBString name;
    QBString path;
    bool isSystem = false;

    bool besideIncluder();
    void inUserPaths();
    void inSystemPaths();
    int askHost();
};

bool IncludeSearch::besideIncluder() {
    Token* pound = directive->getTokenChild(0);
    if (!pound) return false;
    QBString includer = pound->getFileName();
    int slash = includer.rcpos('/');
    QBString dir = slash < 0 ? QBString("") : includer.sub(0, unsigned(slash) + 1);
    QBString candidate = joinPath(dir, name);
    if (!isRegularFile(candidate)) return false;
    path = candidate;
    BPSourceHandle* entry = findEntry(pp, includer);
    isSystem = entry && !entry->isNull() && (*entry)->isSystem;
    return true;
}

void IncludeSearch::inUserPaths() {
    int index = searchList(pp->getUserIncludePaths(), name, path);
    if (index >= 0) isSystem = isSystemDirectory(pp, pp->getUserIncludePaths()[unsigned(index)]);
}

void IncludeSearch::inSystemPaths() {
    if (searchList(pp->getSystemIncludePaths(), name, path) >= 0) isSystem = true;
}

int IncludeSearch::askHost() {
    CPPreprocessorHost* host = pp->getHost();
    if (!host) return 0;
    char buffer[CPPP_LOCATE_BUFFER] = {0};
    int answer = host->locateFile(name.get(), buffer, CPPP_LOCATE_BUFFER);
    if (pp->isCancelled()) return qbmsg::Cancelled;
    buffer[CPPP_LOCATE_BUFFER - 1] = 0;
    if (answer == 0 && buffer[0]) path = buffer;
    return 0;
}

// ---- Reading the tree -----------------------------------------------------------------------

// The cached source tree of path, or a fresh one read in the given lexer mode and cached.
// guard: whether a recognised guard marks the file include-once.
int loadTree(CPPreprocessor* pp, const QBString& path, BPSourceHandle& entry, int mode,
             CPPreprocessorFilter* origin, bool guard, CPPreprocessorUnit*& tree) {
    TBPParseCache<CPParseNodeType>* cache = pp->getParseCache();
    if (!cache) return qbmsg::BadArgument;
    TBPParseTree<CPParseNodeType>* cached = cache->find(path);
    tree = cached && cached->getType() == CPN_PreprocessorUnit && !cached->isModified()
               ? static_cast<CPPreprocessorUnit*>(cached)
               : nullptr;
    if (tree) return 0;
    CPLexer* lexer = pp->makeLexer(entry, mode);
    if (!lexer) return qbmsg::OutOfMemory;
    lexer->addRef();
    CPWhitespaceFilter* filter = new (std::nothrow) CPWhitespaceFilter(lexer);
    if (filter) {
        filter->addRef();
        tree = cpParseUnit(*filter, 0);
        filter->release();
    }
    lexer->release();
    if (!tree) return qbmsg::OutOfMemory;
    tree->setOrigin(origin);
    tree->source = entry;
    QBString guardName;
    Token* guardToken = nullptr;
    if (guard && cpHasIncludeGuard(tree, guardName, guardToken)) entry->includeOnce = true;
    if (cache->set(path, tree) != 0) {
        delete tree;
        tree = nullptr;
        return qbmsg::OutOfMemory;
    }
    return 0;
}

// Appends a unit standing for the file to target and runs the tree into it.
int runTree(CPPreprocessor* pp, CPPreprocessorUnit* tree, CPPreprocessorFilter* target,
            bool flat, CPPreprocessorMacro* call, int depth) {
    CPPreprocessorUnit* unit = new (std::nothrow) CPPreprocessorUnit;
    if (!unit) return qbmsg::OutOfMemory;
    unit->setOrigin(tree);
    if (target->addChild(unit) != 0) {
        delete unit;
        return qbmsg::OutOfMemory;
    }
    return tree->preprocess(pp, unit, flat, call, depth + 1);
}

// ---- The guard check ------------------------------------------------------------------------

bool isNotOperator(Node* node) {
    return node && (node->getType() == CPT_NOT || node->getType() == CPT_kw_not);
}

// An IDENTIFIER, or a macro call whose first child is one.
QBString guardNameOf(Node* node) {
    if (node && node->isTree() && node->getType() == CPN_PreprocessorMacro) node = node->getChild(0);
    return node && node->getType() == CPT_IDENTIFIER ? spellingOf(node) : QBString("");
}

// ! NAME, ! defined NAME, ! defined ( NAME ).
QBString nameOfNegatedCondition(CPPreprocessorFilter* expression) {
    if (!expression || expression->getChildCount() < 2 || !isNotOperator(expression->getChild(0)))
        return QBString("");
    unsigned n = expression->getChildCount();
    Node* second = expression->getChild(1);
    if (n == 2) return guardNameOf(second);
    if (!second || second->getType() != CPT_kw_defined) return QBString("");
    if (n == 3) return guardNameOf(expression->getChild(2));
    Node* open = expression->getChild(2);
    Node* close = expression->getChild(4);
    if (n == 5 && open && open->getType() == CPT_LEFT_PAREN && close &&
        close->getType() == CPT_RIGHT_PAREN)
        return guardNameOf(expression->getChild(3));
    return QBString("");
}

QBString openingGuardName(CPPreprocessorFilter* opener) {
    if (!opener) return QBString("");
    if (opener->getType() == CPN_PreprocessorIfndef) return spellingOf(opener->getChild(2));
    if (opener->getType() == CPN_PreprocessorIf)
        return nameOfNegatedCondition(opener->getFilterChild(2));
    return QBString("");
}

// Walks the body: the last #define or #undef of the name decides.
bool bodyDefines(CPPreprocessorFilter* body, const QBString& name) {
    bool found = false;
    for (unsigned i = 0; body && i < body->getChildCount(); ++i) {
        CPPreprocessorFilter* child = body->getFilterChild(i);
        if (!child) continue;
        if (child->getType() == CPN_PreprocessorDefine)
            found = found || static_cast<CPPreprocessorDefine*>(child)->getName() == name;
        else if (child->getType() == CPN_PreprocessorUndef && spellingOf(child->getChild(2)) == name)
            found = false;
    }
    return found;
}

bool passesOver(int kind) {
    switch (kind) {
    case CPT_EOF: case CPT_NEWLINE: case CPN_PreprocessorDirective: case CPN_PreprocessorLine:
    case CPN_PreprocessorError: case CPN_PreprocessorEmpty: case CPN_PreprocessorUnknown:
    case CPN_PreprocessorConfigFile:
        return true;
    default: return false;
    }
}

// Reads (or finds cached) and runs the file that directive names, found at path.
int includeFoundFile(CPPreprocessorInclude* directive, CPPreprocessor* pp, const QBString& path,
                     bool isSystem, CPPreprocessorFilter* target, CPPreprocessorMacro* call,
                     int depth) {
    CPPreprocessorIncludeArg* arg = directive->getArgument();
    BPSourceCache* cache = pp->getSourceCache();
    int status = cache ? 0 : qbmsg::OutOfMemory;
    if (cache) cache->getSource(path, BPSourceText::INCLUDED_FILE, status);
    BPSourceHandle* entry = status < 0 ? nullptr : findEntry(pp, path);
    if (!entry || entry->isNull()) {
        directive->logErrorAtNode(arg, status < 0 ? status : qbmsg::FileNotFound, path);
        return status < 0 ? status : qbmsg::FileNotFound;
    }
    if (entry->makePrivate() != 0) return qbmsg::OutOfMemory;
    (*entry)->isSystem = isSystem;
    if ((*entry)->includeOnce) return 0;
    CPPreprocessorUnit* tree = nullptr;
    int rc = loadTree(pp, path, *entry, isSystem ? 3 : 0, directive, true, tree);
    if (rc == qbmsg::BadArgument) directive->logErrorAtNode(directive, rc);
    if (rc < 0) return rc;
    if (CPPreprocessorHost* host = pp->getHost())
        if (host->reportMessage(path.get(), 1) < 0 || pp->isCancelled()) return qbmsg::Cancelled;
    if (depth >= CPPP_MAX_INCLUDE_DEPTH) {
        directive->logErrorAtNode(arg, qbmsg::IncludesTooDeep);
        return qbmsg::IncludesTooDeep;
    }
    // A system header runs flat whatever the includer asked: its macro calls leave no wrappers.
    return runTree(pp, tree, target, isSystem, call, depth);
}

}  // namespace

// ---- Exported pieces ------------------------------------------------------------------------

QBString cpGetIncludeName(CPPreprocessorIncludeArg* arg, CPPreprocessor* pp) {
    Node* first = arg ? arg->getChild(0) : nullptr;
    if (!first) return QBString("");
    if (first->getType() == CPT_STRING || first->getType() == CPT_WIDE_STRING)
        return unquote(spellingOf(first));
    if (first->getType() == CPT_LT) return joinedBetweenBrackets(arg);
    return pp ? expandedName(arg, pp) : QBString("");
}

bool cpHasIncludeGuard(CPPreprocessorUnit* root, QBString& guardName, Token*& guardToken) {
    bool found = false;
    for (unsigned i = 0; root && i < root->getChildCount(); ++i) {
        Node* child = root->getChild(i);
        if (!child || passesOver(child->getType())) continue;
        CPPreprocessorFilter* node = CPPreprocessorFilter::from(child);
        if (!node) return false;
        switch (node->getType()) {
        case CPN_PreprocessorPPTokens:
            if (node->getChildCount() > 0) return false;
            continue;
        case CPN_PreprocessorPragma:
            if (static_cast<CPPreprocessorPragma*>(node)->isPragmaOnce()) {
                guardToken = node->getTokenChild(2);
                return true;
            }
            continue;
        case CPN_PreprocessorIfGroup: break;
        default: return false;
        }
        if (node->getChildCount() != 4) {
            if (!found) return false;
            continue;
        }
        QBString name = openingGuardName(node->getFilterChild(0));
        if (name.isNotEmpty()) guardName = name;
        if (guardName.isNotEmpty()) found = bodyDefines(node->getFilterChild(2), guardName);
        if (!found) return false;
    }
    return found;
}

// ---- Running the directives -----------------------------------------------------------------

int CPPreprocessorInclude::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool,
                                      CPPreprocessorMacro* call, int depth) {
    if (isCancelled(pp)) return qbmsg::Cancelled;
    if (!pp) return 0;
    CPPreprocessorIncludeArg* arg = getArgument();
    IncludeSearch search{pp, this, cpGetIncludeName(arg, pp), QBString("")};
    if (search.name.isEmpty()) {
        logErrorAtNode(getChild(0), qbmsg::MissingParameterOrName);
        return qbmsg::MissingParameterOrName;
    }
    search.name.replaceAll('\\', '/');
    bool angled = arg->getChild(0) && arg->getChild(0)->getType() == CPT_LT;
    if (angled || !search.besideIncluder()) search.inUserPaths();
    if (search.path.isEmpty()) search.inSystemPaths();
    if (search.path.isEmpty())
        if (int rc = search.askHost()) return rc;
    if (search.path.isEmpty()) {
        logErrorAtNode(arg, qbmsg::IncludeNotFound, search.name, search.name);
        return qbmsg::IncludeNotFound;
    }
    return includeFoundFile(this, pp, search.path, search.isSystem, target, call, depth);
}

// The compiler's header: always a system file, run flat ahead of the file's first line, and
// never guard-checked.
int CPPreprocessorConfigFile::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool,
                                         CPPreprocessorMacro* call, int depth) {
    if (isCancelled(pp)) return qbmsg::Cancelled;
    if (path.isEmpty() || !pp) return 0;
    BPSourceCache* cache = pp->getSourceCache();
    int status = cache ? 0 : qbmsg::OutOfMemory;
    if (cache) cache->getSource(path, BPSourceText::INCLUDED_FILE, status);
    BPSourceHandle* entry = status < 0 ? nullptr : findEntry(pp, path);
    if (!entry || entry->isNull()) {
        CPPreprocessorUnit* unit = new (std::nothrow) CPPreprocessorUnit;
        if (!unit) return qbmsg::OutOfMemory;
        unit->logError(nullptr, qbmsg::FileNotFound, path);
        unit->setOrigin(this);
        if (target->addChild(unit) != 0) delete unit;
        return status < 0 ? status : qbmsg::FileNotFound;
    }
    CPPreprocessorUnit* tree = nullptr;
    int rc = loadTree(pp, path, *entry, 3, this, false, tree);
    if (rc == qbmsg::BadArgument) target->logErrorAtNode(this, qbmsg::OutOfMemory);
    if (rc < 0) return rc;
    return runTree(pp, tree, target, true, call, depth);
}
