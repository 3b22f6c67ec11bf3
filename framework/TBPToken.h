// The leaf of the parse tree. The object the lexer made stays in the finished tree: it keeps a
// pointer and a length into its source text (copying its spelling only when asked), its
// position, and the whitespace and comments in front of it, so that the tree gives back the
// file byte for byte. A refactoring gives a token a new spelling in place.
#pragma once

#include <cstring>

#include "QBArray.h"
#include "TBPParseNode.h"

template <class T>
class TBPToken : public TBPParseNode<T> {
public:
    typedef TBPParseNode<T> Node;
    typedef quernbase::QBArray<TBPToken*> TokenList;

    TBPToken(T tokenType, const BPSourcePosition& where, uint32_t spellingLength,
             const BPSourcePosition& inFile)
        : Node(tokenType), length(spellingLength), position(where), filePosition(inFile) {}
    ~TBPToken() override {
        clearWhitespace();
        delete whitespace;
    }

    // Makes a pooled token new again: another place, no text, no whitespace, no messages.
    void reinitialize(T tokenType, const BPSourcePosition& where, uint32_t spellingLength,
                      const BPSourcePosition& inFile) {
        // The common case has nothing to free: test before each call, this runs per token.
        this->type = tokenType;
        this->parent = nullptr;
        this->dropAttributes();
        position = where;
        filePosition = inFile;
        length = spellingLength;
        if (!text.isNull()) text.makeNull();
        if (whitespace && whitespace->tokens.count()) clearWhitespace();
    }

    // The node interface.
    Node* clone() const override {
        TBPToken* copy = new (std::nothrow) TBPToken(this->type, position, length, filePosition);
        if (!copy || copyInto(copy) != 0) {
            delete copy;
            return nullptr;
        }
        return copy;
    }
    bool equals(const Node* other) const override {
        if (!other || other->getType() != this->type || !other->isToken()) return false;
        const TBPToken* token = static_cast<const TBPToken*>(other);
        return token->spellingLength() == spellingLength() &&
               (spellingLength() == 0 ||
                std::memcmp(token->spellingData(), spellingData(), spellingLength()) == 0);
    }
    const BPSourcePosition* getPosition() const override { return &position; }
    int printToString(quernbase::QBString& out, int indent, bool showWhitespace) override;
    int appendErrors(quernbase::QBString& out) const override {
        for (unsigned i = 0; i < getWhitespaceCount(); ++i)
            if (int rc = whitespace->tokens[i]->appendErrors(out)) return rc;
        return this->appendOwnErrors(out);
    }
    int getText(quernbase::QBString& out) const override {
        for (unsigned i = 0; i < getWhitespaceCount(); ++i)
            if (int rc = whitespace->tokens[i]->getText(out)) return rc;
        return out.append(spellingData(), spellingLength());
    }
    bool isToken() const override { return true; }
    bool isTree() const override { return false; }
    int collectErrors(TBPErrorLog<T>& log) const override {
        for (unsigned i = 0; i < getWhitespaceCount(); ++i)
            if (int rc = whitespace->tokens[i]->collectErrors(log); rc < 0) return rc;
        return Node::collectErrors(log);
    }

    // Spelling. The text is copied from the source only by getSpelling.
    quernbase::QBString getSpelling() {
        if (text.isNull()) text.set(spellingData(), spellingLength());
        return text;
    }
    quernbase::QBString getSpellingConst() const {
        return quernbase::QBString(spellingData(), spellingLength());
    }
    int getSpellingInto(quernbase::QBString& out) const {
        return out.set(spellingData(), spellingLength());
    }
    uint32_t getLength() const { return text.isNull() ? length : text.length(); }
    int setSpelling(const quernbase::QBString& spelling) {
        this->setModified();
        quernbase::QBString copy(spelling);
        if (int rc = copy.makeNotNull()) return rc;
        text = copy;
        length = text.length();
        return 0;
    }
    int setSpelling(const char* chars, unsigned count) {
        return setSpelling(quernbase::QBString(chars ? chars : "", chars ? count : 0));
    }
    int setSpelling(const char* chars) { return setSpelling(quernbase::QBString(chars ? chars : "")); }

    // Place.
    const BPSourcePosition& getFilePosition() const { return filePosition; }
    uint32_t getLine() const { return position.getLine(); }
    uint32_t getColumn(int tabSize) const { return position.getColumn(tabSize); }
    uint32_t getSeekPosition() const { return position.getSeekPosition(); }
    quernbase::QBString getFileName() const { return position.getFileName(); }
    bool isFirstOnLine() const {
        for (unsigned i = 0; i < getWhitespaceCount(); ++i)
            if (int(whitespace->tokens[i]->getType()) == BPTOKEN_NEWLINE) return true;
        const TBPToken* first = getWhitespaceCount() ? whitespace->tokens[0] : this;
        return first->position.isFirstOnLine();
    }

    // The token as the user wrote it, where this one came out of a macro; itself otherwise.
    virtual TBPToken* getWrittenToken() { return this; }

