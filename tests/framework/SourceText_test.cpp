// Source texts, the source cache with a substituted file reader, and the lexer base: modes,
// pushed texts, line and column numbers, and the character access of a scanner.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "BPSourceCache.h"
#include "support/FrameworkTestKit.h"
#include "support/TestLexer.h"

using quernbase::QBString;

namespace {

std::map<std::string, std::string> files;
int reads = 0;

int readFromMap(const QBString& name, QBString& out) {
    ++reads;
    auto found = files.find(str(name));
    if (found == files.end()) return -2;
    out.set(found->second.data(), unsigned(found->second.size()));
    return 0;
}

class Cache : public ::testing::Test {
protected:
    void SetUp() override {
        files = {{"a.h", "int a;\n"}, {"b.h", std::string("x\0y", 3)}};
        reads = 0;
        previous = BPSourceHandle::setReadFileFunction(readFromMap);
        cache = new BPSourceCache;
        cache->addRef();
    }
    void TearDown() override {
        cache->release();
        BPSourceHandle::setReadFileFunction(previous);
    }
    BPSourceHandle::ReadFileFunction previous = nullptr;
    BPSourceCache* cache = nullptr;
};

// Exposes the scanner's character access.
class ProbeLexer : public TestLexer {
public:
    explicit ProbeLexer(const BPSourceHandle& source, int mode = 0) : TestLexer(source, mode) {}
    using TestLexer::advance;
    using TestLexer::atEnd;
    using TestLexer::backUp;
    using TestLexer::currentChar;
    using TestLexer::matchRest;
    using TestLexer::peekChecked;
    using TestLexer::peekPair;
    using TestLexer::skip3;
};

std::string spellings(Source& source) {
    std::string out;
    for (Token* t = source.currentToken(); t && t->getType() != CPT_EOF; t = source.nextToken()) {
        if (!out.empty()) out += '|';
        out += str(t->getSpellingConst());
    }
    return out;
}

}  // namespace

