// Macro expansion over nodes.
//
// A #define's body was read into nodes once. Running a call finds the define by name and argument
// count (several definitions of a name live side by side; the oldest live one that fits wins),
// expands every argument fully into a private copy of the call (`args`), and runs the body with
// `args` as the call: a parameter copies its expanded argument, `#` quotes it and `##` pastes
// texts and lexes the result again. A name in the body is itself a macro node, so running the
// body is the rescan. The define's `expanding` flag is the only recursion guard: a macro met
// inside its own expansion stays a name.
//
// Output nodes point back at the source nodes that made them (`origin`). Nothing may point into
// `args`, which dies after the expansion: detachArguments redirects such links.
#include "CPPreprocessorMacros.h"

#include <sys/stat.h>

#include <ctime>

#include "CPLexer.h"
#include "CPPreprocessor.h"
#include "CPPreprocessorReader.h"
#include "CPWhitespaceFilter.h"
#include "QBCharType.h"

using quernbase::QBString;

namespace {

typedef TBPToken<CPParseNodeType> Token;
typedef TBPParseNode<CPParseNodeType> Node;

enum { ALIAS_LIMIT = 100 };

bool isSymbolChar(char c) { return quernbase::QBCharType::getInstance().isCSym((unsigned char)c); }

// A token the preprocessor makes itself, standing at the place of at.
CPPreprocessorToken* makeToken(int kind, const QBString& text, Token* at) {
    CPPreprocessorToken* token = new (std::nothrow) CPPreprocessorToken(
        CPParseNodeType(kind), *at->getPosition(), 0, at->getFilePosition());
    if (!token) return nullptr;
    if (token->setSpelling(text) != 0) {
        delete token;
        return nullptr;
    }
    if (token->getAttributes()) token->getAttributes()->modified = false;
    return token;
}

int addMadeToken(CPPreprocessorFilter* target, CPPreprocessorToken* token) {
    if (!token) return qbmsg::OutOfMemory;
    if (target->addChild(token) != 0) {
        delete token;
        return qbmsg::OutOfMemory;
    }
    return 0;
}

// A counted scratch run, released by the caller.
CPPreprocessorPPTokens* scratchRun(CPPreprocessorFilter* origin) {
    CPPreprocessorPPTokens* run = new (std::nothrow) CPPreprocessorPPTokens;
    if (!run) return nullptr;
    run->addRef();
    run->setOrigin(origin);
    return run;
}

bool liesIn(CPPreprocessorFilter* node, CPPreprocessorFilter* scope) {
    return node && (node == scope || scope->isAncestor(node));
}

void detachNode(CPPreprocessorFilter* node, CPPreprocessorFilter* scope) {
    CPPreprocessorFilter* old = node->getOrigin();
    CPPreprocessorFilter* up = node->getFilterParent();
    node->setOrigin(nullptr);
    if (up && !liesIn(up, scope)) node->setOrigin(up);
    if (old && !liesIn(old, scope)) node->setOrigin(old);
    for (unsigned i = 0; i < node->getChildCount(); ++i)
        if (CPPreprocessorFilter* child = node->getFilterChild(i)) detachNode(child, scope);
}

// Redirects every origin under root's children from index from that points into scope.
void detachArguments(CPPreprocessorFilter* root, CPPreprocessorFilter* scope, unsigned from) {
    for (unsigned i = from; i < root->getChildCount(); ++i)
        if (CPPreprocessorFilter* child = root->getFilterChild(i)) detachNode(child, scope);
}

// The text of an argument as `#` quotes it: leaves in order, one blank where any whitespace was.
int appendArgumentText(Node* node, QBString& text) {
    if (!node) return 0;
    if (node->isToken()) {
        Token* leaf = static_cast<Token*>(node);
        if (leaf->getType() == CPT_EOF) return 1;
        if (text.isNotEmpty() && leaf->getWhitespaceCount() > 0) text.append(' ');
        return text.append(leaf->getSpellingConst()) < 0 ? qbmsg::OutOfMemory : 0;
    }
    for (unsigned i = 0; i < node->getChildCount(); ++i)
        if (int rc = appendArgumentText(node->getChild(i), text)) return rc;
    return 0;
}

void collectLeaves(Node* node, quernbase::QBArray<Token*>& leaves) {
    if (!node) return;
    if (node->isToken()) {
        leaves.add(static_cast<Token*>(node));
        return;
    }
    for (unsigned i = 0; i < node->getChildCount(); ++i) collectLeaves(node->getChild(i), leaves);
}

}  // namespace

