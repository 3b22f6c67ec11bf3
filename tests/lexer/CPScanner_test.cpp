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
        if (kind == CPT_EOF) break;
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
        if (t.kind != CPT_WHITESPACE) k.push_back(t.kind);
    return k;
}

std::string joined(const std::vector<Tok>& toks) {
    std::string s;
    for (auto& t : toks) s += t.text;
    return s;
}
}  // namespace

TEST(CPScannerNumbers, LeadingZeroAndExponents) {
    EXPECT_EQ(kinds("09"), (std::vector<int>{CPT_INTEGER, CPT_INTEGER}));
    EXPECT_EQ(kinds("0x"), (std::vector<int>{CPT_INTEGER}));
    auto t = scanAll("1e+;");
    ASSERT_EQ(t.size(), 2u);
    EXPECT_EQ(t[0].kind, CPT_DOUBLE);
    EXPECT_EQ(t[0].text, "1e+");
    auto oct = scanAll("01.5");
    ASSERT_EQ(oct.size(), 2u);
    EXPECT_EQ(oct[0].text, "01");
    EXPECT_EQ(oct[1].kind, CPT_DOUBLE);
    EXPECT_EQ(kinds("0x1.8p3f 0x1p-2 .5L 1.f 0.5 0e1"),
              (std::vector<int>{CPT_FLOAT, CPT_DOUBLE, CPT_LONG_DOUBLE, CPT_FLOAT, CPT_DOUBLE,
                                CPT_DOUBLE}));
}

TEST(CPScannerNumbers, Suffixes) {
    EXPECT_EQ(kinds("1i64"), (std::vector<int>{CPT_LONG}));
    EXPECT_EQ(kinds("1ui8"), (std::vector<int>{CPT_INTEGER}));
    EXPECT_EQ(kinds("1i65"), (std::vector<int>{CPT_INTEGER, CPT_IDENTIFIER}));
    EXPECT_EQ(scanAll("1i65")[1].text, "i65");
    EXPECT_EQ(kinds("10UL 10ull 10LU 10l 7u 8i32 9I16"),
              (std::vector<int>{CPT_LONG, CPT_LONG, CPT_LONG, CPT_LONG, CPT_INTEGER, CPT_INTEGER,
                                CPT_INTEGER}));
    EXPECT_EQ(scanAll("10ull")[0].text, "10ull");
    EXPECT_EQ(kinds("12abc"), (std::vector<int>{CPT_INTEGER, CPT_IDENTIFIER}));
}

TEST(CPScannerPunctuators, DigraphsAndTheirExceptions) {
    EXPECT_EQ(kinds("x<::y>::z"),
              (std::vector<int>{CPT_IDENTIFIER, CPT_LT, CPT_COLON_COLON, CPT_IDENTIFIER, CPT_GT,
                                CPT_COLON_COLON, CPT_IDENTIFIER}));
    EXPECT_EQ(kinds("a<::>"),
              (std::vector<int>{CPT_IDENTIFIER, CPT_LEFT_BRACKET, CPT_RIGHT_BRACKET}));
    EXPECT_EQ(kinds("%:%:"), (std::vector<int>{CPT_POUND_POUND}));
    EXPECT_EQ(kinds("%:%"), (std::vector<int>{CPT_POUND, CPT_PERCENT}));
    EXPECT_EQ(kinds("%::"), (std::vector<int>{CPT_PERCENT, CPT_COLON_COLON}));
    EXPECT_EQ(kinds("<% %> <: :>"),
              (std::vector<int>{CPT_LEFT_BRACE, CPT_RIGHT_BRACE, CPT_LEFT_BRACKET,
                                CPT_RIGHT_BRACKET}));
}

TEST(CPScannerPunctuators, LongestMatch) {
    EXPECT_EQ(kinds("->* -> -- -= <<= >>= ... .. .* <? >? :: ##"),
              (std::vector<int>{CPT_DASH_GT_STAR, CPT_DASH_GT, CPT_MINUS_MINUS, CPT_MINUS_EQUALS,
                                CPT_LT_LT_EQUALS, CPT_GT_GT_EQUALS, CPT_ELLIPSE, CPT_DOT, CPT_DOT,
                                CPT_DOT_STAR, CPT_LT_QUESTION, CPT_GT_QUESTION, CPT_COLON_COLON,
                                CPT_POUND_POUND}));
    EXPECT_EQ(kinds("a>>=b&&c||d^=e!=f==g"),
              (std::vector<int>{CPT_IDENTIFIER, CPT_GT_GT_EQUALS, CPT_IDENTIFIER, CPT_AND_AND,
                                CPT_IDENTIFIER, CPT_OR_OR, CPT_IDENTIFIER, CPT_CAROT_EQUALS,
                                CPT_IDENTIFIER, CPT_NOT_EQUALS, CPT_IDENTIFIER, CPT_EQUALS_EQUALS,
                                CPT_IDENTIFIER}));
}

