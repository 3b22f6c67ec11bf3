#include "TestLexer.h"

using quernbase::QBString;

BPSourceHandle testText(const char* text, unsigned length, const char* fileName) {
    BPSourceHandle handle;
    if (handle.setText(QBString(text, length)) != 0) return BPSourceHandle();
    handle->fileName = fileName;
    return handle;
}

CPParseNodeType TestLexer::scanLineEnd() {
    char c = currentChar();
    advance();
    if (c == '\r' && currentChar() == '\n' && !atEnd()) advance();
    countLine();
    return CPT_NEWLINE;
}

CPParseNodeType TestLexer::scanBlockComment() {
    skip2();
    while (!atEnd()) {
        char c = currentChar();
        if (c == '*' && peekChecked() == '/') {
            skip2();
            return CPT_BLOCK_COMMENT;
        }
        advance();
        if (c == '\n' || (c == '\r' && currentChar() != '\n')) countLine();
    }
    return CPT_BLOCK_COMMENT;
}

CPParseNodeType TestLexer::scanToken() {
    char c = currentChar();
    if (c == ' ' || c == '\t' || c == '\f' || c == '\v') {
        while (!atEnd() && (currentChar() == ' ' || currentChar() == '\t' ||
                            currentChar() == '\f' || currentChar() == '\v'))
            advance();
        return CPT_WHITESPACE;
    }
    if (c == '\n' || c == '\r') return scanLineEnd();
    if (c == '/' && peekChecked() == '/') {
        while (!atEnd() && currentChar() != '\n' && currentChar() != '\r') advance();
        return CPT_LINE_COMMENT;
    }
    if (c == '/' && peekChecked() == '*') return scanBlockComment();
    if (isIdentifierChar((unsigned char)c)) {
        while (!atEnd() && isIdentifierChar((unsigned char)currentChar())) advance();
        return CPParseNodeType(TT_WORD);
    }
    if (c == '!' && peekChecked() == '!') {
        skip2();
        pendingError = TEST_LEX_ERROR;
        return CPParseNodeType(TT_TRIGGER_ERROR);
    }
    if (c == '?' && peekChecked() == '?') {
        skip2();
        pendingWarning = TEST_LEX_WARNING;
        return CPParseNodeType(TT_TRIGGER_WARNING);
    }
    advance();
    if (c == '#') return CPT_POUND;
    if (c == '\\') return CPT_BACKSLASH;
    if (c == 0) return CPT_GARBAGE_CHAR;
    return CPParseNodeType(TT_PUNCT);
}
