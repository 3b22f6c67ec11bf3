#include "CPScanner.h"

#include <cstring>

namespace {

#include "CPKeywords.inc"

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isOctal(char c) { return c >= '0' && c <= '7'; }
bool isHex(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\f' || c == '\v'; }
bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

// Scanning state with the character tests the routines below share.
struct Scan {
    CPScanCursor& s;
    const char*& p;
    explicit Scan(CPScanCursor& scan) : s(scan), p(scan.cursor) {}

    bool atEnd() const { return p >= s.end; }
    // The character i places ahead, or 0 past the end.
    char at(int i) const { return p + i < s.end ? p[i] : 0; }
    int garbage(int taken) {
        p += taken;
        s.pendingError = qbmsg::StrayCharacter;
        return CPT_GARBAGE_CHAR;
    }
    // Takes a line end, a carriage return and line feed counting as one.
    void takeLineEnd() {
        if (*p == '\r' && at(1) == '\n') ++p;
        ++p;
        ++s.line;
    }
    void takeDigits() {
        while (isDigit(*p)) ++p;
    }
    void takeHexDigits(int most) {
        for (int i = 0; i < most && isHex(*p); ++i) ++p;
    }
    bool isTrigraph(char third) const { return at(0) == '?' && at(1) == '?' && at(2) == third; }

    int identifier();
    int word();
    int prefixed(int stringKind, int charKind);
    int literal(char close, int kind);
    void escape();
    int lineComment();
    int blockComment();
    int leadingZero();
    int decimal();
    int floating(bool hex);
    int suffix();
    int punctuator(char c);
    int trigraph();
    int pound(int taken);
    int orBar(int taken);
    int percent();
    int less();
    int greater();
    int dot();
};

// identifier: ( _ $ letter digit | \u hex... | \U hex... )+
int Scan::identifier() {
    for (;;) {
        while (cpIsIdentifierChar(uint8_t(*p))) ++p;
        if (*p == '\\' && (at(1) == 'u' || at(1) == 'U')) {
            p += 2;
            while (isHex(*p)) ++p;
            continue;
        }
        return CPT_IDENTIFIER;
    }
}

// A keyword is a whole run of identifier characters; otherwise the scan goes on as an identifier.
int Scan::word() {
    const char* start = p;
    while (cpIsIdentifierChar(uint8_t(*p))) ++p;
    int kind = keywordKind(start, unsigned(p - start));
    return kind == CPT_IDENTIFIER ? identifier() : kind;
}

// L"..." L'...' L#  and  S"..." S#: p is on the letter.
int Scan::prefixed(int stringKind, int charKind) {
    char next = at(1);
    if (next == '"') {
        p += 2;
        return literal('"', stringKind);
    }
    if (next == '\'' && charKind) {
        p += 2;
        return literal('\'', charKind);
    }
    if (next == '#') {
        if (at(2) == '#') {  // L##x pastes: the letter alone is a name
            ++p;
            return CPT_IDENTIFIER;
        }
        p += 2;
        return CPT_POUND;
    }
    return word();
}

// One escape, p on the backslash. Escapes are skipped, never decoded or checked.
void Scan::escape() {
    char c = at(1);
    if (isLineEnd(c)) {
        ++p;
        takeLineEnd();
        return;
    }
    if (p + 1 >= s.end) {  // a backslash right before the end stands alone
        ++p;
        return;
    }
    p += 2;
    if (isOctal(c)) {
        for (int i = 1; i < 3 && isOctal(*p) && p < s.end; ++i) ++p;
    } else if (c == 'U') {
        takeHexDigits(8);
    } else if (c == 'u') {
        takeHexDigits(4);
    } else if (c == 'x') {
        while (isHex(*p)) ++p;
    }
}

// string-literal and character-literal, p behind the opening quote.
int Scan::literal(char close, int kind) {
    for (;;) {
        char c = *p;
        if (c == close) {
            ++p;
            return kind;
        }
        if (isLineEnd(c) || atEnd()) {
            s.pendingError = qbmsg::UnclosedLiteral;
            return kind;
        }
        if (c == '\\')
            escape();
        else
            ++p;
    }
}

// p behind the //. A backslash before a line end continues the comment.
int Scan::lineComment() {
    for (;;) {
        while (*p && !isLineEnd(*p) && *p != '\\') ++p;
        if (*p == '\\') {
            if (!isLineEnd(at(1))) {
                ++p;
                continue;
            }
            ++p;
            takeLineEnd();
            while (isBlank(*p)) ++p;
            if (*p != '/' && !isLineEnd(*p)) s.pendingWarning = qbmsg::CommentRunsOn;
            continue;
        }
        if (*p == 0 && !atEnd()) {  // a zero byte inside the comment
            ++p;
            continue;
        }
        return CPT_LINE_COMMENT;
    }
}

// p behind the /*. Counts every line feed, and every carriage return no line feed follows.
int Scan::blockComment() {
    for (;;) {
        char c = *p;
        if (c == '*' && at(1) == '/') {
            p += 2;
            return CPT_BLOCK_COMMENT;
        }
        if (atEnd()) {
            s.pendingError = qbmsg::UnclosedComment;
            return CPT_BLOCK_COMMENT;
        }
        if (c == '\n' || (c == '\r' && at(1) != '\n')) ++s.line;
        ++p;
    }
}

// p behind the digits of a whole number.
int Scan::suffix() {
    char c = *p;
    if (c == 'L' || c == 'l') {
        ++p;
        if (*p == 'L' || *p == 'l' || *p == 'U' || *p == 'u') ++p;
        return CPT_LONG;
    }
    if (c == 'U' || c == 'u') {
        char n = at(1);
        if (n == 'L' || n == 'l') {
            p += 2;
            if (*p == 'L' || *p == 'l') ++p;
            return CPT_LONG;
        }
        ++p;
        if (n != 'I' && n != 'i') return CPT_INTEGER;
        c = n;
    }
    if (c == 'I' || c == 'i') {
        char d1 = at(1), d2 = at(2);
        if ((d1 == '1' && d2 == '6') || (d1 == '3' && d2 == '2')) {
            p += 3;
            return CPT_INTEGER;
        }
        if (d1 == '6' && d2 == '4') {
            p += 3;
            return CPT_LONG;
        }
        if (d1 == '8') {
            p += 2;
            return CPT_INTEGER;
        }
    }
    return CPT_INTEGER;
}

// p at the fraction's dot or the exponent mark.
int Scan::floating(bool hex) {
    if (*p == '.') ++p;
    if (hex)
        while (isHex(*p)) ++p;
    else
        takeDigits();
    char mark = *p;
    if (hex ? (mark == 'p' || mark == 'P') : (mark == 'e' || mark == 'E')) {
        ++p;
        if (*p == '+' || *p == '-') ++p;
        takeDigits();  // the exponent is decimal, in hex numbers too
    }
    if (*p == 'l' || *p == 'L') {
        ++p;
        return CPT_LONG_DOUBLE;
    }
    if (*p == 'f' || *p == 'F') {
        ++p;
        return CPT_FLOAT;
    }
    return CPT_DOUBLE;
}

// p on the 0. An octal run stops at 8, 9 and a dot: 09 is two numbers, 01.5 is 01 and .5.
int Scan::leadingZero() {
    ++p;
    char c = *p;
    if (c == '.' || c == 'e' || c == 'E') return floating(false);
    if (isOctal(c)) {
        while (isOctal(*p)) ++p;
    } else if (c == 'x' || c == 'X') {
        ++p;
        while (isHex(*p)) ++p;
        if (*p == '.' || *p == 'p' || *p == 'P') return floating(true);
    }
    return suffix();
}

int Scan::decimal() {
    takeDigits();
    if (*p == '.' || *p == 'e' || *p == 'E') return floating(false);
    return suffix();
}

// # ## #??= ??= ??=# ??=??= : taken is the length of the first part.
int Scan::pound(int taken) {
    p += taken;
    if (*p == '#') {
        ++p;
        return CPT_POUND_POUND;
    }
    if (at(0) == '?' && at(1) == '?') {
        if (at(2) != '=') return garbage(2);
        p += 3;
        return CPT_POUND_POUND;
    }
    return CPT_POUND;
}

// | ??! and what may follow them: taken is the length of the first part.
int Scan::orBar(int taken) {
    p += taken;
    if (*p == '|') {
        ++p;
        return CPT_OR_OR;
    }
    if (*p == '=') {
        ++p;
        return CPT_OR_EQUALS;
    }
    if (at(0) == '?' && at(1) == '?') {
        if (at(2) != '!') return garbage(2);
        p += 3;
        return CPT_OR_OR;
    }
    return CPT_OR;
}

// p on the first ?; only ?? followed by one of !'()-/<=> makes a trigraph.
int Scan::trigraph() {
    if (at(1) != '?') {
        ++p;
        return CPT_QUESTION;
    }
    switch (at(2)) {
    case '<': p += 3; return CPT_LEFT_BRACE;
    case '>': p += 3; return CPT_RIGHT_BRACE;
    case '(': p += 3; return CPT_LEFT_BRACKET;
    case ')': p += 3; return CPT_RIGHT_BRACKET;
    case '-': p += 3; return CPT_TILDE;
    case '/': p += 3; return CPT_BACKSLASH;
    case '=': return pound(3);
    case '!': return orBar(3);
    case '\'':
        p += 3;
        if (*p == '=') {
            ++p;
            return CPT_CAROT_EQUALS;
        }
        return CPT_CAROT;
    default:
        ++p;
        return CPT_QUESTION;
    }
}

// % %= %> %: %:%: ; %:: is a percent followed by ::.
int Scan::percent() {
    char n = at(1);
    if (n == ':') {
        if (at(2) == '%' && at(3) == ':') {
            p += 4;
            return CPT_POUND_POUND;
        }
        if (at(2) == ':') {
            ++p;
            return CPT_PERCENT;
        }
        p += 2;
        return CPT_POUND;
    }
    p += n == '=' || n == '>' ? 2 : 1;
    return n == '=' ? CPT_PERCENT_EQUALS : (n == '>' ? CPT_RIGHT_BRACE : CPT_PERCENT);
}

// < << <<= <= <? <: <% ; <:: not followed by > is a less-than, so that a<::b> works.
int Scan::less() {
    char n = at(1);
    switch (n) {
    case '<':
        if (at(2) == '=') {
            p += 3;
            return CPT_LT_LT_EQUALS;
        }
        p += 2;
        return CPT_LT_LT;
    case '=': p += 2; return CPT_LT_EQUALS;
    case '?': p += 2; return CPT_LT_QUESTION;
    case '%': p += 2; return CPT_LEFT_BRACE;
    case ':':
        if (at(2) == ':' && at(3) != '>') {
            ++p;
            return CPT_LT;
        }
        p += 2;
        return CPT_LEFT_BRACKET;
    default: ++p; return CPT_LT;
    }
}

int Scan::greater() {
    char n = at(1);
    if (n == '>') {
        if (at(2) == '=') {
            p += 3;
            return CPT_GT_GT_EQUALS;
        }
        p += 2;
        return CPT_GT_GT;
    }
    if (n == '=' || n == '?') {
        p += 2;
        return n == '=' ? CPT_GT_EQUALS : CPT_GT_QUESTION;
    }
    ++p;
    return CPT_GT;
}

// . .* ... and a dot that starts a number. Two dots are a dot and another token.
int Scan::dot() {
    char n = at(1);
    if (isDigit(n)) return floating(false);
    if (n == '*') {
        p += 2;
        return CPT_DOT_STAR;
    }
    if (n == '.' && at(2) == '.') {
        p += 3;
        return CPT_ELLIPSE;
    }
    ++p;
    return CPT_DOT;
}

// Punctuators whose spelling starts with c, longest match first.
int Scan::punctuator(char c) {
    char n = at(1);
    auto take = [&](int count, int kind) {
        p += count;
        return kind;
    };
    switch (c) {
    case '{': return take(1, CPT_LEFT_BRACE);
    case '}': return take(1, CPT_RIGHT_BRACE);
    case '[': return take(1, CPT_LEFT_BRACKET);
    case ']': return take(1, CPT_RIGHT_BRACKET);
    case '(': return take(1, CPT_LEFT_PAREN);
    case ')': return take(1, CPT_RIGHT_PAREN);
    case ';': return take(1, CPT_SEMICOLON);
    case ',': return take(1, CPT_COMMA);
    case '~': return take(1, CPT_TILDE);
    case '?': return trigraph();
    case '#': return pound(1);
    case '|': return orBar(1);
    case '%': return percent();
    case '<': return less();
    case '>': return greater();
    case '.': return dot();
    case ':': return n == ':' ? take(2, CPT_COLON_COLON) : (n == '>' ? take(2, CPT_RIGHT_BRACKET)
                                                                   : take(1, CPT_COLON));
    case '+': return n == '+' ? take(2, CPT_PLUS_PLUS) : (n == '=' ? take(2, CPT_PLUS_EQUALS)
                                                                 : take(1, CPT_PLUS));
    case '-':
        if (n == '>') return at(2) == '*' ? take(3, CPT_DASH_GT_STAR) : take(2, CPT_DASH_GT);
        return n == '-' ? take(2, CPT_MINUS_MINUS) : (n == '=' ? take(2, CPT_MINUS_EQUALS)
                                                             : take(1, CPT_MINUS));
    case '*': return n == '=' ? take(2, CPT_STAR_EQUALS) : take(1, CPT_STAR);
    case '/':
        if (n == '/' || n == '*') {
            p += 2;
            return n == '/' ? lineComment() : blockComment();
        }
        return n == '=' ? take(2, CPT_SLASH_EQUALS) : take(1, CPT_SLASH);
    case '^': return n == '=' ? take(2, CPT_CAROT_EQUALS) : take(1, CPT_CAROT);
    case '&': return n == '&' ? take(2, CPT_AND_AND) : (n == '=' ? take(2, CPT_AND_EQUALS)
                                                                : take(1, CPT_AND));
    case '!': return n == '=' ? take(2, CPT_NOT_EQUALS) : take(1, CPT_NOT);
    case '=': return n == '=' ? take(2, CPT_EQUALS_EQUALS) : take(1, CPT_EQUALS);
    default: return garbage(1);
    }
}

}  // namespace

int cpScanToken(CPScanCursor& scan) {
    Scan s(scan);
    const char*& p = s.p;
    char c = *p;
    switch (c) {
    case 0:
        if (s.atEnd()) return CPT_EOF;
        return s.garbage(1);
    case ' ': case '\t': case '\f': case '\v': case 26:
        ++p;
        while (isBlank(*p)) ++p;
        return CPT_WHITESPACE;
    case '\n': case '\r':
        s.takeLineEnd();
        return CPT_NEWLINE;
    case '"': ++p; return s.literal('"', CPT_STRING);
    case '\'': ++p; return s.literal('\'', CPT_CHARACTER);
    case 'L': return s.prefixed(CPT_WIDE_STRING, CPT_WIDE_CHARACTER);
    case 'S': return s.prefixed(CPT_STRING, 0);
    case '0': return s.leadingZero();
    case '1': case '2': case '3': case '4': case '5': case '6': case '7': case '8': case '9':
        return s.decimal();
    case '\\':
        if (s.at(1) == 'u' || s.at(1) == 'U') return s.identifier();
        ++p;
        return CPT_BACKSLASH;
    default:
        break;
    }
    if ((c >= 'a' && c <= 'z') || c == '_') return s.word();
    if (c >= 'A' && c <= 'Z') return s.identifier();
    return s.punctuator(c);
}