// ---- The define's shape ---------------------------------------------------------------------

QBString CPPreprocessorDefine::getName() const {
    Token* name = getNameToken();
    return name ? name->getSpellingConst() : QBString("");
}

bool CPPreprocessorDefine::isFunctionLike() const {
    Node* paren = getChild(3);
    return paren && paren->getType() == CPT_LEFT_PAREN;
}

bool CPPreprocessorDefine::isVariadic() const {
    unsigned n = getChildCount();
    Node* child = n >= 4 ? getChild(n - 3) : nullptr;
    return child && child->getType() == CPT_ELLIPSE;
}

QBString CPPreprocessorDefine::getFormal(unsigned i) const {
    Token* formal = getTokenChild(2 * i + 4);
    if (!formal) return QBString("");
    if (formal->getType() == CPT_ELLIPSE) return QBString("__VA_ARGS__");
    return formal->getSpellingConst();
}

int CPPreprocessorDefine::formalIndex(const QBString& name) const {
    for (unsigned i = 0; i < formalCount(); ++i)
        if (getFormal(i) == name) return int(i);
    return qbmsg::NotInList;
}

bool CPPreprocessorDefine::isLastFormal(const QBString& name) const {
    return isVariadic() && formalIndex(name) == int(formalCount()) - 1;
}

CPPreprocessorDefineBody* CPPreprocessorDefine::getBody() const {
    unsigned n = getChildCount();
    CPPreprocessorFilter* last = n ? getFilterChild(n - 1) : nullptr;
    return last && last->getType() == CPN_PreprocessorDefineBody
               ? static_cast<CPPreprocessorDefineBody*>(last)
               : nullptr;
}

// ---- #define and #undef ---------------------------------------------------------------------

// Enters the macro. An earlier different definition stays and stays first; both are warned of.
int CPPreprocessorDefine::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool,
                                     CPPreprocessorMacro*, int) {
    if (isCancelled(pp)) return qbmsg::Cancelled;
    Token* nameToken = getNameToken();
    if (!pp || !nameToken || nameToken->getType() != CPT_IDENTIFIER || hasError()) return 0;
    QBString name = nameToken->getSpellingConst();
    if (const CPMacroTable::EntryList* entries = pp->getMacroTable().find(name)) {
        for (CPMacroTable::Symbol* entry : *entries) {
            CPPreprocessorDefine* other = CPMacroTable::definitionOf(entry);
            if (other == this) {
                // Run again, in a file included once more.
                undefined = false;
                return 0;
            }
            if (!other || other->undefined || other->equals(this) || name == "__hook") continue;
            CPPreprocessorFilter* note = wrapTarget(target, false, this, 0);
            if (!note) return qbmsg::OutOfMemory;
            note->logWarningAtNode(nameToken, qbmsg::MacroRedefined, name);
            note->logWarningAtNode(other->getNameToken(), qbmsg::EarlierDeclaration, name);
            break;
        }
    }
    return pp->getMacroTable().add(this);
}

int CPPreprocessorUndef::preprocess(CPPreprocessor* pp, CPPreprocessorFilter*, bool,
                                    CPPreprocessorMacro*, int) {
    if (isCancelled(pp)) return qbmsg::Cancelled;
    Token* name = getTokenChild(2);
    if (!pp || !name || name->getType() != CPT_IDENTIFIER) return 0;
    const CPMacroTable::EntryList* entries = pp->getMacroTable().find(name->getSpellingConst());
    for (unsigned i = entries ? entries->count() : 0; i-- > 0;) {
        CPMacroTable::Symbol* entry = (*entries)[i];
        CPPreprocessorDefine* define = CPMacroTable::definitionOf(entry);
        if (!define || define->undefined) continue;
        define->undefined = true;
        if (int rc = CPMacroTable::addReference(entry, name)) return rc;
    }
    return 0;
}

// ---- Lookup ---------------------------------------------------------------------------------

