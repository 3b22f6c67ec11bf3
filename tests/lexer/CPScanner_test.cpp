#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "CPScanner.h"

namespace {
struct Tok {
    int kind;
    std::string text;
    int error;
    int warning;
};

// Scans the whole text; fails the test if a token takes no byte.
std::vector<Tok> scanAll(const std::string& text, uint32_t* lines = nullptr) {
    CPScanCursor s{text.c_str(), text.c_str() + text.size(), 0, 0, 0};
    std::vector<Tok> out;
    for (;;) {
        const char* start = s.cursor;
        s.pendingError = s.pendingWarning = 0;
        int kind = cpScanToken(s);
        if (kind == CP_EOF) break;
        EXPECT_GT(s.cursor, start) << "no progress at offset " << (start - text.c_str());
        if (s.cursor <= start) break;
        out.push_back({kind, std::string(start, size_t(s.cursor - start)), s.pendingError,
                       s.pendingWarning});
    }
    if (lines) *lines = s.line;
    return out;
}

// Kinds of the tokens that are not blanks.
std::vector<int> kinds(const std::string& text) {
    std::vector<int> k;
    for (auto& t : scanAll(text))
        if (t.kind != CP_WHITESPACE) k.push_back(t.kind);
    return k;
}

std::string joined(const std::vector<Tok>& toks) {
    std::string s;
    for (auto& t : toks) s += t.text;
    return s;
}
}  // namespace

TEST(CPScannerNumbers, LeadingZeroAndExponents) {
    EXPECT_EQ(kinds("09"), (std::vector<int>{CP_INTEGER, CP_INTEGER}));
    EXPECT_EQ(kinds("0x"), (std::vector<int>{CP_INTEGER}));
    auto t = scanAll("1e+;");
    ASSERT_EQ(t.size(), 2u);
    EXPECT_EQ(t[0].kind, CP_DOUBLE);
    EXPECT_EQ(t[0].text, "1e+");
    auto oct = scanAll("01.5");
    ASSERT_EQ(oct.size(), 2u);
    EXPECT_EQ(oct[0].text, "01");
    EXPECT_EQ(oct[1].kind, CP_DOUBLE);
    EXPECT_EQ(kinds("0x1.8p3f 0x1p-2 .5L 1.f 0.5 0e1"),
              (std::vector<int>{CP_FLOAT, CP_DOUBLE, CP_LONG_DOUBLE, CP_FLOAT, CP_DOUBLE,
                                CP_DOUBLE}));
}

TEST(CPScannerNumbers, Suffixes) {
    EXPECT_EQ(kinds("1i64"), (std::vector<int>{CP_LONG}));
    EXPECT_EQ(kinds("1ui8"), (std::vector<int>{CP_INTEGER}));
    EXPECT_EQ(kinds("1i65"), (std::vector<int>{CP_INTEGER, CP_IDENTIFIER}));
    EXPECT_EQ(scanAll("1i65")[1].text, "i65");
    EXPECT_EQ(kinds("10UL 10ull 10LU 10l 7u 8i32 9I16"),
              (std::vector<int>{CP_LONG, CP_LONG, CP_LONG, CP_LONG, CP_INTEGER, CP_INTEGER,
                                CP_INTEGER}));
    EXPECT_EQ(scanAll("10ull")[0].text, "10ull");
    EXPECT_EQ(kinds("12abc"), (std::vector<int>{CP_INTEGER, CP_IDENTIFIER}));
}

TEST(CPScannerPunctuators, DigraphsAndTheirExceptions) {
    EXPECT_EQ(kinds("x<::y>::z"),
              (std::vector<int>{CP_IDENTIFIER, CP_LT, CP_COLON_COLON, CP_IDENTIFIER, CP_GT,
                                CP_COLON_COLON, CP_IDENTIFIER}));
    EXPECT_EQ(kinds("a<::>"),
              (std::vector<int>{CP_IDENTIFIER, CP_LEFT_BRACKET, CP_RIGHT_BRACKET}));
    EXPECT_EQ(kinds("%:%:"), (std::vector<int>{CP_POUND_POUND}));
    EXPECT_EQ(kinds("%:%"), (std::vector<int>{CP_POUND, CP_PERCENT}));
    EXPECT_EQ(kinds("%::"), (std::vector<int>{CP_PERCENT, CP_COLON_COLON}));
    EXPECT_EQ(kinds("<% %> <: :>"),
              (std::vector<int>{CP_LEFT_BRACE, CP_RIGHT_BRACE, CP_LEFT_BRACKET,
                                CP_RIGHT_BRACKET}));
}

