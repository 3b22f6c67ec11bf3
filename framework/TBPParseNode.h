// What a token and an inner node of the parse tree have in common.
//
// Every template here is over the node-type enumeration T (CPParseNodeType in this engine).
// A node is counted by every holder (a parent's child slot, a token source, a mark's queue, a
// whitespace list); `parent` is a plain back pointer that a parent clears when it lets go. A
// token's whitespace tokens have the token as their parent, which is why navigation upward
// stops at the first parent that is not a tree.
//
// Include this header, TBPToken.h or TBPParseTree.h: each brings in all three classes.
#pragma once

#include <cstdint>
#include <cstdio>
#include <new>

#include "BPRefCountObject.h"
#include "BPSourceText.h"
#include "QBMessageCodes.h"
#include "QBString.h"
#include "TBPErrorLog.h"

// The type numbers every language shares; a language numbers its own kinds above 12.
enum BPTokenType {
    BPTOKEN_NULL = 0,
    BPTOKEN_EOF = 1,  // end of the outermost source
    BPTOKEN_EOS = 2,  // end of a pushed source
    BPTOKEN_IDENTIFIER = 3,
    BPTOKEN_WHITESPACE = 8,
    BPTOKEN_NEWLINE = 9,
    BPTOKEN_LINE_COMMENT = 10,
    BPTOKEN_BLOCK_COMMENT = 11,
    BPTOKEN_GARBAGE_CHAR = 12,
};

// Gives the print name of a type number, or null for a number without one.
typedef const char* (*BPTypeNameFunction)(int type);

// The names of the shared numbers; every other number is "CUSTOM".
inline const char* BPCommonTypeName(int type) {
    switch (type) {
    case BPTOKEN_NULL: return "NULL";
    case BPTOKEN_EOF: return "EOF";
    case BPTOKEN_EOS: return "EOS";
    case BPTOKEN_IDENTIFIER: return "IDENTIFIER";
    case BPTOKEN_WHITESPACE: return "WHITESPACE";
    case BPTOKEN_NEWLINE: return "NEWLINE";
    case BPTOKEN_LINE_COMMENT: return "LINE_COMMENT";
    case BPTOKEN_BLOCK_COMMENT: return "BLOCK_COMMENT";
    case BPTOKEN_GARBAGE_CHAR: return "GARBAGE_CHAR";
    default: return "CUSTOM";
    }
}

template <class T> class TBPToken;
template <class T> class TBPParseTree;
template <class T> class TBPSymbolInfo;

// The five message arguments of every record maker; absent ones are empty.
#define BP_MESSAGE_ARGS                                                                     \
    const quernbase::QBString& a = quernbase::QBString(),                                   \
    const quernbase::QBString& b = quernbase::QBString(),                                   \
    const quernbase::QBString& c = quernbase::QBString(),                                   \
    const quernbase::QBString& d = quernbase::QBString(),                                   \
    const quernbase::QBString& e = quernbase::QBString()

template <class T>
class TBPParseNode : public BPRefCountObject {
public:
    typedef TBPErrorLog<T> ErrorLog;
    typedef TBPToken<T> Token;
    typedef TBPParseTree<T> Tree;
    enum { ERR_BADINDEX = -1 };

    explicit TBPParseNode(T nodeType) : type(nodeType) {}
    TBPParseNode(const TBPParseNode&) = delete;
    TBPParseNode& operator=(const TBPParseNode&) = delete;
    ~TBPParseNode() override { dropAttributes(); }

