#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPPreprocessorToken.h"
#include "CPWhitespaceFilter.h"
#include "TBPErrorLog.h"

using quernbase::QBString;
typedef TBPToken<CPParseNodeType> Token;
typedef TBPErrorLog<CPParseNodeType> ErrorLog;

namespace {

BPSourceHandle textSource(const std::string& text) {
    BPSourceHandle h;
    EXPECT_EQ(h.setText(QBString(text.data(), unsigned(text.size()))), 0);
    return h;
}

// A lexer, optionally behind the whitespace filter, with its counts handled.
struct Stream {
    explicit Stream(const std::string& text, bool filtered = false, int mode = 0)
        : lexer(new CPLexer(textSource(text), mode)) {
        lexer->addRef();
        source = lexer;
        if (filtered) {
            source = new CPWhitespaceFilter(lexer);
            source->addRef();
        }
    }
    ~Stream() {
        if (source != lexer) source->release();
        lexer->release();
    }
    // Reads to the end; the text of every token, whitespace included.
    std::string drain(std::vector<int>* kinds = nullptr, ErrorLog* log = nullptr) {
        QBString text("");
        for (Token* t = source->nextToken(); t; t = source->nextToken()) {
            t->getText(text);
            if (kinds) kinds->push_back(t->getType());
            if (log) t->collectErrors(*log);
            if (t->getType() == CPT_EOF) break;
        }
        return std::string(text.get(), text.length());
    }
    CPLexer* lexer;
    TBPTokenSource<CPParseNodeType>* source;
};

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

}  // namespace

TEST(CPLexerTokens, KindsPositionsAndLines) {
    Stream s("int x;\n  y = 0x1F;");
    std::vector<Token*> tokens;
    for (Token* t = s.lexer->nextToken(); t && t->getType() != CPT_EOF; t = s.lexer->nextToken()) {
        t->addRef();  // keep them out of the pool
        tokens.push_back(t);
    }
    ASSERT_EQ(tokens.size(), 12u);
    EXPECT_EQ(tokens[0]->getType(), CPT_kw_int);
    EXPECT_EQ(tokens[2]->getType(), CPT_IDENTIFIER);
    EXPECT_TRUE(tokens[2]->getSpelling() == "x");
    EXPECT_EQ(tokens[4]->getType(), CPT_NEWLINE);
    EXPECT_EQ(tokens[6]->getSeekPosition(), 9u);
    EXPECT_EQ(tokens[6]->getLine(), 2u);
    EXPECT_EQ(tokens[10]->getType(), CPT_INTEGER);
    EXPECT_TRUE(tokens[10]->getSpelling() == "0x1F");
    EXPECT_NE(dynamic_cast<CPPreprocessorToken*>(tokens[0]), nullptr);
    for (Token* t : tokens) t->release();
}

TEST(CPLexerTokens, DiagnosticsLandOnTheirTokens) {
    Stream s("a $ \"open\n// x \\\n  code\n/* never");
    ErrorLog log;
    std::vector<int> kinds;
    s.drain(&kinds, &log);
    std::vector<std::pair<int, bool>> got;
    for (int i = 0; log.getRecord(i); ++i)
        got.emplace_back(log.getRecord(i)->code, log.getRecord(i)->isWarning());
    EXPECT_EQ(got, (std::vector<std::pair<int, bool>>{
                       {-8006, false}, {-8008, false}, {-8075, true}, {-8007, false}}));
    EXPECT_EQ(log.getErrorCount(), 3);
    EXPECT_EQ(log.getWarningCount(), 1);
}

TEST(CPLexerTokens, SystemHeaderModeDropsBlanksAndComments) {
    Stream s("int /* c */ a; // d\n", false, 3);
    std::vector<int> kinds;
    s.drain(&kinds);
    EXPECT_EQ(kinds, (std::vector<int>{CPT_kw_int, CPT_IDENTIFIER, CPT_SEMICOLON, CPT_NEWLINE,
                                       CPT_EOF}));
}

