// Token streams. A chain of sources: a lexer at the bottom, filters above it, the parser on top.
//
// Reading protocol: `current` is the token last handed out; nextToken() moves on. A source
// remembers tokens only behind an open mark: with a mark open, every token that stops being
// current goes onto the top mark's queue, and rollback() feeds the very same objects through
// again (no rescanning). With no mark open, a token the source lets go of with no other holder
// goes back to the pool, from which a lexer reuses it without allocating.
//
// Counting: `current`, `pushback`, a mark's queue and the pool each hold tokens; a pooled token
// has count 0 and is deleted only with the source.
#pragma once

#include <cstdint>
#include <new>

#include "BPRefCountObject.h"
#include "QBArray.h"
#include "QBMessageCodes.h"
#include "TBPTokenQueue.h"

// Marks a class that reads from a token source.
class TBPTokenConsumer {
public:
    virtual ~TBPTokenConsumer() = default;
};

template <class T>
class TBPTokenSource : public BPRefCountObject {
public:
    typedef TBPToken<T> Token;
    typedef TBPParseNode<T> Node;
    typedef quernbase::QBArray<Token*> TokenList;
    enum { ERR_NOMARK = -1 };

    TBPTokenSource() = default;
    TBPTokenSource(const TBPTokenSource&) = delete;
    TBPTokenSource& operator=(const TBPTokenSource&) = delete;
    ~TBPTokenSource() override;

    // Backtracking: every mark is closed by exactly one rollback, commit or commitWithError.
    virtual int mark() { return transactions.add(TBPTransaction<T>()); }
    virtual int rollback();
    // Marks node as failed (when given), then commits.
    virtual int commitWithError(Node* node) {
        if (node) node->setErrorFlag(false);
        return commit();
    }
    virtual int commit();
    virtual Token* nextToken();
    // The subclass's read of a new token; null when it has nothing more.
    virtual Token* readToken() = 0;

    Token* currentToken() { return current ? current : nextToken(); }
    T currentType() { return typeOf(currentToken()); }
    T nextType() { return typeOf(nextToken()); }
    // The type n tokens ahead (0: the current one), reading nothing for good.
    T peekType(int n);
    // Makes token current; the former current token and the pushback follow it.
    int pushToken(Token* token);
    // The first becomes current; the others come before the former current token.
    int pushTokens(const TokenList& tokens);

    uint64_t getTokensRead() const { return tokensRead; }
    unsigned getMarkCount() const { return transactions.count(); }
    unsigned getPoolCount() const { return tokenPool.count() + (spare ? 1 : 0); }

protected:
    Token* current = nullptr;
    TokenList tokenPool;
    // The pool's newest token, outside the array: reading on with no mark open frees one token
    // and takes one back per step, and this keeps that step free of array bookkeeping.
    Token* spare = nullptr;
    quernbase::QBArray<TBPTransaction<T>> transactions;
    TBPTokenQueue<T> pushback;
    uint64_t tokensRead = 0;

    static T typeOf(const Token* token) { return token ? token->getType() : T(BPTOKEN_EOF); }
    // Drops one count; a token nobody else holds goes to the pool.
    void releaseToRecycle(Token* token) {
        if (!token || token->releaseKeep() > 0) return;
        if (!spare) {
            spare = token;
            return;
        }
        if (tokenPool.add(token) != 0) delete token;
    }
    // A pooled token for reuse, or null.
    Token* takePooledToken() {
        if (spare) {
            Token* token = spare;
            spare = nullptr;
            return token;
        }
        unsigned n = tokenPool.count();
        if (n == 0) return nullptr;
        Token* token = tokenPool[n - 1];
        tokenPool.removeAt(n - 1);
        return token;
    }
    TBPTransaction<T>& topMark() { return transactions[transactions.count() - 1]; }
    void dropTopMark() {
        topMark().clear();
        transactions.removeAt(transactions.count() - 1);
    }
    // Puts queue in front of the pushback.
    void prependToPushback(TBPTokenQueue<T>& queue) {
        pushback.moveAllTo(queue);
        queue.moveAllTo(pushback);
    }
};

template <class T>
TBPTokenSource<T>::~TBPTokenSource() {
    if (current) current->release();
    current = nullptr;
    while (transactions.count() > 0) dropTopMark();
    pushback.clear();
    while (Token* token = takePooledToken()) delete token;
}

template <class T>
TBPToken<T>* TBPTokenSource<T>::nextToken() {
    if (current && transactions.count() > 0) topMark().append(current);
    releaseToRecycle(current);
    current = nullptr;
    Token* token;
    if (pushback.isEmpty()) {
        token = readToken();
        if (token) {
            ++tokensRead;
            token->addRef();
        }
    } else {
        token = pushback.popHead();  // the pushback's count becomes current's
    }
    current = token;
    return token;
}

template <class T>
int TBPTokenSource<T>::rollback() {
    if (transactions.count() == 0) return ERR_NOMARK;
    TBPTransaction<T>& top = topMark();
    if (current) top.append(current);
    pushback.moveAllTo(top);
    if (!top.isEmpty()) {
        releaseToRecycle(current);
        current = top.popHead();
    }
    top.moveAllTo(pushback);
    dropTopMark();
    return 0;
}