TEST(CPScannerPunctuators, LongestMatch) {
    EXPECT_EQ(kinds("->* -> -- -= <<= >>= ... .. .* <? >? :: ##"),
              (std::vector<int>{CP_DASH_GT_STAR, CP_DASH_GT, CP_MINUS_MINUS, CP_MINUS_EQUALS,
                                CP_LT_LT_EQUALS, CP_GT_GT_EQUALS, CP_ELLIPSE, CP_DOT, CP_DOT,
                                CP_DOT_STAR, CP_LT_QUESTION, CP_GT_QUESTION, CP_COLON_COLON,
                                CP_POUND_POUND}));
    EXPECT_EQ(kinds("a>>=b&&c||d^=e!=f==g"),
              (std::vector<int>{CP_IDENTIFIER, CP_GT_GT_EQUALS, CP_IDENTIFIER, CP_AND_AND,
                                CP_IDENTIFIER, CP_OR_OR, CP_IDENTIFIER, CP_CAROT_EQUALS,
                                CP_IDENTIFIER, CP_NOT_EQUALS, CP_IDENTIFIER, CP_EQUALS_EQUALS,
                                CP_IDENTIFIER}));
}

TEST(CPScannerPunctuators, Trigraphs) {
    EXPECT_EQ(kinds("??=define X"), (std::vector<int>{CP_POUND, CP_kw_define, CP_IDENTIFIER}));
    EXPECT_EQ(kinds("a??!??!b"), (std::vector<int>{CP_IDENTIFIER, CP_OR_OR, CP_IDENTIFIER}));
    EXPECT_EQ(kinds("a ? ? b"),
              (std::vector<int>{CP_IDENTIFIER, CP_QUESTION, CP_QUESTION, CP_IDENTIFIER}));
    EXPECT_EQ(kinds("??< ??> ??( ??) ??- ??/ ??' ??'= ??! ??!= |??! ??=??= #??= ??=#"),
              (std::vector<int>{CP_LEFT_BRACE, CP_RIGHT_BRACE, CP_LEFT_BRACKET,
                                CP_RIGHT_BRACKET, CP_TILDE, CP_BACKSLASH, CP_CAROT,
                                CP_CAROT_EQUALS, CP_OR, CP_OR_EQUALS, CP_OR_OR, CP_POUND_POUND,
                                CP_POUND_POUND, CP_POUND_POUND}));
    auto bad = scanAll("#??x");
    ASSERT_FALSE(bad.empty());
    EXPECT_EQ(bad[0].kind, CP_GARBAGE_CHAR);
    EXPECT_EQ(bad[0].error, -8006);
    EXPECT_EQ(kinds("\"??=\""), (std::vector<int>{CP_STRING}));  // not inside literals
}

TEST(CPScannerWords, KeywordsAliasesAndNames) {
    EXPECT_EQ(kinds("__const__ __const_ define __asm __asm__ __inline__ __volatile"),
              (std::vector<int>{CP_kw_const, CP_IDENTIFIER, CP_kw_define, CP_kw___asm,
                                CP_kw_asm, CP_kw_inline, CP_kw_volatile}));
    EXPECT_EQ(kinds("int integer in __cplusplus __STDC_VERSION__ __LINE__x"),
              (std::vector<int>{CP_kw_int, CP_IDENTIFIER, CP_IDENTIFIER, CP_kw___cplusplus,
                                CP_kw___STDC_VERSION__, CP_IDENTIFIER}));
    EXPECT_EQ(kinds("a$b $a"), (std::vector<int>{CP_IDENTIFIER, CP_GARBAGE_CHAR,
                                                   CP_IDENTIFIER}));
    auto ucn = scanAll("caf\\u00e9x \\U0001F600");
    EXPECT_EQ(ucn[0].text, "caf\\u00e9x");
    EXPECT_EQ(ucn[2].kind, CP_IDENTIFIER);
    EXPECT_EQ(kinds("int\\u00e9"), (std::vector<int>{CP_kw_int, CP_IDENTIFIER}));
}

TEST(CPScannerWords, PrefixedLiteralsAndPounds) {
    EXPECT_EQ(kinds("L\"x\" S\"x\" Lx L'a' S'a'"),
              (std::vector<int>{CP_WIDE_STRING, CP_STRING, CP_IDENTIFIER, CP_WIDE_CHARACTER,
                                CP_IDENTIFIER, CP_CHARACTER}));
    auto pound = scanAll("L#x");
    EXPECT_EQ(pound[0].kind, CP_POUND);
    EXPECT_EQ(pound[0].text, "L#");
    auto paste = scanAll("L##x");
    EXPECT_EQ(paste[0].kind, CP_IDENTIFIER);
    EXPECT_EQ(paste[0].text, "L");
    EXPECT_EQ(paste[1].kind, CP_POUND_POUND);
}