    // The virtual interface, in its fixed order.
    virtual TBPParseNode* clone() const = 0;
    virtual bool equals(const TBPParseNode* other) const { return other && other->type == type; }
    virtual const char* getTypeName() const { return nameOf(type); }
    virtual int getTypeName(quernbase::QBString& out) const {
        const char* name = getTypeName();
        return out.set(name ? name : "");
    }
    virtual const BPSourcePosition* getPosition() const = 0;
    virtual int printToString(quernbase::QBString& out, int indent, bool showWhitespace) = 0;
    // To standard output: the text printToString makes.
    virtual void print(int indent, bool showWhitespace) {
        quernbase::QBString text("");
        printToString(text, indent, showWhitespace);
        std::fputs(text.get(), stdout);
    }
    virtual int appendErrors(quernbase::QBString& out) const { return appendOwnErrors(out); }
    virtual void printErrors() const {
        quernbase::QBString text("");
        appendErrors(text);
        std::fputs(text.get(), stdout);
    }
    virtual int getText(quernbase::QBString& out) const = 0;
    virtual bool isToken() const = 0;
    virtual bool isReservedKind() const { return false; }
    virtual bool isTree() const = 0;
    virtual bool isKindOf(T) const { return false; }
    virtual int validate() { return -1; }
    // Marks this node and its ancestors changed; stops at the first one already marked.
    virtual void setModified() {
        ErrorLog* log = ensureAttributes();
        if (!log || log->modified) return;
        log->modified = true;
        if (parent) parent->setModified();
    }
    virtual void clearErrors(bool) { clearOwnErrors(); }
    virtual int clearChildErrors() { return 0; }
    // Merges this node's records (its subtree's first) into log; a negative status stops it.
    virtual int collectErrors(ErrorLog& log) const { return attributes ? log.merge(*attributes) : 0; }

    // The name function for all nodes over T; null gives the shared names.
    static void setTypeNameFunction(BPTypeNameFunction function) { typeNameFunction = function; }
    static BPTypeNameFunction getTypeNameFunction() { return typeNameFunction; }
    static const char* nameOf(int typeNumber) {
        return typeNameFunction ? typeNameFunction(typeNumber) : BPCommonTypeName(typeNumber);
    }

    T getType() const { return type; }
    void setType(T t) { type = t; }
    TBPParseNode* getParent() const { return parent; }
    void setParent(TBPParseNode* p) { parent = p; }

    // Children of an inner node; a token has none.
    unsigned getChildCount() const { return isTree() ? asTree()->children.count() : 0; }
    TBPParseNode* getChild(unsigned i) const {
        return i < getChildCount() ? asTree()->children[i] : nullptr;
    }
    Token* getTokenChild(unsigned i) const {
        TBPParseNode* child = getChild(i);
        return child && child->isToken() ? static_cast<Token*>(child) : nullptr;
    }

    // The first or last leaf in document order, or null.
    Token* getFirstToken() const {
        if (isToken()) return static_cast<Token*>(const_cast<TBPParseNode*>(this));
        for (unsigned i = 0; i < getChildCount(); ++i)
            if (TBPParseNode* child = getChild(i))
                if (Token* token = child->getFirstToken()) return token;
        return nullptr;
    }
    Token* getLastToken() const {
        if (isToken()) return static_cast<Token*>(const_cast<TBPParseNode*>(this));
        for (unsigned i = getChildCount(); i-- > 0;)
            if (TBPParseNode* child = getChild(i))
                if (Token* token = child->getLastToken()) return token;
        return nullptr;
    }
    // The leaf behind or ahead of this node, leaving subtrees upward through trees only.
    Token* getNextToken() const { return neighbourToken(true); }
    Token* getPreviousToken() const { return neighbourToken(false); }

    int findChildOfType(T childType, int start) const {
        for (unsigned i = start < 0 ? 0 : unsigned(start); i < getChildCount(); ++i) {
            TBPParseNode* child = getChild(i);
            if (child && child->type == childType) return int(i);
        }
        return -1;
    }
    // With recursive, a child whose subtree holds node gives its own index.
    int indexOfChild(const TBPParseNode* node, bool recursive) const {
        if (!node) return -1;
        for (unsigned i = 0; i < getChildCount(); ++i) {
            TBPParseNode* child = getChild(i);
            if (child == node || (recursive && child && child->isAncestor(node))) return int(i);
        }
        return -1;
    }
    TBPParseNode* findAncestor(T ancestorType) const {
        for (TBPParseNode* p = parent; p; p = p->parent)
            if (p->type == ancestorType) return p;
        return nullptr;
    }
    // True if this node is above node.
    bool isAncestor(const TBPParseNode* node) const {
        for (const TBPParseNode* p = node ? node->parent : nullptr; p; p = p->parent)
            if (p == this) return true;
        return false;
    }
    Tree* findEnclosingScope() const {
        for (TBPParseNode* p = parent; p; p = p->parent)
            if (p->isTree() && p->asTree()->symbols) return p->asTree();
        return nullptr;
    }