TEST(CPLexerTokens, PushedTextIsReadBeforeTheRestAndKeepsItsOrigin) {
    Stream s("a b");
    Token* a = s.lexer->nextToken();
    EXPECT_TRUE(a->getSpelling() == "a");
    ASSERT_EQ(s.lexer->pushText(QBString("x+")), 0);
    std::vector<std::string> spellings;
    for (Token* t = s.lexer->nextToken(); t && t->getType() != CPT_EOF; t = s.lexer->nextToken())
        spellings.push_back(std::string(t->getSpelling().get()));
    EXPECT_EQ(spellings, (std::vector<std::string>{"x", "+", " ", "b"}));
}

TEST(CPLexerMarks, RollbackHandsOutTheSameTokensWithoutRescanning) {
    Stream s("int a = b ;");
    Token* first = s.lexer->nextToken();
    ASSERT_EQ(s.lexer->mark(), 0);
    std::vector<Token*> seen;
    for (int i = 0; i < 3; ++i) seen.push_back(s.lexer->nextToken());
    uint64_t read = s.lexer->getTokensRead();
    ASSERT_EQ(s.lexer->rollback(), 0);
    EXPECT_EQ(s.lexer->currentToken(), first);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(s.lexer->nextToken(), seen[size_t(i)]);
    EXPECT_EQ(s.lexer->getTokensRead(), read);
}

TEST(CPLexerMarks, InnerCommitInsideOuterRollbackRestoresEverything) {
    Stream s("a b c d e");
    Token* start = s.lexer->nextToken();
    s.lexer->mark();
    s.lexer->nextToken();
    s.lexer->mark();
    Token* inner = s.lexer->nextToken();
    s.lexer->nextToken();
    EXPECT_EQ(s.lexer->commit(), 0);
    EXPECT_EQ(s.lexer->rollback(), 0);
    EXPECT_EQ(s.lexer->currentToken(), start);
    s.lexer->nextToken();
    EXPECT_EQ(s.lexer->nextToken(), inner);
    EXPECT_EQ(s.lexer->rollback(), -1);
}

TEST(CPLexerRoundTrip, HostileInputsComeBackByteForByte) {
    const std::string inputs[] = {
        std::string("a\0b\0", 4),
        "caf\xc3\xa9 = \"\xff\xfe\";\x80",
        "/* unterminated",
        "\"unterminated\nnext",
        "'x",
        "a\rb\r\rc",
        "\f\f x \f",
        "\x1a\x1a int",
        "x ??",
        "x ?",
        "#define A ??/",
        "line \\\n continued \\",
        "trailing // comment",
        "",
        "   \t  ",
        "\r\n\r\n",
        "#",
        "L",
    };
    for (const std::string& in : inputs) {
        EXPECT_EQ(Stream(in).drain(), in) << "raw: " << in;
        EXPECT_EQ(Stream(in, true).drain(), in) << "filtered: " << in;
    }
}

TEST(CPLexerRoundTrip, RealHeadersComeBackByteForByte) {
    // Every twentieth header of the system's C and C++ headers, through the whitespace filter.
    std::ifstream list("/dev/null");
    std::vector<std::string> paths;
    const char* roots[] = {"/usr/include/stdio.h", "/usr/include/stdlib.h",
                           "/usr/include/string.h", "/usr/include/unistd.h",
                           "/usr/include/c++/12/bits/stl_vector.h",
                           "/usr/include/c++/12/bits/basic_string.h",
                           "/usr/include/c++/12/type_traits", "/usr/include/linux/fs.h"};
    int checked = 0;
    for (const char* p : roots) {
        std::string text = readFile(p);
        if (text.empty()) continue;
        ++checked;
        EXPECT_EQ(Stream(text, true).drain(), text) << p;
    }
    EXPECT_GT(checked, 0) << "no system headers found";
    std::string self = readFile(std::string(QB_SOURCE_DIR) + "/lexer/CPScanner.cpp");
    ASSERT_FALSE(self.empty());
    EXPECT_EQ(Stream(self, true).drain(), self);
}