CPPreprocessorDefine* cpFindDefine(CPPreprocessorMacro* call, const QBString& name,
                                   CPPreprocessor* pp) {
    if (!pp || !call || name.isEmpty()) return nullptr;
    const CPMacroTable::EntryList* entries = pp->getMacroTable().find(name);
    if (!entries) return nullptr;
    bool parens = call->hasParentheses();
    unsigned actuals = call->actualCount();
    for (CPMacroTable::Symbol* entry : *entries) {
        CPPreprocessorDefine* define = CPMacroTable::definitionOf(entry);
        if (!define || define->undefined) continue;
        bool functionLike = define->isFunctionLike();
        unsigned formals = define->formalCount();
        if (functionLike && !parens) continue;
        if (formals == actuals) return define;
        if (define->isVariadic() && formals - 1 <= actuals) return define;
        if (parens && actuals == 1 && formals == 0) return define;
        if (actuals >= 1 && !functionLike) return define;
    }
    return nullptr;
}

// ---- Calls ----------------------------------------------------------------------------------

CPPreprocessorMacroArgument* CPPreprocessorMacro::getActual(unsigned i) const {
    CPPreprocessorFilter* child = getFilterChild(2 * i + 2);
    return child && child->getType() == CPN_PreprocessorMacroArg
               ? static_cast<CPPreprocessorMacroArgument*>(child)
               : nullptr;
}

QBString CPPreprocessorMacro::getMacroName(CPPreprocessor* pp,
                                           CPPreprocessorMacro* enclosingCall) {
    Node* first = getChild(0);
    if (!first) return QBString("");
    if (first->isToken()) return static_cast<Token*>(first)->getSpellingConst();
    CPPreprocessorFilter* node = from(first);
    int kind = first->getType();
    bool expandable = (kind == CPN_PreprocessorDefineArg && enclosingCall) ||
                      kind == CPN_PreprocessorDefineConcat;
    if (!node || !expandable) return QBString("");
    CPPreprocessorPPTokens* run = scratchRun(this);
    if (!run) return QBString("");
    QBString name("");
    if (node->preprocess(pp, run, true, enclosingCall, 0) >= 0) {
        quernbase::QBArray<Token*> leaves;
        collectLeaves(run, leaves);
        if (leaves.count() == 1 && cpIsIdentifierLike(leaves[0]->getType()))
            name = leaves[0]->getSpellingConst();
    }
    run->release();
    return name;
}

// After `#define A B` and `#define B(x) x`, A(1) is B(1).
CPPreprocessorDefine* CPPreprocessorMacro::chaseAlias(CPPreprocessor* pp,
                                                      CPPreprocessorDefine* define,
                                                      CPPreprocessorMacro* enclosingCall) {
    for (int step = 0; step < ALIAS_LIMIT && define && !define->isFunctionLike() &&
                       !define->expanding;
         ++step) {
        CPPreprocessorDefineBody* body = define->getBody();
        CPPreprocessorFilter* only = body && body->getChildCount() == 1 ? body->getFilterChild(0)
                                                                         : nullptr;
        if (!only || only->getType() != CPN_PreprocessorMacro || only->getChildCount() != 1) break;
        QBString name = static_cast<CPPreprocessorMacro*>(only)->getMacroName(pp, enclosingCall);
        CPPreprocessorDefine* next = name.isEmpty() ? nullptr : cpFindDefine(this, name, pp);
        if (!next) break;
        define = next;
    }
    return define;
}

