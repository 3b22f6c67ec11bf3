#include "CPWhitespaceFilter.h"

CPWhitespaceFilter::CPWhitespaceFilter(TBPTokenSource<CPParseNodeType>* source)
    : TBPTokenFilter<CPParseNodeType>(source) {}

CPWhitespaceFilter::~CPWhitespaceFilter() { dropPending(); }

void CPWhitespaceFilter::keep(Token* token) {
    if (token && pending.add(token) == 0) token->addRef();
}

// The pending tokens now belong to the token they were given to; one that found no home goes.
void CPWhitespaceFilter::dropPending() {
    for (Token* token : pending)
        if (token->releaseKeep() == 0) delete token;
    pending.clear();
}

// Looks past blanks and block comments on the next line for a `#`, reading nothing for good.
bool CPWhitespaceFilter::directiveFollows() {
    if (upstream->mark() != 0) return false;
    Token* token = next();
    while (token && (token->getType() == CPT_WHITESPACE || token->getType() == CPT_BLOCK_COMMENT))
        token = next();
    bool found = token && token->getType() == CPT_POUND;
    upstream->rollback();
    return found;
}

TBPToken<CPParseNodeType>* CPWhitespaceFilter::readToken() {
    if (!upstream) return nullptr;
    dropPending();
    Token* found = nullptr;
    while (!found) {
        Token* token = next();
        if (!token) break;
        if (token->getType() == CPT_EOS) token->setType(CPT_NEWLINE);
        switch (token->getType()) {
        case CPT_WHITESPACE:
        case CPT_LINE_COMMENT:
        case CPT_BLOCK_COMMENT:
            keep(token);
            break;
        case CPT_NEWLINE:
            if (inDirective) {
                inDirective = false;
                found = token;
            } else if (directiveFollows()) {
                found = token;
            } else {
                keep(token);
            }
            break;
        case CPT_POUND:
            inDirective = true;
            found = token;
            break;
        case CPT_BACKSLASH:
            // A line continuation, or a stray backslash: either way it rides as whitespace.
            keep(token);
            if (upstream->peekType(1) == CPT_NEWLINE) keep(next());
            break;
        default:
            found = token;
        }
    }
    if (found && pending.count() > 0) found->addWhitespace(pending);
    dropPending();
    return found;
}
