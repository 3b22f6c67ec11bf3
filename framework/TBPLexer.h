// The language-neutral half of a lexer: a stack of sources with a reading position, skipping of
// whitespace and comments as the mode word asks, pooled token making and the logging of the
// scanner's pending messages. A language adds scanToken(), which recognises exactly one token at
// the cursor and leaves the cursor behind it.
//
// Only the terminator at `end` ends a text: a NUL byte inside it is an ordinary character, which
// is why every end test compares pointers.
#pragma once

#include "BPSourceText.h"
#include "QBCharType.h"
#include "TBPTokenSource.h"

enum BPLexerMode {
    BPLEX_NO_WHITESPACE = 1,      // blanks, tabs, form feeds give no token
    BPLEX_NO_COMMENTS = 2,        // comment tokens are dropped
    BPLEX_NO_NEWLINES = 4,        // line ends give no token
    BPLEX_LINE_START_HOOK = 8,    // onLineStart at each line start
    BPLEX_SKIP_C_COMMENTS = 16,   // // and /* */ skipped ahead of the scanner
    BPLEX_HASH_COMMENTS = 32,     // # to the line end
    BPLEX_PASCAL_COMMENTS = 64,   // (* *) and -- to the line end
    BPLEX_MARKUP_COMMENTS = 128,  // <!-- -->
    BPLEX_QUIET = 256,            // pending messages are not logged on tokens
};

template <class T>
class TBPLexer : public TBPTokenSource<T> {
public:
    typedef TBPToken<T> Token;

    explicit TBPLexer(const BPSourceHandle& source, int lexerMode = 0) : mode(lexerMode) {
        if (!source.isNull()) TBPLexer::pushSource(source);
    }
    ~TBPLexer() override = default;

    Token* readToken() override;
    virtual bool isIdentifierChar(int c) const { return charType.isCSym(c); }
    // Reads text next, as if it stood at the current place. 0 or OutOfMemory.
    virtual int pushText(const quernbase::QBString& text);
    virtual int pushSource(const BPSourceHandle& handle);
    // -1 with no source.
    virtual int popSource();
    virtual Token* makeToken(T type, const BPSourcePosition& position, uint32_t length,
                             const BPSourcePosition& filePosition) {
        return new (std::nothrow) Token(type, position, length, filePosition);
    }
    virtual T scanToken() = 0;
    virtual int onLineStart() { return BPTOKEN_NEWLINE; }

    int getMode() const { return mode; }
    unsigned getSourceCount() const { return sources.count(); }
    const BPSourcePosition* getTop() const { return top; }
    const BPSourcePosition& getFileOrigin() const { return fileOrigin; }

protected:
    const quernbase::QBCharType& charType = quernbase::QBCharType::getInstance();
    BPSourcePosition* top = nullptr;
    BPSourcePosition fileOrigin;
    BPSourcePosition tokenStart;
    quernbase::QBArray<BPSourcePosition> sources;
    bool sourceChanged = false;
    int mode;
    int pendingError = 0;
    int pendingWarning = 0;

    // Character access on the top source, for the scanner. None moves past the terminator.
    bool atEnd() const { return !top || top->atEnd(); }
    char currentChar() const { return atEnd() ? 0 : *top->cursor; }
    char advanceChecked() {
        if (!atEnd()) ++top->cursor;
        return currentChar();
    }
    char advance() { return advanceChecked(); }
    char peekChecked() const { return remaining() >= 2 ? top->cursor[1] : 0; }
    char peek() const { return peekChecked(); }
    int peekPair() const {
        if (remaining() < 3) return 0;
        return (unsigned char)top->cursor[1] * 256 + (unsigned char)top->cursor[2];
    }
    void skip2() { skipBy(2); }
    void skip3() { skipBy(3); }
    char backUp() {
        if (!top || !top->cursor) return 0;
        if (top->cursor > top->source->begin) --top->cursor;
        return *top->cursor;
    }
    bool matchRest(const char* text, unsigned count);
    void countLine() {
        if (top) ++top->line;
    }

private:
    // Characters from the cursor to the terminator.
    long remaining() const { return atEnd() ? 0 : long(top->source->end - top->cursor); }
    void skipBy(long n) {
        if (!atEnd()) top->cursor += n < remaining() ? n : remaining();
    }
    bool startsWith(const char* text, long count) const {
        if (remaining() < count) return false;
        for (long i = 0; i < count; ++i)
            if (top->cursor[i] != text[i]) return false;
        return true;
    }
    bool skipLineEnd();
    void skipToLineEnd() {
        while (!atEnd() && *top->cursor != '\n' && *top->cursor != '\r') ++top->cursor;
    }
    void skipBlockComment(const char* close, long closeLength);
    bool skipIgnored();
    bool isDropped(T tokenType) const {
        const int type = tokenType;
        return ((mode & BPLEX_NO_WHITESPACE) && type == BPTOKEN_WHITESPACE) ||
               ((mode & BPLEX_NO_NEWLINES) && type == BPTOKEN_NEWLINE) ||
               ((mode & BPLEX_NO_COMMENTS) &&
                (type == BPTOKEN_LINE_COMMENT || type == BPTOKEN_BLOCK_COMMENT));
    }
    void setTop(BPSourcePosition* position) {
        top = position;
        if (!top) return;
        tokenStart = *top;
        if (top->source->isFile()) fileOrigin = *top;
    }
    Token* produce(T type, const BPSourcePosition& start, uint32_t length);
};