    int getTextString(quernbase::QBString& out) const {
        if (int rc = out.makeEmpty()) return rc;
        return getText(out);
    }

    // Flags kept in attributes; all read false while there are none.
    bool hasError() const { return attributes && attributes->hasError; }
    bool isModified() const { return attributes && attributes->modified; }
    bool isValidated() const { return attributes && attributes->validated; }
    bool isValid() const { return attributes && attributes->valid; }
    int setValidated(bool valid) {
        ErrorLog* log = ensureAttributes();
        if (!log) return qbmsg::OutOfMemory;
        log->validated = true;
        log->valid = valid;
        return 0;
    }
    void clearValidated() {
        if (!attributes) return;
        attributes->validated = false;
        attributes->valid = false;
    }
    ErrorLog* getAttributes() const { return attributes; }
    ErrorLog* ensureAttributes() {
        if (!attributes) attributes = new (std::nothrow) ErrorLog;
        return attributes;
    }
    // Sets hasError here and, with propagate, on every ancestor.
    int setErrorFlag(bool propagate) {
        for (TBPParseNode* node = this; node; node = propagate ? node->parent : nullptr) {
            ErrorLog* log = node->ensureAttributes();
            if (!log) return qbmsg::OutOfMemory;
            log->hasError = true;
        }
        return 0;
    }

    // Record makers. A warning is stored but leaves the error flags alone.
    int logWarning(const BPSourcePosition* position, int code, BP_MESSAGE_ARGS) {
        return logMessage(BPSEVERITY_WARNING, position, code, a, b, c, d, e);
    }
    int logError(const BPSourcePosition* position, int code, BP_MESSAGE_ARGS) {
        return logMessage(BPSEVERITY_ERROR, position, code, a, b, c, d, e);
    }
    // At the source's current token; at the end of the input at this node's last leaf.
    template <class Source>
    int logWarningAtSource(Source& source, int code, BP_MESSAGE_ARGS) {
        Token* leaf = leafAtSource(source);
        return logAtLeaf(BPSEVERITY_WARNING, leaf ? leaf->getPosition() : nullptr, leaf, code, a, b, c, d, e);
    }
    template <class Source>
    int logErrorAtSource(Source& source, int code, BP_MESSAGE_ARGS) {
        Token* leaf = leafAtSource(source);
        return logAtLeaf(BPSEVERITY_ERROR, leaf ? leaf->getPosition() : nullptr, leaf, code, a, b, c, d, e);
    }
    // At node's first leaf.
    int logWarningAtNode(const TBPParseNode* node, int code, BP_MESSAGE_ARGS) {
        return logAtLeaf(BPSEVERITY_WARNING, node ? node->getPosition() : nullptr, firstLeafOf(node),
                         code, a, b, c, d, e);
    }
    int logErrorAtNode(const TBPParseNode* node, int code, BP_MESSAGE_ARGS) {
        return logAtLeaf(BPSEVERITY_ERROR, node ? node->getPosition() : nullptr, firstLeafOf(node),
                         code, a, b, c, d, e);
    }

    // The symbols that name this node (a node may name several: a constructor call names the
    // constructor and the class). Kept by TBPSymbolInfo, symmetric with its references.
    unsigned getReferringSymbolCount() const { return attributes ? attributes->references.count() : 0; }
    TBPSymbolInfo<T>* getReferringSymbol(unsigned i) const {
        return i < getReferringSymbolCount() ? attributes->references[i] : nullptr;
    }
    int addReferringSymbol(TBPSymbolInfo<T>* symbol) {
        ErrorLog* log = ensureAttributes();
        return log ? log->references.add(symbol) : qbmsg::OutOfMemory;
    }
    // Takes out the last occurrence of symbol, if any.
    void removeReferringSymbol(const TBPSymbolInfo<T>* symbol) {
        for (unsigned i = getReferringSymbolCount(); i-- > 0;)
            if (attributes->references[i] == symbol) {
                attributes->references.removeAt(i);
                return;
            }
    }