    // Whitespace: the blanks, line ends and comments in front of the token, each counted here.
    unsigned getWhitespaceCount() const { return whitespace ? whitespace->tokens.count() : 0; }
    TBPToken* getWhitespace(unsigned i) { return whitespace->tokens[i]; }
    const TBPToken* getWhitespaceConst(unsigned i) const { return whitespace->tokens[i]; }
    int addWhitespace(const TokenList& tokens) {
        for (TBPToken* token : tokens)
            if (int rc = insertWhitespace(token, -1)) return rc;
        return 0;
    }
    // A negative index appends.
    int insertWhitespace(TBPToken* token, int index) {
        if (!token) return qbmsg::BadArgument;
        if (!whitespace && !(whitespace = new (std::nothrow) Holder)) return qbmsg::OutOfMemory;
        int rc = index < 0 ? whitespace->tokens.add(token)
                           : whitespace->tokens.insertAt(unsigned(index), token);
        if (rc) return rc;
        token->addRef();
        token->setParent(this);
        return token->hasError() ? this->setErrorFlag(false) : 0;
    }
    int removeWhitespace(unsigned i) {
        if (i >= getWhitespaceCount()) return Node::ERR_BADINDEX;
        TBPToken* token = whitespace->tokens[i];
        whitespace->tokens.removeAt(i);
        letGo(token);
        return 0;
    }
    void clearWhitespace() {
        if (!whitespace) return;
        // From the end: removing the last item only shortens the list, and allocates nothing.
        for (unsigned n = whitespace->tokens.count(); n-- > 0;) {
            TBPToken* token = whitespace->tokens[n];
            whitespace->tokens.removeAt(n);
            letGo(token);
        }
    }
    // Shares other's whitespace tokens, each with a new count here.
    int copyWhitespace(const TBPToken* other) {
        if (!other || other == this) return 0;
        TokenList shared;
        for (unsigned i = 0; i < other->getWhitespaceCount(); ++i)
            if (int rc = shared.add(other->whitespace->tokens[i])) return rc;
        clearWhitespace();
        if (shared.count() == 0) return 0;
        if (!whitespace && !(whitespace = new (std::nothrow) Holder)) return qbmsg::OutOfMemory;
        whitespace->tokens = shared;
        if (whitespace->tokens.count() != shared.count()) return qbmsg::OutOfMemory;
        for (TBPToken* token : shared) token->addRef();
        return 0;
    }

    // The types a whitespace list holds.
    bool isWhitespaceType() const { return isWhitespaceType(this->type); }
    static bool isWhitespaceType(int t) {
        return t == BPTOKEN_EOS || t == BPTOKEN_WHITESPACE || t == BPTOKEN_NEWLINE ||
               t == BPTOKEN_LINE_COMMENT || t == BPTOKEN_BLOCK_COMMENT;
    }

protected:
    // Gives copy this token's text and clones of its whitespace: for subclasses' clone.
    int copyInto(TBPToken* copy) const {
        copy->text = text;
        copy->length = length;
        for (unsigned i = 0; i < getWhitespaceCount(); ++i) {
            Node* ws = whitespace->tokens[i]->clone();
            if (!ws) return qbmsg::OutOfMemory;
            if (int rc = copy->insertWhitespace(static_cast<TBPToken*>(ws), -1)) {
                delete ws;
                return rc;
            }
        }
        return 0;
    }

private:
    struct Holder : quernbase::QBMemory {
        TokenList tokens;
    };

    quernbase::QBString text;  // null until the spelling is asked for or set
    uint32_t length;
    BPSourcePosition position;
    BPSourcePosition filePosition;
    Holder* whitespace = nullptr;

    const char* spellingData() const {
        if (!text.isNull()) return text.get();
        return position.cursor ? position.cursor : "";
    }
    uint32_t spellingLength() const {
        if (!text.isNull()) return text.length();
        return position.cursor ? length : 0;
    }
    void letGo(TBPToken* token) {
        if (token->getParent() == this) token->setParent(nullptr);
        token->release();
    }
    static int appendPrintable(quernbase::QBString& out, const char* chars, uint32_t count);
};

template <class T>
int TBPToken<T>::appendPrintable(quernbase::QBString& out, const char* chars, uint32_t count) {
    static const char hex[] = "0123456789ABCDEF";
    for (uint32_t i = 0; i < count; ++i) {
        unsigned char c = static_cast<unsigned char>(chars[i]);
        int rc;
        switch (c) {
        case '\n': rc = out.append("\\n"); break;
        case '\r': rc = out.append("\\r"); break;
        case '\t': rc = out.append("\\t"); break;
        case '\\': rc = out.append("\\\\"); break;
        default:
            if (c >= 32 && c != 127) {
                rc = out.append(char(c));
            } else {
                char escaped[] = {'\\', 'x', hex[c >> 4], hex[c & 15]};
                rc = out.append(escaped, 4);
            }
        }
        if (rc) return rc;
    }
    return 0;
}

template <class T>
int TBPToken<T>::printToString(quernbase::QBString& out, int indent, bool showWhitespace) {
    quernbase::QBString margin("");
    if (int rc = margin.pad(unsigned(indent > 0 ? indent : 0))) return rc;
    if (showWhitespace && getWhitespaceCount() > 0) {
        out += margin;
        out += "( WHITESPACE\n";
        for (unsigned i = 0; i < getWhitespaceCount(); ++i)
            if (int rc = whitespace->tokens[i]->printToString(out, indent + 2, false)) return rc;
        out += margin;
        out += ")\n";
    }
    const char* name = this->getTypeName();
    quernbase::QBString label(name ? name : "CUSTOM");
    label += "=";
    label.append(int(this->type));
    label.pad(20);
    out += margin;
    out += label;
    out += "   ";
    if (int rc = appendPrintable(out, spellingData(), spellingLength())) return rc;
    return out.append('\n');
}