TEST(CPScannerPunctuators, Trigraphs) {
    EXPECT_EQ(kinds("??=define X"), (std::vector<int>{CPT_POUND, CPT_kw_define, CPT_IDENTIFIER}));
    EXPECT_EQ(kinds("a??!??!b"), (std::vector<int>{CPT_IDENTIFIER, CPT_OR_OR, CPT_IDENTIFIER}));
    EXPECT_EQ(kinds("a ? ? b"),
              (std::vector<int>{CPT_IDENTIFIER, CPT_QUESTION, CPT_QUESTION, CPT_IDENTIFIER}));
    EXPECT_EQ(kinds("??< ??> ??( ??) ??- ??/ ??' ??'= ??! ??!= |??! ??=??= #??= ??=#"),
              (std::vector<int>{CPT_LEFT_BRACE, CPT_RIGHT_BRACE, CPT_LEFT_BRACKET,
                                CPT_RIGHT_BRACKET, CPT_TILDE, CPT_BACKSLASH, CPT_CAROT,
                                CPT_CAROT_EQUALS, CPT_OR, CPT_OR_EQUALS, CPT_OR_OR, CPT_POUND_POUND,
                                CPT_POUND_POUND, CPT_POUND_POUND}));
    auto bad = scanAll("#??x");
    ASSERT_FALSE(bad.empty());
    EXPECT_EQ(bad[0].kind, CPT_GARBAGE_CHAR);
    EXPECT_EQ(bad[0].error, -8006);
    EXPECT_EQ(kinds("\"??=\""), (std::vector<int>{CPT_STRING}));  // not inside literals
}

TEST(CPScannerWords, KeywordsAliasesAndNames) {
    EXPECT_EQ(kinds("__const__ __const_ define __asm __asm__ __inline__ __volatile"),
              (std::vector<int>{CPT_kw_const, CPT_IDENTIFIER, CPT_kw_define, CPT_kw___asm,
                                CPT_kw_asm, CPT_kw_inline, CPT_kw_volatile}));
    EXPECT_EQ(kinds("int integer in __cplusplus __STDC_VERSION__ __LINE__x"),
              (std::vector<int>{CPT_kw_int, CPT_IDENTIFIER, CPT_IDENTIFIER, CPT_kw___cplusplus,
                                CPT_kw___STDC_VERSION__, CPT_IDENTIFIER}));
    EXPECT_EQ(kinds("a$b $a"), (std::vector<int>{CPT_IDENTIFIER, CPT_GARBAGE_CHAR,
                                                   CPT_IDENTIFIER}));
    auto ucn = scanAll("caf\\u00e9x \\U0001F600");
    EXPECT_EQ(ucn[0].text, "caf\\u00e9x");
    EXPECT_EQ(ucn[2].kind, CPT_IDENTIFIER);
    EXPECT_EQ(kinds("int\\u00e9"), (std::vector<int>{CPT_kw_int, CPT_IDENTIFIER}));
}

TEST(CPScannerWords, PrefixedLiteralsAndPounds) {
    EXPECT_EQ(kinds("L\"x\" S\"x\" Lx L'a' S'a'"),
              (std::vector<int>{CPT_WIDE_STRING, CPT_STRING, CPT_IDENTIFIER, CPT_WIDE_CHARACTER,
                                CPT_IDENTIFIER, CPT_CHARACTER}));
    auto pound = scanAll("L#x");
    EXPECT_EQ(pound[0].kind, CPT_POUND);
    EXPECT_EQ(pound[0].text, "L#");
    auto paste = scanAll("L##x");
    EXPECT_EQ(paste[0].kind, CPT_IDENTIFIER);
    EXPECT_EQ(paste[0].text, "L");
    EXPECT_EQ(paste[1].kind, CPT_POUND_POUND);
}

TEST(CPScannerLiterals, ContinuedAndUnterminated) {
    uint32_t lines = 0;
    auto cont = scanAll("\"ab\\\ncd\" x", &lines);
    EXPECT_EQ(cont[0].kind, CPT_STRING);
    EXPECT_EQ(cont[0].text, "\"ab\\\ncd\"");
    EXPECT_EQ(lines, 1u);
    auto open = scanAll("\"abc\nx");
    EXPECT_EQ(open[0].kind, CPT_STRING);
    EXPECT_EQ(open[0].text, "\"abc");
    EXPECT_EQ(open[0].error, -8008);
    EXPECT_EQ(open[1].kind, CPT_NEWLINE);
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
    EXPECT_EQ(lc[0].kind, CPT_LINE_COMMENT);
    EXPECT_EQ(lc[0].text, "// a \\\n   more");
    EXPECT_EQ(lc[0].warning, -8075);
    EXPECT_EQ(lines, 2u);
    auto ok = scanAll("// a \\\n  // b\n");
    EXPECT_EQ(ok[0].warning, 0);
    auto bc = scanAll("/* a\r\nb\rc\n*/", &lines);
    EXPECT_EQ(bc.size(), 1u);
    EXPECT_EQ(lines, 3u);
    auto open = scanAll("/* never closed");
    EXPECT_EQ(open[0].kind, CPT_BLOCK_COMMENT);
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
    EXPECT_EQ(t[4].kind, CPT_NEWLINE);
    EXPECT_EQ(lines, 2u);
    std::string nul("a\0b", 3);
    auto g = scanAll(nul);
    ASSERT_EQ(g.size(), 3u);
    EXPECT_EQ(g[1].kind, CPT_GARBAGE_CHAR);
    EXPECT_EQ(g[1].error, -8006);
    auto high = scanAll("\xc3\xa9@`");
    EXPECT_EQ(high.size(), 4u);
    for (auto& h : high) EXPECT_EQ(h.kind, CPT_GARBAGE_CHAR);
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