int CPPreprocessorMacro::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                                    CPPreprocessorMacro* enclosingCall, int depth) {
    if (isCancelled(pp)) return qbmsg::Cancelled;
    QBString name = getMacroName(pp, enclosingCall);
    Token* nameToken = getTokenChild(0);
    if (nameToken && name == "_VARIANT_BOOL" && nameToken->isFirstOnLine()) return 0;
    CPPreprocessorDefine* define = cpFindDefine(this, name, pp);
    if (!define && name == "__identifier") {
        int rc = emitIdentifierCall(target, flat);
        if (rc != 1) return rc;
    }
    if (hasParentheses()) define = chaseAlias(pp, define, enclosingCall);
    if (define && !define->expanding && !pp->mayExpandDeeper()) {
        logErrorAtNode(nameToken, qbmsg::NestedTooDeeply);
        define = nullptr;
    }
    if (!define || define->expanding) return emitCall(pp, target, flat, enclosingCall, 0);
    if (const CPMacroTable::EntryList* entries = pp->getMacroTable().find(name))
        for (CPMacroTable::Symbol* entry : *entries)
            if (CPMacroTable::definitionOf(entry) == define)
                if (int rc = CPMacroTable::addReference(entry, nameToken)) return rc;
    CPPreprocessorDefineBody* body = define->getBody();
    if (body && body->getChildCount() > 0) {
        pp->enterExpansion();
        int rc = expand(pp, define, target, flat, enclosingCall, depth);
        pp->leaveExpansion();
        if (rc < 0) return rc;
    }
    if (define->isFunctionLike() || !hasParentheses()) return 0;
    return emitCall(pp, target, flat, enclosingCall, 1);
}

// __identifier(class) is the plain name `class`. 1 when the call isn't of that shape.
int CPPreprocessorMacro::emitIdentifierCall(CPPreprocessorFilter* target, bool flat) {
    CPPreprocessorMacroArgument* arg = actualCount() == 1 ? getActual(0) : nullptr;
    Node* only = arg && arg->getChildCount() == 1 ? arg->getChild(0) : nullptr;
    if (only && only->getType() == CPN_PreprocessorMacro && only->getChildCount() == 1)
        only = only->getChild(0);
    if (!only || !only->isToken() || !cpIsIdentifierLike(only->getType())) return 1;
    only->setType(CPT_IDENTIFIER);
    CPPreprocessorFilter* into = wrapTarget(target, flat, this, 1);
    if (!into) return qbmsg::OutOfMemory;
    return into->addChild(only);
}

// The private copy of the call with every argument fully expanded; the call itself when it has
// no arguments. Counted: the caller releases it when it isn't this call.
CPPreprocessorMacro* CPPreprocessorMacro::makeArguments(CPPreprocessor* pp,
                                                        CPPreprocessorDefine* define, bool flat,
                                                        CPPreprocessorMacro* enclosingCall,
                                                        int depth, int& status) {
    status = 0;
    unsigned actuals = actualCount();
    if (actuals == 0) return this;
    CPPreprocessorMacro* args = new (std::nothrow) CPPreprocessorMacro;
    if (!args) {
        status = qbmsg::OutOfMemory;
        return nullptr;
    }
    args->addRef();
    status = args->addChild(define->getNameToken());
    if (status == 0) status = args->addChild(getChild(1));
    for (unsigned i = 0; status >= 0 && i < actuals; ++i) {
        if (i > 0 && status >= 0) status = args->addChild(getChild(2 * i + 1));
        CPPreprocessorMacroArgument* actual = getActual(i);
        if (!actual || actual->getChildCount() == 0) {
            if (status >= 0) status = args->addChild(nullptr);
            continue;
        }
        CPPreprocessorMacroArgument* copy = new (std::nothrow) CPPreprocessorMacroArgument;
        if (!copy || args->addChild(copy) != 0) {
            delete copy;
            status = qbmsg::OutOfMemory;
            break;
        }
        copy->setOrigin(actual);
        int rc = actual->preprocess(pp, copy, flat, enclosingCall, depth + 1);
        if (rc == qbmsg::Cancelled || rc == qbmsg::OutOfMemory) status = rc;
    }
    if (status >= 0) status = args->addChild(getChild(getChildCount() - 1));
    if (status < 0) {
        args->release();
        return nullptr;
    }
    return args;
}

int CPPreprocessorMacro::expand(CPPreprocessor* pp, CPPreprocessorDefine* define,
                                CPPreprocessorFilter* target, bool flat,
                                CPPreprocessorMacro* enclosingCall, int depth) {
    int status = 0;
    CPPreprocessorMacro* args = makeArguments(pp, define, flat, enclosingCall, depth, status);
    if (!args) return status;
    CPPreprocessorDefineBody* body = define->getBody();
    unsigned from = target->getChildCount();
    CPPreprocessorFilter* into = wrapTarget(target, flat, body, 0);
    bool saved = define->expanding;
    define->expanding = true;
    int rc = into ? body->preprocess(pp, into, flat, args, depth + 1) : qbmsg::OutOfMemory;
    define->expanding = saved;
    if (into && into != target) into->setOrigin(this);
    if (args != this) {
        detachArguments(target, args, from);
        args->release();
    }
    return rc;
}