TEST(CPScannerLiterals, ContinuedAndUnterminated) {
    uint32_t lines = 0;
    auto cont = scanAll("\"ab\\\ncd\" x", &lines);
    EXPECT_EQ(cont[0].kind, CP_STRING);
    EXPECT_EQ(cont[0].text, "\"ab\\\ncd\"");
    EXPECT_EQ(lines, 1u);
    auto open = scanAll("\"abc\nx");
    EXPECT_EQ(open[0].kind, CP_STRING);
    EXPECT_EQ(open[0].text, "\"abc");
    EXPECT_EQ(open[0].error, -8008);
    EXPECT_EQ(open[1].kind, CP_NEWLINE);
    auto esc = scanAll("'\\'' \"\\\"\" '\\x41' '\\0777' \"\\u12345\"");
    EXPECT_EQ(esc[0].text, "'\\''");
    EXPECT_EQ(esc[2].text, "\"\\\"\"");
    EXPECT_EQ(esc[4].text, "'\\x41'");
    EXPECT_EQ(esc[6].text, "'\\0777'");  // the fourth octal digit is a plain character
    auto atEnd = scanAll("'\\");
    EXPECT_EQ(atEnd[0].error, -8008);
    EXPECT_EQ(joined(atEnd), "'\\");
}

TEST(CPScannerComments, LineAndBlock) {
    uint32_t lines = 0;
    auto lc = scanAll("// a \\\n   more\nx", &lines);
    EXPECT_EQ(lc[0].kind, CP_LINE_COMMENT);
    EXPECT_EQ(lc[0].text, "// a \\\n   more");
    EXPECT_EQ(lc[0].warning, -8075);
    EXPECT_EQ(lines, 2u);
    auto ok = scanAll("// a \\\n  // b\n");
    EXPECT_EQ(ok[0].warning, 0);
    auto bc = scanAll("/* a\r\nb\rc\n*/", &lines);
    EXPECT_EQ(bc.size(), 1u);
    EXPECT_EQ(lines, 3u);
    auto open = scanAll("/* never closed");
    EXPECT_EQ(open[0].kind, CP_BLOCK_COMMENT);
    EXPECT_EQ(open[0].error, -8007);
    std::string nul("/* a\0b */", 9);
    EXPECT_EQ(scanAll(nul).size(), 1u);
}

TEST(CPScannerBlanks, WhitespaceNewlinesAndGarbage) {
    uint32_t lines = 0;
    auto t = scanAll(" \t\f\v\x1a\x1a\r\n\r\n", &lines);
    ASSERT_EQ(t.size(), 5u);
    EXPECT_EQ(t[0].text, " \t\f\v");
    EXPECT_EQ(t[1].text, "\x1a");  // Ctrl-Z starts a blank run but continues none
    EXPECT_EQ(t[2].text, "\x1a");
    EXPECT_EQ(t[3].text, "\r\n");
    EXPECT_EQ(t[4].kind, CP_NEWLINE);
    EXPECT_EQ(lines, 2u);
    std::string nul("a\0b", 3);
    auto g = scanAll(nul);
    ASSERT_EQ(g.size(), 3u);
    EXPECT_EQ(g[1].kind, CP_GARBAGE_CHAR);
    EXPECT_EQ(g[1].error, -8006);
    auto high = scanAll("\xc3\xa9@`");
    EXPECT_EQ(high.size(), 4u);
    for (auto& h : high) EXPECT_EQ(h.kind, CP_GARBAGE_CHAR);
}

TEST(CPScannerRoundTrip, EveryByteBelongsToOneToken) {
    const char* hostile[] = {"", "??", "?", "a??", "#??", "|??", "L", "S#", "\\", "0x.p",
                             "1e", "'", "\"\\", "/*", "//\\", "<:", "%:%", "%:%:%",
                             "\r", "\x1a", "trailing ??/\n", "\\u", "0X1.P+"};
    for (const char* h : hostile) EXPECT_EQ(joined(scanAll(h)), h) << h;
    std::mt19937 rng(12345);
    const char alphabet[] = "?!'()-/<=>:%.#|\\\"LSx0189eEpPuUlL_ \n\r\t\x1a*&+^~[]{}";
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        size_t n = rng() % 40;
        for (size_t i = 0; i < n; ++i)
            text += rng() % 8 ? alphabet[rng() % (sizeof alphabet - 1)] : char(rng() % 256);
        ASSERT_EQ(joined(scanAll(text)), text);
    }
}
