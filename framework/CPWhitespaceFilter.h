// The filter between the lexer and the preprocessor. It takes blanks, line ends, comments and
// line continuations out of the stream and hangs them on the next real token as its whitespace,
// so that the reader never sees them and the tree still writes them back. Line ends that matter
// to the preprocessor stay real tokens: the one that ends a directive, and the one in front of a
// line that starts with `#`. Whitespace that no token follows stays with the end token.
#pragma once

#include "CPParseNodeType.h"
#include "TBPTokenSource.h"

class CPWhitespaceFilter : public TBPTokenFilter<CPParseNodeType> {
public:
    explicit CPWhitespaceFilter(TBPTokenSource<CPParseNodeType>* source);
    ~CPWhitespaceFilter() override;

    Token* readToken() override;
    bool isInDirective() const { return inDirective; }

private:
    bool inDirective = false;
    TokenList pending;

    void keep(Token* token);
    void dropPending();
    bool directiveFollows();
};