// The call as written, from child start on, with its arguments expanded in place.
int CPPreprocessorMacro::emitCall(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                                  CPPreprocessorMacro* enclosingCall, unsigned start) {
    if (hasError()) target->setErrorFlag(false);
    unsigned n = getChildCount();
    for (unsigned i = start; i < n; ++i) {
        Node* child = getChild(i);
        if (!child) continue;
        if (child->isToken()) {
            int kind = child->getType();
            if (cpTokenHas(kind, CPTK_DIRECTIVE))
                child->setType(CPT_IDENTIFIER);
            if (int rc = target->addChild(child)) return rc;
            continue;
        }
        CPPreprocessorFilter* node = from(child);
        if (!node) continue;
        if (node->getType() != CPN_PreprocessorMacroArg) {
            int rc = node->preprocess(pp, target, flat, enclosingCall, 0);
            if (rc < 0) return rc;
            continue;
        }
        unsigned before = target->getChildCount();
        for (unsigned j = 0; j < node->getChildCount(); ++j) {
            Node* part = node->getChild(j);
            CPPreprocessorFilter* inner = from(part);
            int rc = part && part->isToken() ? target->addChild(part)
                     : inner                 ? inner->preprocess(pp, target, flat, enclosingCall, 0)
                                             : 0;
            if (rc < 0) return rc;
        }
        // `p(fmt, ## __VA_ARGS__)` loses its comma when the variable part is empty.
        Node* comma = getChild(i - 1);
        Node* close = getChild(i + 1);
        CPPreprocessorFilter* only = node->getChildCount() == 1 ? node->getFilterChild(0) : nullptr;
        bool pastesParameter = false;
        for (unsigned j = 0; only && only->getType() == CPN_PreprocessorDefineConcat &&
                             j < only->getChildCount();
             ++j) {
            Node* operand = only->getChild(j);
            pastesParameter |= operand && operand->getType() == CPN_PreprocessorDefineArg;
        }
        if (i + 2 == n && target->getChildCount() == before && comma &&
            comma->getType() == CPT_COMMA && close && close->getType() == CPT_RIGHT_PAREN &&
            pastesParameter && before > 0 && target->getChild(before - 1) == comma)
            target->removeChildren(before - 1, 1);
    }
    return 0;
}

// ---- Parameters, # and ## -------------------------------------------------------------------

int CPPreprocessorDefineArgument::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target,
                                             bool flat, CPPreprocessorMacro* call, int depth) {
    if (!call) return 0;
    Token* nameToken = getTokenChild(0);
    if (!nameToken) return qbmsg::NothingToWorkOn;
    CPPreprocessorFilter* into = wrapTarget(target, flat, this, 0);
    if (!into) return qbmsg::OutOfMemory;
    CPPreprocessorDefine* define = cpFindDefine(call, call->getMacroName(pp, nullptr), pp);
    if (!define) return 0;
    QBString name = nameToken->getSpellingConst();
    if (!define->isLastFormal(name)) {
        int index = define->formalIndex(name);
        CPPreprocessorMacroArgument* arg = index >= 0 ? call->getActual(unsigned(index)) : nullptr;
        return arg ? arg->preprocess(pp, into, flat, nullptr, depth) : 0;
    }
    int kept = 0;
    unsigned actuals = call->actualCount();
    for (unsigned i = define->formalCount() - 1; i < actuals; ++i) {
        if (CPPreprocessorMacroArgument* arg = call->getActual(i))
            kept = firstNegative(kept, arg->preprocess(pp, into, flat, nullptr, depth));
        if (i + 1 < actuals)
            if (int rc = into->addChild(call->getChild(2 * i + 3))) return rc;
    }
    return kept;
}

