// Reads the leaves of a C or C++ tree as a token stream. The preprocessor's output source wraps
// each leaf on the way (wrapToken), so that the parser's tokens lead back to what was written.
#pragma once

#include "CPParseNodeType.h"
#include "TBPTokenSource.h"

class CPTreeTokenSource : public TBPTreeTokenSource<CPParseNodeType> {
public:
    explicit CPTreeTokenSource(Node* root) : TBPTreeTokenSource<CPParseNodeType>(root) {}

    Token* readToken() override {
        Token* leaf = nextLeaf();
        return leaf ? wrapToken(leaf) : nullptr;
    }

protected:
    // The token handed out for a leaf; the leaf itself unless a subclass wraps it.
    virtual Token* wrapToken(Token* leaf) { return leaf; }
};