template <class T>
int TBPLexer<T>::pushSource(const BPSourceHandle& handle) {
    if (handle.isNull()) return qbmsg::BadArgument;
    sourceChanged = true;
    BPSourcePosition position;
    position.source = handle;
    position.cursor = handle->begin;
    if (int rc = sources.add(position)) return rc;
    setTop(&sources[sources.count() - 1]);
    return 0;
}

template <class T>
int TBPLexer<T>::popSource() {
    unsigned n = sources.count();
    if (n == 0) return -1;
    sourceChanged = true;
    sources[n - 1].clear();  // the dead slot must not keep the text alive
    sources.removeAt(n - 1);
    setTop(n > 1 ? &sources[n - 2] : nullptr);
    return 0;
}

template <class T>
int TBPLexer<T>::pushText(const quernbase::QBString& text) {
    uint32_t firstLine = top ? top->getLine() : 1;
    uint32_t seekBase = top ? top->getSeekPosition() : 0;
    BPSourceHandle handle = BPSourceHandle::makeTextSource(text, firstLine, seekBase);
    if (handle.isNull()) return qbmsg::OutOfMemory;
    return pushSource(handle);
}

template <class T>
bool TBPLexer<T>::matchRest(const char* text, unsigned count) {
    if (!startsWith(text, long(count))) return false;
    if (remaining() > long(count) && isIdentifierChar((unsigned char)top->cursor[count]))
        return false;
    top->cursor += count;
    return true;
}

template <class T>
bool TBPLexer<T>::skipLineEnd() {
    char c = currentChar();
    if (c != '\n' && c != '\r') return false;
    ++top->cursor;
    if (c == '\r' && currentChar() == '\n' && !atEnd()) ++top->cursor;
    countLine();
    if (mode & BPLEX_LINE_START_HOOK) onLineStart();
    return true;
}

template <class T>
void TBPLexer<T>::skipBlockComment(const char* close, long closeLength) {
    while (!atEnd() && !startsWith(close, closeLength)) {
        if (*top->cursor == '\n' || *top->cursor == '\r') {
            char c = *top->cursor++;
            if (c == '\r' && !atEnd() && *top->cursor == '\n') ++top->cursor;
            countLine();
        } else {
            ++top->cursor;
        }
    }
    skipBy(closeLength);
}

// Skips what the mode says gives no token; false at the terminator.
template <class T>
bool TBPLexer<T>::skipIgnored() {
    const int skipping = BPLEX_NO_WHITESPACE | BPLEX_NO_NEWLINES | BPLEX_SKIP_C_COMMENTS |
                         BPLEX_HASH_COMMENTS | BPLEX_PASCAL_COMMENTS | BPLEX_MARKUP_COMMENTS;
    if (!(mode & skipping)) return !atEnd();  // a main file: every character makes a token
    for (;;) {
        if (atEnd()) return false;
        char c = *top->cursor;
        if ((mode & BPLEX_NO_WHITESPACE) && (c == ' ' || c == '\t' || c == '\f' || c == '\v')) {
            ++top->cursor;
        } else if ((mode & BPLEX_NO_NEWLINES) && (c == '\n' || c == '\r')) {
            skipLineEnd();
        } else if (((mode & BPLEX_HASH_COMMENTS) && c == '#') ||
                   ((mode & BPLEX_PASCAL_COMMENTS) && startsWith("--", 2)) ||
                   ((mode & BPLEX_SKIP_C_COMMENTS) && startsWith("//", 2))) {
            skipToLineEnd();
        } else if ((mode & BPLEX_PASCAL_COMMENTS) && startsWith("(*", 2)) {
            skip2();
            skipBlockComment("*)", 2);
        } else if ((mode & BPLEX_MARKUP_COMMENTS) && startsWith("<!--", 4)) {
            skipBy(4);
            skipBlockComment("-->", 3);
        } else if ((mode & BPLEX_SKIP_C_COMMENTS) && startsWith("/*", 2)) {
            skip2();
            skipBlockComment("*/", 2);
        } else {
            return true;
        }
    }
}

template <class T>
TBPToken<T>* TBPLexer<T>::readToken() {
    if (!top) return nullptr;
    if ((mode & BPLEX_LINE_START_HOOK) && (!top->cursor || top->atTextStart())) onLineStart();
    for (;;) {
        if (!skipIgnored()) {
            if (sources.count() < 2) {
                fileOrigin = *top;
                return produce(T(BPTOKEN_EOF), fileOrigin, 0);
            }
            popSource();
            continue;
        }
        sourceChanged = false;
        tokenStart = *top;
        if (top->source->isFile()) fileOrigin = *top;
        pendingError = 0;
        T type = scanToken();
        if (isDropped(type)) continue;
        const BPSourcePosition& start = tokenStart;
        uint32_t length = sourceChanged || !top || top->source.get() != start.source.get()
                              ? uint32_t(start.source->end - start.cursor)
                              : uint32_t(top->cursor - start.cursor);
        return produce(type, start, length);
    }
}

template <class T>
TBPToken<T>* TBPLexer<T>::produce(T type, const BPSourcePosition& start, uint32_t length) {
    Token* token = this->takePooledToken();
    if (token) token->reinitialize(type, start, length, fileOrigin);
    else token = makeToken(type, start, length, fileOrigin);
    if (!token) return nullptr;
    if (!(mode & BPLEX_QUIET) && (pendingWarning || pendingError)) {
        BPSourcePosition here;
        if (top) here = *top;
        if (pendingWarning) token->logWarning(&here, pendingWarning);
        if (pendingError) token->logError(&here, pendingError);
    }
    pendingWarning = 0;
    pendingError = 0;
    return token;
}