// The quoted text of the argument(s) a `#` names; for the variable part all of them.
int CPPreprocessorDefineString::argumentsText(CPPreprocessor* pp, CPPreprocessorMacro* call,
                                              QBString& text) {
    Token* name = getTokenChild(1);
    CPPreprocessorDefine* define = cpFindDefine(call, call->getMacroName(pp, nullptr), pp);
    if (!name || !define) return 0;
    QBString formal = name->getSpellingConst();
    if (define->isLastFormal(formal)) {
        unsigned actuals = call->actualCount();
        for (unsigned i = define->formalCount() - 1; i < actuals; ++i) {
            if (int rc = appendArgumentText(call->getActual(i), text); rc < 0) return rc;
            Token* comma = i + 1 < actuals ? call->getTokenChild(2 * i + 3) : nullptr;
            if (!comma) continue;
            if (comma->getWhitespaceCount() > 0) text.append(' ');
            text.append(comma->getSpellingConst());
        }
        return 0;
    }
    int index = define->formalIndex(formal);
    if (index < 0) {
        logErrorAtNode(this, qbmsg::NotAMacroParameter, formal);
        return qbmsg::NotAMacroParameter;
    }
    int rc = appendArgumentText(call->getActual(unsigned(index)), text);
    return rc < 0 ? rc : 0;
}

int CPPreprocessorDefineString::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target,
                                           bool flat, CPPreprocessorMacro* call, int) {
    CPPreprocessorFilter* into = wrapTarget(target, flat, this, 1);
    if (!into) return qbmsg::OutOfMemory;
    if (hasError()) into->setErrorFlag(false);
    Token* pound = getTokenChild(0);
    if (!pound) return qbmsg::NothingToWorkOn;
    if (!call) {
        logErrorAtNode(this, qbmsg::UnexpectedToken, pound->getSpellingConst());
        return qbmsg::UnexpectedToken;
    }
    QBString text("");
    if (int rc = argumentsText(pp, call, text)) return rc;
    if (text.replaceAll("\"", "\\\"") < 0 || text.surround('"', '"') < 0) return qbmsg::OutOfMemory;
    char prefix = pound->getSpellingConst().first_char();
    int kind = CPT_STRING;
    if (prefix == 'L' || prefix == 'S') {
        if (text.prepend(prefix) < 0) return qbmsg::OutOfMemory;
        if (prefix == 'L') kind = CPT_WIDE_STRING;
    }
    return addMadeToken(into, makeToken(kind, text, pound));
}

// The pasted text: operands' leaves side by side, a blank only inside one operand where two
// names or numbers would otherwise run together.
int CPPreprocessorDefineConcat::pastedText(CPPreprocessor* pp, CPPreprocessorMacro* call,
                                           int depth, QBString& text) {
    int kept = 0;
    for (unsigned i = 0; i < getChildCount(); i += 2) {
        Node* operand = getChild(i);
        if (!operand) continue;
        quernbase::QBArray<Token*> leaves;
        CPPreprocessorPPTokens* run = nullptr;
        if (operand->isToken()) {
            leaves.add(static_cast<Token*>(operand));
        } else if (CPPreprocessorFilter* node = from(operand)) {
            run = scratchRun(this);
            if (!run) return qbmsg::OutOfMemory;
            kept = firstNegative(kept, node->preprocess(pp, run, true, call, depth + 1));
            collectLeaves(run, leaves);
        }
        bool first = true;
        for (Token* leaf : leaves) {
            if (leaf->getType() == CPT_EOF) break;
            QBString spelling = leaf->getSpellingConst();
            if (!first && isSymbolChar(text.last_char()) && isSymbolChar(spelling.first_char()))
                text.append(' ');
            text.append(spelling);
            first = false;
        }
        if (run) run->release();
    }
    return kept;
}

// Reads the pasted text again as a text run, from a source the cache keeps under "##text##".
static CPPreprocessorPPTokens* lexPastedText(CPPreprocessor* pp, const QBString& text, int depth) {
    QBString name("##");
    name.append(text);
    name.append("##");
    BPSourceCache* cache = pp->getSourceCache();
    BPSourceHandle handle;
    if (BPSourceHandle* found = cache ? cache->find(name) : nullptr) handle = *found;
    if (handle.isNull()) {
        handle = BPSourceHandle::makeTextSource(text, 1, 0);
        if (handle.isNull()) return nullptr;
        handle->fileName = name;
        if (cache) cache->set(name, handle);
    }
    CPLexer* lexer = pp->makeLexer(handle, 0);
    if (!lexer) return nullptr;
    lexer->addRef();
    CPWhitespaceFilter* filter = new (std::nothrow) CPWhitespaceFilter(lexer);
    CPPreprocessorPPTokens* run = nullptr;
    if (filter) {
        filter->addRef();
        run = cpParseText(*filter, depth);
        filter->release();
    }
    lexer->release();
    return run;
}

