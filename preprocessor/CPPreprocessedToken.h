// CPPreprocessedToken: the only kind of token the parser sees. It wraps one leaf of the output
// tree (sourceToken) and remembers the output node that held it, so that a refactoring can get
// from a parsed token to the token that was written: getWrittenToken. Setting its spelling sets
// the wrapped leaf's spelling, and that leaf is the very token of the source tree (the macro
// argument at the call site, or the body token inside the #define).
//
// The framework's spelling and whitespace operations aren't virtual; these hide them, so call
// them through a CPPreprocessedToken pointer. getText, which is virtual, forwards as well.
#pragma once

#include "CPPreprocessorToken.h"

class CPPreprocessorFilter;

class CPPreprocessedToken : public CPPreprocessorToken {
public:
    CPPreprocessedToken(CPPreprocessorToken* source, CPPreprocessorFilter* owner, unsigned index);
    ~CPPreprocessedToken() override;

    Node* clone() const override;
    int getText(quernbase::QBString& out) const override;
    CPPreprocessorUnit* getOwningUnit() override;

    quernbase::QBString getSpelling();
    int setSpelling(const quernbase::QBString& spelling);
    int setSpelling(const char* chars, unsigned count);
    int setSpelling(const char* chars);
    // The written token behind this one, or the wrapped leaf when there is no owner to ask.
    Token* getWrittenToken() override;

    // Leading whitespace: the own list when it has any, else the written token's.
    unsigned getWhitespaceCount();
    Token* getWhitespace(unsigned i);
    int addWhitespace(const TokenList& tokens);
    int insertWhitespace(Token* token, int index);
    int removeWhitespace(unsigned i);
    void clearWhitespace();

    CPPreprocessorToken* getSourceToken() const { return sourceToken; }
    CPPreprocessorFilter* getOwnerNode() const { return ownerNode; }
    unsigned getIndexInOwner() const { return indexInOwner; }
    void setSourceToken(CPPreprocessorToken* token);
    void setSourceToken(CPPreprocessorToken* token, unsigned index);
    void setOwnerNode(CPPreprocessorFilter* node);

private:
    CPPreprocessorToken* sourceToken = nullptr;  // counted
    CPPreprocessorFilter* ownerNode = nullptr;   // counted
    unsigned indexInOwner = 0;

    // The token whose whitespace list the whitespace operations use.
    Token* whitespaceHolder();
};