    // Drops one count without deleting at zero: for token pools, and for holders that hand
    // their count on. Gives the new count.
    int releaseKeep() { return --refCount; }

protected:
    T type;
    TBPParseNode* parent = nullptr;
    ErrorLog* attributes = nullptr;

    const Tree* asTree() const { return static_cast<const Tree*>(this); }
    // Called after a message was logged at leaf: a language whose tokens can come out of a
    // macro adds where the user wrote it. Nothing here.
    virtual int noteWrittenPlace(Token*) { return 0; }

    // Frees attributes after taking this node out of every symbol that still names it.
    void dropAttributes() {
        if (!attributes) return;
        for (unsigned n = attributes->references.count(); n-- > 0;)
            attributes->references[n]->forgetReference(this);
        delete attributes;
        attributes = nullptr;
    }
    Tree* asTree() { return static_cast<Tree*>(this); }

    int appendOwnErrors(quernbase::QBString& out) const {
        if (!attributes) return 0;
        for (const auto& record : attributes->errors) {
            if (int rc = ErrorLog::format(record, out)) return rc;
            if (int rc = out.append('\n')) return rc;
        }
        return 0;
    }
    void clearOwnErrors() {
        if (!attributes) return;
        attributes->hasError = false;
        attributes->clearRecords();
    }
    // After a clear below: a node keeps hasError only for its own errors or a child's flag.
    void reexamineAncestors() {
        for (TBPParseNode* p = parent; p && p->attributes; p = p->parent) {
            bool keep = p->attributes->getErrorCount() > 0;
            for (unsigned i = 0; !keep && i < p->getChildCount(); ++i) {
                TBPParseNode* child = p->getChild(i);
                keep = child && child->hasError();
            }
            p->attributes->hasError = keep;
        }
    }

private:
    static inline BPTypeNameFunction typeNameFunction = nullptr;

    int logMessage(int severity, const BPSourcePosition* position, int code,
                   const quernbase::QBString& a, const quernbase::QBString& b,
                   const quernbase::QBString& c, const quernbase::QBString& d,
                   const quernbase::QBString& e) {
        ErrorLog* log = ensureAttributes();
        if (!log) return qbmsg::OutOfMemory;
        const quernbase::QBString* args[] = {&a, &b, &c, &d, &e};
        typename ErrorLog::Record record;
        if (int rc = record.make(position, code, severity, args)) return rc;
        if (int rc = log->addRecord(record)) return rc;
        return severity == BPSEVERITY_WARNING ? 0 : setErrorFlag(true);
    }

    template <class Source>
    Token* leafAtSource(Source& source) const {
        if (Token* token = source.currentToken()) return token;
        return getLastToken();
    }
    static Token* firstLeafOf(const TBPParseNode* node) {
        if (!node) return nullptr;
        return node->isToken() ? const_cast<Token*>(static_cast<const Token*>(node)) : node->getFirstToken();
    }
    int logAtLeaf(int severity, const BPSourcePosition* position, Token* leaf, int code,
                  const quernbase::QBString& a, const quernbase::QBString& b,
                  const quernbase::QBString& c, const quernbase::QBString& d,
                  const quernbase::QBString& e) {
        int rc = logMessage(severity, position, code, a, b, c, d, e);
        return rc == 0 && leaf ? noteWrittenPlace(leaf) : rc;
    }

    Token* neighbourToken(bool forward) const {
        const TBPParseNode* node = this;
        for (TBPParseNode* p = node->parent; p && p->isTree(); node = p, p = p->parent) {
            int at = p->indexOfChild(node, false);
            if (at < 0) return nullptr;
            for (int i = forward ? at + 1 : at - 1; i >= 0 && unsigned(i) < p->getChildCount();
                 i += forward ? 1 : -1) {
                TBPParseNode* sibling = p->getChild(unsigned(i));
                Token* token = !sibling ? nullptr
                               : forward ? sibling->getFirstToken()
                                         : sibling->getLastToken();
                if (token) return token;
            }
        }
        return nullptr;
    }
};

#undef BP_MESSAGE_ARGS

#include "TBPParseTree.h"
#include "TBPToken.h"