TEST_F(Cache, EachNameIsReadOnce) {
    int status = -1;
    BPSourceHandle first = cache->getSource(QBString("a.h"), BPSourceText::INCLUDED_FILE, status);
    EXPECT_EQ(status, 0);
    ASSERT_FALSE(first.isNull());
    EXPECT_EQ(str(first->text), "int a;\n");
    EXPECT_EQ(first->kind, BPSourceText::INCLUDED_FILE);
    EXPECT_EQ(first->length, 7u);
    EXPECT_EQ(*first->end, 0);
    EXPECT_EQ(first->end - first->begin, 7);
    status = -1;
    BPSourceHandle second = cache->getSource(QBString("a.h"), 0, status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(second.get(), first.get());
    EXPECT_EQ(reads, 1);
    EXPECT_NE(cache->find(QBString("a.h")), nullptr);
    EXPECT_EQ(cache->find(QBString("A.h")), nullptr);  // names are compared byte for byte
}

TEST_F(Cache, FailedReadStoresNothing) {
    int status = 0;
    BPSourceHandle missing = cache->getSource(QBString("none.h"), 0, status);
    EXPECT_EQ(status, -2);
    EXPECT_TRUE(missing.isNull());
    EXPECT_EQ(cache->count(), 0);
    cache->getSource(QBString("none.h"), 0, status);
    EXPECT_EQ(reads, 2);
    cache->getSource(QBString(""), 0, status);
    EXPECT_EQ(status, -3015);
    EXPECT_EQ(reads, 2);
}

TEST_F(Cache, TextWithANulByteKeepsItsLength) {
    int status = 0;
    BPSourceHandle b = cache->getSource(QBString("b.h"), 0, status);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(b->length, 3u);
    TestLexer* lexer = new TestLexer(b);
    lexer->addRef();
    EXPECT_EQ(spellings(*lexer), std::string("x|\0|y", 5));
    lexer->release();
    QBString* names = cache->keys();
    ASSERT_NE(names, nullptr);
    EXPECT_EQ(str(names[0]), "b.h");
    delete[] names;
}

TEST(SourceHandle, MakePrivateSeparatesFlagsButSharesText) {
    BPSourceHandle shared = testText("text");
    BPSourceHandle other = shared;
    EXPECT_EQ(shared.getRefCount(), 2);
    ASSERT_EQ(other.makePrivate(), 0);
    EXPECT_NE(other.get(), shared.get());
    EXPECT_EQ(shared.getRefCount(), 1);
    other->includeOnce = true;
    EXPECT_FALSE(shared->includeOnce);
    EXPECT_EQ(other->begin, shared->begin);
    EXPECT_TRUE(other == shared);  // equal by content
    other->seekBase = 4;
    EXPECT_FALSE(other == shared);

    BPSourceHandle empty;
    ASSERT_EQ(empty.makePrivate(), 0);
    EXPECT_EQ(empty->kind, 0);
    EXPECT_EQ(empty->firstLine, 1u);
    EXPECT_EQ(empty->begin, nullptr);
    EXPECT_EQ(empty.load(QBString("")), -3015);
}

TEST(SourceHandle, ReadingWithoutAHostIsAStatus) {
    BPSourceHandle handle;
    EXPECT_LT(handle.load(QBString("/no/such/file")), 0);
}

TEST(SourceHandle, TextSourceReportsThePlaceItCameFrom) {
    BPSourceHandle text = BPSourceHandle::makeTextSource(QBString("xy\nzw"), 7, 100);
    EXPECT_EQ(text->kind, BPSourceText::TEXT);
    TestLexer* lexer = new TestLexer(text, BPLEX_NO_NEWLINES);
    lexer->addRef();
    TokenList tokens = drainTokens(*lexer);  // held, so that none is reused
    ASSERT_EQ(tokens.count(), 3u);
    Token* xy = tokens[0];
    Token* zw = tokens[1];
    EXPECT_EQ(xy->getSeekPosition(), 100u);
    EXPECT_EQ(xy->getLine(), 7u);
    EXPECT_EQ(zw->getSeekPosition(), 103u);
    EXPECT_EQ(zw->getLine(), 8u);
    releaseAll(tokens);
    lexer->release();
}

TEST(Lexer, PushedTextIsReadInPlaceAndJoinsTheTextBelow) {
    TestLexer* lexer = new TestLexer(testText("a\nb c"), BPLEX_NO_WHITESPACE | BPLEX_NO_NEWLINES);
    lexer->addRef();
    lexer->currentToken();
    Token* b = lexer->nextToken();
    b->addRef();  // kept, or the lexer would reuse it for the next token
    EXPECT_EQ(lexer->pushText(QBString("p q")), 0);
    EXPECT_EQ(lexer->getSourceCount(), 2u);
    Token* p = lexer->nextToken();
    EXPECT_EQ(str(p->getSpelling()), "p");
    EXPECT_EQ(p->getLine(), b->getLine());
    EXPECT_EQ(p->getSeekPosition(), 3u);  // where the text was pushed
    EXPECT_EQ(p->getFilePosition().source.get(), b->getPosition()->source.get());
    EXPECT_EQ(str(lexer->nextToken()->getSpelling()), "q");
    Token* c = lexer->nextToken();
    EXPECT_EQ(str(c->getSpelling()), "c");  // no token marks the end of the pushed text
    EXPECT_EQ(lexer->getSourceCount(), 1u);
    EXPECT_EQ(lexer->nextToken()->getType(), CPT_EOF);
    EXPECT_EQ(lexer->nextToken()->getType(), CPT_EOF);
    EXPECT_EQ(lexer->popSource(), 0);
    EXPECT_EQ(lexer->popSource(), -1);
    EXPECT_EQ(lexer->nextToken(), nullptr);
    b->release();
    lexer->release();
}

TEST(Lexer, ModesSkipWhatGivesNoTokenAndCountLines) {
    const char* text = "a /* one\ntwo */ b // three\r\nc (* p\n *) d -- e\n<!-- f\n --> g # h\ni";
    int mode = BPLEX_NO_WHITESPACE | BPLEX_NO_NEWLINES | BPLEX_SKIP_C_COMMENTS |
               BPLEX_PASCAL_COMMENTS | BPLEX_MARKUP_COMMENTS | BPLEX_HASH_COMMENTS |
               BPLEX_LINE_START_HOOK;
    TestLexer* lexer = new TestLexer(testText(text), mode);
    lexer->addRef();
    std::string words;
    std::string lines;
    for (Token* t = lexer->currentToken(); t->getType() != CPT_EOF; t = lexer->nextToken()) {
        words += str(t->getSpelling());
        lines += std::to_string(t->getLine());
    }
    EXPECT_EQ(words, "abcdgi");
    EXPECT_EQ(lines, "123467");
    EXPECT_EQ(lexer->lineStarts, 4);  // the first line and the line ends outside comments
    lexer->release();

    TestLexer* comments = new TestLexer(testText("a /* x */ b // y"), BPLEX_NO_COMMENTS);
    comments->addRef();
    EXPECT_EQ(spellings(*comments), "a| | |b| ");
    comments->release();
}

TEST(Lexer, ColumnsAndLineStarts) {
    TestLexer* lexer = new TestLexer(testText("  x\tz\n  y\n\tw", "c.c"), 0);
    lexer->addRef();
    TokenList tokens = drainTokens(*lexer);
    // "  " x \t z \n "  " y \n \t w EOF
    ASSERT_EQ(tokens.count(), 11u);
    Token* x = tokens[1];
    Token* z = tokens[3];
    Token* y = tokens[6];
    Token* w = tokens[9];
    EXPECT_EQ(x->getColumn(0), 3u);  // the first line counts from 1
    EXPECT_EQ(y->getColumn(0), 2u);  // later lines from 0
    EXPECT_EQ(z->getColumn(0), 5u);
    EXPECT_EQ(z->getColumn(4), 5u);  // 1, +1, +1, +1 (x), tab at 4 adds 1
    EXPECT_EQ(w->getColumn(0), 1u);
    EXPECT_EQ(w->getColumn(4), 5u);  // tab at column 1 moves 4 on
    EXPECT_EQ(w->getColumn(8), 9u);
    EXPECT_TRUE(x->isFirstOnLine());
    EXPECT_FALSE(z->isFirstOnLine());
    EXPECT_TRUE(y->isFirstOnLine());
    EXPECT_TRUE(w->isFirstOnLine());
    EXPECT_FALSE(tokens[0]->isFirstOnLine());  // a blank is never first on its line
    EXPECT_EQ(str(x->getFileName()), "c.c");
    BPSourcePosition nowhere;
    EXPECT_EQ(nowhere.getColumn(4), 0u);
    EXPECT_FALSE(nowhere.isFirstOnLine());
    releaseAll(tokens);
    lexer->release();
}

TEST(Lexer, FormFeedAndVerticalTabCountDifferentlyAtLineStart) {
    TestLexer* lexer = new TestLexer(testText("\va\n\fb"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    Token* a = lexer->currentToken();
    EXPECT_TRUE(a->isFirstOnLine());
    lexer->nextToken();
    Token* b = lexer->nextToken();
    EXPECT_EQ(str(b->getSpelling()), "b");
    EXPECT_FALSE(b->isFirstOnLine());  // a form feed counts as another character
    lexer->release();
}

TEST(Lexer, ScannerCharacterAccessStaysInsideTheText) {
    ProbeLexer* lexer = new ProbeLexer(testText("ab"));
    lexer->addRef();
    EXPECT_EQ(lexer->backUp(), 'a');  // at the start it stays
    EXPECT_EQ(lexer->peekChecked(), 'b');
    EXPECT_EQ(lexer->peekPair(), 0);  // would pass the end
    EXPECT_FALSE(lexer->matchRest("a", 1));  // an identifier character follows
    EXPECT_TRUE(lexer->matchRest("ab", 2));
    EXPECT_TRUE(lexer->atEnd());
    EXPECT_EQ(lexer->advance(), 0);
    EXPECT_EQ(lexer->peekChecked(), 0);
    lexer->skip3();
    EXPECT_TRUE(lexer->atEnd());
    EXPECT_EQ(lexer->backUp(), 'b');
    lexer->release();
}

TEST(Lexer, TokenSpellingIsCopiedOnlyWhenAsked) {
    TestLexer* lexer = new TestLexer(testText("alpha beta"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    Token* alpha = lexer->currentToken();
    EXPECT_EQ(str(alpha->getSpellingConst()), "alpha");
    QBString into;
    alpha->getSpellingInto(into);
    EXPECT_EQ(str(into), "alpha");
    EXPECT_EQ(alpha->getLength(), 5u);
    QBString spelled = alpha->getSpelling();
    EXPECT_NE(spelled.get(), alpha->getPosition()->cursor);
    EXPECT_FALSE(alpha->isModified());
    lexer->release();
}
