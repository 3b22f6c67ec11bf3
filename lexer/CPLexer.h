// CPLexer: the C and C++ lexer on the framework's lexer base. The recognition of one token is
// CPScanner's; this class ties it to the source stack, the mode word and token making.
//
// It interprets nothing: comments, blanks, line ends and backslashes come out as tokens, so that
// the whitespace filter can hang them on the next token and the file can be written back byte
// for byte. Every keyword is a keyword in every file, unless the file is read as C: then the
// keywords that only C++ has are names, and C's `_Bool` is the boolean type's keyword.
#pragma once

#include "CPParseNodeType.h"
#include "TBPLexer.h"

class CPLexer : public TBPLexer<CPParseNodeType> {
public:
    // mode: 0 for a main file, 3 for a system header (blanks and comments worth nothing there).
    explicit CPLexer(const BPSourceHandle& source, int mode = 0);
    ~CPLexer() override;

    bool isIdentifierChar(int c) const override;
    Token* makeToken(CPParseNodeType type, const BPSourcePosition& position, uint32_t length,
                     const BPSourcePosition& filePosition) override;
    CPParseNodeType scanToken() override;

    // Before the first token: whether the text is C rather than C++.
    void setReadsC(bool c) { readsC = c; }
    bool getReadsC() const { return readsC; }

private:
    bool readsC = false;

    int kindInC(int kind, const char* start, const char* end) const;
};