template <class T>
int TBPTokenSource<T>::commit() {
    unsigned marks = transactions.count();
    if (marks == 0) return ERR_NOMARK;
    TBPTransaction<T>& top = topMark();
    if (marks == 1) {
        while (!top.isEmpty()) releaseToRecycle(top.popHead());
    } else {
        top.moveAllTo(transactions[marks - 2]);
    }
    dropTopMark();
    return 0;
}

template <class T>
T TBPTokenSource<T>::peekType(int n) {
    if (mark() != 0) return n == 0 ? currentType() : T(BPTOKEN_EOF);
    Token* token = currentToken();
    for (int i = 0; i < n && token; ++i) token = nextToken();
    T type = typeOf(token);
    rollback();
    return type;
}

template <class T>
int TBPTokenSource<T>::pushToken(Token* token) {
    if (!token) return qbmsg::BadArgument;
    TBPTokenQueue<T> ahead;
    if (current) {
        if (int rc = ahead.append(current)) return rc;
        releaseToRecycle(current);
    }
    prependToPushback(ahead);
    token->addRef();
    current = token;
    return 0;
}

template <class T>
int TBPTokenSource<T>::pushTokens(const TokenList& tokens) {
    if (tokens.count() == 0) return 0;
    if (!tokens[0]) return qbmsg::BadArgument;
    TBPTokenQueue<T> ahead;
    for (unsigned i = 1; i < tokens.count(); ++i)
        if (int rc = ahead.append(tokens[i])) return rc;
    if (current) {
        if (int rc = ahead.append(current)) return rc;
        releaseToRecycle(current);
    }
    prependToPushback(ahead);
    tokens[0]->addRef();
    current = tokens[0];
    return 0;
}

// A source that reads another source.
template <class T>
class TBPTokenFilter : public TBPTokenSource<T>, public TBPTokenConsumer {
public:
    typedef TBPToken<T> Token;

    explicit TBPTokenFilter(TBPTokenSource<T>* source) : upstream(nullptr) { setSource(source); }
    ~TBPTokenFilter() override {
        // Tokens of this filter may be the upstream's too: let ours go first.
        TBPTokenSource<T>* source = upstream;
        upstream = nullptr;
        releaseOwnTokens();
        if (source) source->release();
    }

    TBPTokenSource<T>* getSource() const { return upstream; }
    void setSource(TBPTokenSource<T>* source) { BPRefCountObject::assign(upstream, source); }
    Token* next() { return upstream ? upstream->nextToken() : nullptr; }

protected:
    TBPTokenSource<T>* upstream;

private:
    void releaseOwnTokens() {
        if (this->current) this->current->release();
        this->current = nullptr;
        while (this->transactions.count() > 0) this->dropTopMark();
        this->pushback.clear();
    }
};

// Reads a fixed list of tokens, all of which wait in the pushback from the start.
template <class T>
class TBPArrayTokenSource : public TBPTokenSource<T> {
public:
    typedef TBPToken<T> Token;

    explicit TBPArrayTokenSource(const quernbase::QBArray<Token*>& tokens) {
        for (Token* token : tokens)
            if (token) this->pushback.append(token);
    }
    Token* readToken() override { return nullptr; }
};

// Reads the leaves of a finished tree in document order, passing over null children.
template <class T>
class TBPTreeTokenSource : public TBPTokenSource<T> {
public:
    typedef TBPToken<T> Token;
    typedef TBPParseNode<T> Node;

    explicit TBPTreeTokenSource(Node* root) { restart(root); }
    ~TBPTreeTokenSource() override { BPRefCountObject::assign(root, static_cast<Node*>(nullptr)); }

    Token* readToken() override { return nextLeaf(); }
    // Starts again at the first leaf of root, which this source counts. 0 or OutOfMemory.
    int restart(Node* newRoot) {
        BPRefCountObject::assign(root, newRoot);
        stack.clear();
        return newRoot ? stack.add(Frame{-1, newRoot}) : 0;
    }

protected:
    Token* nextLeaf();

private:
    struct Frame {
        int index;
        Node* node;
    };
    Node* root = nullptr;
    quernbase::QBArray<Frame> stack;
};

template <class T>
TBPToken<T>* TBPTreeTokenSource<T>::nextLeaf() {
    while (stack.count() > 0) {
        Frame& top = stack[stack.count() - 1];
        if (top.node->isToken() && top.index < 0) {
            // A root that is itself a leaf is its own only token.
            top.index = 0;
            return static_cast<Token*>(top.node);
        }
        ++top.index;
        if (unsigned(top.index) >= top.node->getChildCount()) {
            stack.removeAt(stack.count() - 1);
            continue;
        }
        Node* child = top.node->getChild(unsigned(top.index));
        if (!child) continue;
        if (child->isToken()) return static_cast<Token*>(child);
        if (stack.add(Frame{-1, child}) != 0) return nullptr;
    }
    return nullptr;
}