int CPPreprocessorDefineConcat::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target,
                                           bool flat, CPPreprocessorMacro* call, int depth) {
    QBString text("");
    int kept = pastedText(pp, call, depth, text);
    if (kept == qbmsg::Cancelled || kept == qbmsg::OutOfMemory) return kept;
    if (text.isEmpty() || !pp) return kept;
    CPPreprocessorPPTokens* run = lexPastedText(pp, text, depth);
    if (!run) return qbmsg::OutOfMemory;
    run->addRef();
    run->setOrigin(this);
    if (hasError()) run->setErrorFlag(false);
    if (run->hasError()) {
        int rc = target->addChild(run);
        run->release();
        return rc < 0 ? rc : qbmsg::SyntaxError;
    }
    unsigned from = target->getChildCount();
    CPPreprocessorFilter* into = wrapTarget(target, flat, run, 0);
    int rc = into ? run->preprocess(pp, into, true, nullptr, depth + 1) : qbmsg::OutOfMemory;
    detachArguments(target, run, from);
    run->release();
    return rc < 0 ? rc : kept;
}

// ---- Builtins -------------------------------------------------------------------------------

namespace {

QBString quoted(const QBString& text) {
    QBString out(text);
    out.replaceAll("\"", "\\\"");
    out.surround('"', '"');
    return out;
}

QBString fileTime(const QBString& path) {
    struct stat info;
    if (path.isEmpty() || stat(path.get(), &info) != 0) return QBString("");
    struct tm local;
    char buffer[64];
    if (!localtime_r(&info.st_mtime, &local) ||
        std::strftime(buffer, sizeof buffer, "%a %b %d %H:%M:%S %Y", &local) == 0)
        return QBString("");
    return QBString(buffer);
}

// A `#define __cplusplus 199711L` (one plain token) overrides the builtin.
Token* overridingValue(CPPreprocessor* pp, Token* token) {
    const CPMacroTable::EntryList* entries =
        pp ? pp->getMacroTable().find(token->getSpellingConst()) : nullptr;
    if (!entries || entries->count() == 0) return nullptr;
    CPPreprocessorDefine* define = CPMacroTable::definitionOf((*entries)[0]);
    if (!define || define->undefined) return nullptr;
    CPPreprocessorDefineBody* body = define->getBody();
    return body && body->getChildCount() == 1 ? body->getTokenChild(0) : nullptr;
}

}  // namespace

int CPPreprocessorBuiltin::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                                      CPPreprocessorMacro*, int) {
    if (isCancelled(pp)) return qbmsg::Cancelled;
    Token* token = getTokenChild(0);
    if (!token) return qbmsg::NothingToWorkOn;
    int kind = CPT_STRING;
    QBString value("");
    QBString path = token->getFileName();
    if (Token* given = overridingValue(pp, token)) {
        kind = given->getType();
        value = given->getSpellingConst();
    } else {
        switch (token->getType()) {
        case CPT_kw___cplusplus:
        case CPT_kw___STDC_VERSION__: kind = CPT_LONG, value = "199711L"; break;
        case CPT_kw___STDC__:
        case CPT_kw___STDC_HOSTED__: kind = CPT_INTEGER, value = "1"; break;
        case CPT_kw___LINE__: kind = CPT_INTEGER, value.append(int(token->getLine())); break;
        case CPT_kw___FILE__: path.replaceAll('\\', '/'), value = quoted(path); break;
        case CPT_kw___DATE__: value = quoted(pp ? pp->getDateText() : QBString("")); break;
        case CPT_kw___TIME__: value = quoted(pp ? pp->getTimeText() : QBString("")); break;
        default: value = quoted(fileTime(path)); break;
        }
    }
    CPPreprocessorFilter* into = wrapTarget(target, flat, this, 1);
    if (!into) return qbmsg::OutOfMemory;
    return addMadeToken(into, makeToken(kind, value, token));
}
