// A small lexer for tests of the framework: words, blanks, line ends, comments, the backslash,
// `#`, and single punctuation characters. Enough to drive token streams over real text before
// the C and C++ lexer exists.
#pragma once

#include "CPParseNodeType.h"
#include "TBPLexer.h"

enum TestTokenType : int {
    TT_WORD = CPT_IDENTIFIER,
    TT_PUNCT = 150,
    TT_TRIGGER_ERROR = 151,    // "!!" sets a pending error
    TT_TRIGGER_WARNING = 152,  // "??" sets a pending warning
};

enum { TEST_LEX_ERROR = -8007, TEST_LEX_WARNING = -8006 };

class TestLexer : public TBPLexer<CPParseNodeType> {
public:
    explicit TestLexer(const BPSourceHandle& source, int mode = 0)
        : TBPLexer<CPParseNodeType>(source, mode) {}

    CPParseNodeType scanToken() override;
    int onLineStart() override {
        ++lineStarts;
        return CPT_NEWLINE;
    }
    int makeTokenCalls = 0;
    int lineStarts = 0;

    Token* makeToken(CPParseNodeType type, const BPSourcePosition& position, uint32_t length,
                     const BPSourcePosition& filePosition) override {
        ++makeTokenCalls;
        return TBPLexer<CPParseNodeType>::makeToken(type, position, length, filePosition);
    }

private:
    CPParseNodeType scanBlockComment();
    CPParseNodeType scanLineEnd();
};

// A lexer over text, for tests that want a counted source in one line.
BPSourceHandle testText(const char* text, unsigned length, const char* fileName = "test.c");
inline BPSourceHandle testText(const char* text, const char* fileName = "test.c") {
    return testText(text, unsigned(__builtin_strlen(text)), fileName);
}
