// Token streams end to end: lexer, whitespace filter, marks, pushback, pools and the list and
// tree sources, checked by writing every input back byte for byte.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "CPTreeTokenSource.h"
#include "CPWhitespaceFilter.h"
#include "QBMemory.h"
#include "support/FrameworkTestKit.h"
#include "support/TestLexer.h"

using quernbase::QBAllocator;
using quernbase::QBString;

namespace {

// A lexer under a whitespace filter, as the preprocessor reads a file.
struct FilteredStream {
    explicit FilteredStream(const std::string& text)
        : lexer(new TestLexer(testText(text.data(), unsigned(text.size())))),
          filter(new CPWhitespaceFilter(lexer)) {
        filter->addRef();
    }
    ~FilteredStream() { filter->release(); }
    FilteredStream(const FilteredStream&) = delete;
    FilteredStream& operator=(const FilteredStream&) = delete;

    TestLexer* lexer;
    CPWhitespaceFilter* filter;
};

std::string typesOf(const TokenList& tokens) {
    std::string out;
    for (Token* token : tokens) {
        if (!out.empty()) out += ' ';
        out += std::to_string(int(token->getType()));
    }
    return out;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream buffer;
    buffer << in.rdbuf();
    return buffer.str();
}

const std::string roundTripInputs[] = {
    std::string(""),
    std::string("   \t  \f\v "),
    std::string("a b\r\nc\r\n"),
    std::string("one\rtwo\rthree"),
    std::string("x\0y \0\n", 7),
    std::string("int a = 1 \\\n  + 2;\n"),
    std::string("code(); // trailing comment"),
    std::string("code(); /* trailing\nblock */\n\n"),
    std::string("#define X 1 /* c */\n  # if X \\\n  && Y\nz\n#endif"),
    std::string("/* unterminated comment\n"),
    std::string("a \\ b\\"),
    std::string("\n\n\n"),
};

}  // namespace

TEST(TokenStream, FilteredStreamsWriteBackEveryInput) {
    for (const std::string& input : roundTripInputs) {
        FilteredStream stream(input);
        int count = 0;
        QBString text = drainText(*stream.filter, &count);
        EXPECT_EQ(str(text), input) << "input: " << input;
        EXPECT_GE(count, 1);
    }
}

TEST(TokenStream, RealSourceFilesWriteBack) {
    for (const char* file : {"/foundation/QBString.cpp", "/framework/TBPLexer.h",
                             "/tests/framework/TokenStream_test.cpp"}) {
        std::string input = readFile(std::string(QB_SOURCE_DIR) + file);
        ASSERT_FALSE(input.empty()) << file;
        FilteredStream stream(input);
        EXPECT_EQ(str(drainText(*stream.filter)), input) << file;
    }
}

TEST(TokenStream, BlanksOnlyGiveOneEndTokenHoldingThem) {
    FilteredStream stream("  \t \n  ");
    TokenList tokens = drainTokens(*stream.filter);
    ASSERT_EQ(tokens.count(), 1u);
    EXPECT_EQ(tokens[0]->getType(), CPT_EOF);
    EXPECT_EQ(tokens[0]->getWhitespaceCount(), 3u);
    QBString text("");
    tokens[0]->getText(text);
    EXPECT_EQ(str(text), "  \t \n  ");
    releaseAll(tokens);
}

TEST(TokenStream, EmptyFileGivesEndTokenAtTextStart) {
    FilteredStream stream("");
    TokenList tokens = drainTokens(*stream.filter);
    ASSERT_EQ(tokens.count(), 1u);
    EXPECT_EQ(tokens[0]->getType(), CPT_EOF);
    EXPECT_EQ(tokens[0]->getLength(), 0u);
    EXPECT_EQ(tokens[0]->getSeekPosition(), 0u);
    EXPECT_EQ(tokens[0]->getWhitespaceCount(), 0u);
    releaseAll(tokens);
}

TEST(TokenStream, LineEndBeforeDirectiveStaysARealToken) {
    FilteredStream stream("a\n/* c */ #define x\nb");
    TokenList tokens = drainTokens(*stream.filter);
    // a NEWLINE # define x NEWLINE b EOF
    EXPECT_EQ(typesOf(tokens), "3 9 111 3 3 9 3 1");
    Token* pound = tokens[2];
    ASSERT_EQ(pound->getWhitespaceCount(), 2u);
    EXPECT_EQ(pound->getWhitespace(0)->getType(), CPT_BLOCK_COMMENT);
    EXPECT_EQ(pound->getWhitespace(1)->getType(), CPT_WHITESPACE);
    EXPECT_EQ(pound->getWhitespace(0)->getParent(), pound);
    EXPECT_FALSE(stream.filter->isInDirective());
    releaseAll(tokens);
}

TEST(TokenStream, LineEndsOutsideDirectivesBecomeWhitespace) {
    FilteredStream stream("a\n\nb // c\nd");
    TokenList tokens = drainTokens(*stream.filter);
    EXPECT_EQ(typesOf(tokens), "3 3 3 1");
    EXPECT_EQ(tokens[1]->getWhitespaceCount(), 2u);
    EXPECT_TRUE(tokens[1]->isFirstOnLine());
    EXPECT_FALSE(tokens[0]->isFirstOnLine() && tokens[0]->getWhitespaceCount() > 0);
    EXPECT_EQ(tokens[3 - 1]->getLine(), 4u);
    releaseAll(tokens);
}

TEST(TokenStream, LineContinuationVanishesIntoNextTokensWhitespace) {
    FilteredStream stream("a \\\nb");
    TokenList tokens = drainTokens(*stream.filter);
    ASSERT_EQ(typesOf(tokens), "3 3 1");
    Token* b = tokens[1];
    ASSERT_EQ(b->getWhitespaceCount(), 3u);
    EXPECT_EQ(b->getWhitespace(1)->getType(), CPT_BACKSLASH);
    EXPECT_EQ(b->getWhitespace(2)->getType(), CPT_NEWLINE);
    EXPECT_EQ(b->getLine(), 2u);
    releaseAll(tokens);
}

TEST(TokenStream, ContinuationKeepsADirectiveOpen) {
    FilteredStream stream("#if a \\\n b\nc");
    TokenList tokens = drainTokens(*stream.filter);
    // # if a b NEWLINE c EOF: the continued line's end is whitespace, the last one is real
    EXPECT_EQ(typesOf(tokens), "111 3 3 3 9 3 1");
    releaseAll(tokens);
}

TEST(TokenStream, StrayBackslashRidesAsWhitespace) {
    FilteredStream stream("a \\ b");
    TokenList tokens = drainTokens(*stream.filter);
    ASSERT_EQ(typesOf(tokens), "3 3 1");
    EXPECT_EQ(tokens[1]->getWhitespaceCount(), 3u);
    EXPECT_EQ(tokens[1]->getWhitespace(1)->getType(), CPT_BACKSLASH);
    releaseAll(tokens);
}

TEST(TokenStream, NulByteIsATokenOfItsOwn) {
    std::string input("a\0b", 3);
    FilteredStream stream(input);
    TokenList tokens = drainTokens(*stream.filter);
    ASSERT_EQ(typesOf(tokens), "3 12 3 1");
    EXPECT_EQ(tokens[1]->getLength(), 1u);
    EXPECT_EQ(tokens[2]->getSeekPosition(), 2u);
    EXPECT_EQ(str(tokens[2]->getSpelling()), "b");
    releaseAll(tokens);
}

TEST(TokenStream, EndOfPushedSourceIsTreatedAsLineEnd) {
    TBPToken<CPParseNodeType>* eos;
    BPSourcePosition nowhere;
    TokenList list;
    list.add(new Token(CPT_IDENTIFIER, nowhere, 0, nowhere));
    list.add(eos = new Token(CPT_EOS, nowhere, 0, nowhere));
    list.add(new Token(CPT_IDENTIFIER, nowhere, 0, nowhere));
    list.add(new Token(CPT_EOF, nowhere, 0, nowhere));
    auto* array = new TBPArrayTokenSource<CPParseNodeType>(list);
    auto* filter = new CPWhitespaceFilter(array);
    filter->addRef();
    TokenList tokens = drainTokens(*filter);
    EXPECT_EQ(typesOf(tokens), "3 3 1");
    EXPECT_EQ(eos->getType(), CPT_NEWLINE);
    EXPECT_EQ(tokens[1]->getWhitespace(0), eos);
    releaseAll(tokens);
    filter->release();
}

TEST(TokenSource, RollbackFeedsTheSameObjectsWithoutRescanning) {
    auto* lexer = new TestLexer(testText("a b c d e"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    Token* first = lexer->currentToken();
    ASSERT_EQ(lexer->mark(), 0);
    Token* read[3];
    for (Token*& token : read) token = lexer->nextToken();
    EXPECT_EQ(lexer->getTokensRead(), 4u);
    ASSERT_EQ(lexer->rollback(), 0);
    EXPECT_EQ(lexer->currentToken(), first);
    for (Token* token : read) EXPECT_EQ(lexer->nextToken(), token);
    EXPECT_EQ(lexer->getTokensRead(), 4u);
    EXPECT_EQ(str(lexer->nextToken()->getSpelling()), "e");
    EXPECT_EQ(lexer->getMarkCount(), 0u);
    lexer->release();
}

TEST(TokenSource, OuterRollbackRecoversTokensOfCommittedInnerMark) {
    auto* lexer = new TestLexer(testText("a b c d"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    Token* a = lexer->currentToken();
    lexer->mark();
    lexer->mark();
    Token* b = lexer->nextToken();
    Token* c = lexer->nextToken();
    EXPECT_EQ(lexer->commit(), 0);
    EXPECT_EQ(lexer->rollback(), 0);
    EXPECT_EQ(lexer->currentToken(), a);
    EXPECT_EQ(lexer->nextToken(), b);
    EXPECT_EQ(lexer->nextToken(), c);
    EXPECT_EQ(lexer->getTokensRead(), 3u);
    lexer->release();
}

TEST(TokenSource, UnpairedCloseFailsAndChangesNothing) {
    auto* lexer = new TestLexer(testText("a b"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    Token* a = lexer->currentToken();
    EXPECT_EQ(lexer->rollback(), -1);
    EXPECT_EQ(lexer->commit(), -1);
    EXPECT_EQ(lexer->commitWithError(nullptr), -1);
    EXPECT_EQ(lexer->currentToken(), a);
    EXPECT_EQ(lexer->getTokensRead(), 1u);
    lexer->release();
}

TEST(TokenSource, RollbackKeepsPushbackBehindRolledBackTokens) {
    auto* lexer = new TestLexer(testText("a b c d"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    EXPECT_EQ(lexer->peekType(0), CPT_IDENTIFIER);
    EXPECT_EQ(lexer->peekType(2), CPT_IDENTIFIER);  // b and c now wait in the pushback
    lexer->mark();
    EXPECT_EQ(str(lexer->nextToken()->getSpelling()), "b");
    lexer->rollback();
    std::string order;
    for (Token* t = lexer->currentToken(); t && t->getType() != CPT_EOF; t = lexer->nextToken())
        order += str(t->getSpelling());
    EXPECT_EQ(order, "abcd");
    EXPECT_EQ(lexer->getTokensRead(), 5u);
    lexer->release();
}

TEST(TokenSource, PeekPastTheLastTokenGivesEnd) {
    TokenList list;
    BPSourcePosition nowhere;
    list.add(new Token(CPT_IDENTIFIER, nowhere, 0, nowhere));
    list.add(new Token(CPParseNodeType(TT_PUNCT), nowhere, 0, nowhere));
    auto* array = new TBPArrayTokenSource<CPParseNodeType>(list);
    array->addRef();
    EXPECT_EQ(array->currentType(), CPT_IDENTIFIER);
    EXPECT_EQ(array->peekType(1), CPParseNodeType(TT_PUNCT));
    EXPECT_EQ(array->peekType(2), CPT_EOF);
    EXPECT_EQ(array->nextType(), CPParseNodeType(TT_PUNCT));
    EXPECT_EQ(array->peekType(1), CPT_EOF);
    EXPECT_EQ(array->nextToken(), nullptr);
    EXPECT_EQ(array->currentType(), CPT_EOF);
    array->release();
}

TEST(TokenSource, CommitWithErrorMarksTheNodeAndCommits) {
    auto* lexer = new TestLexer(testText("a b"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    lexer->currentToken();
    TestTree* node = new TestTree(NT_DECL);
    node->addRef();
    lexer->mark();
    lexer->nextToken();
    EXPECT_EQ(lexer->commitWithError(node), 0);
    EXPECT_TRUE(node->hasError());
    EXPECT_EQ(lexer->getMarkCount(), 0u);
    EXPECT_EQ(lexer->rollback(), -1);
    node->release();
    lexer->release();
}

TEST(TokenSource, PushTokensGoAheadOfTheCurrentToken) {
    auto* lexer = new TestLexer(testText("a b"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    lexer->currentToken();
    BPSourcePosition nowhere;
    TokenList pushed;
    Token* x = new Token(CPParseNodeType(TT_PUNCT), nowhere, 0, nowhere);
    Token* y = new Token(CPParseNodeType(TT_PUNCT), nowhere, 0, nowhere);
    x->setSpelling("x");
    y->setSpelling("y");
    pushed.add(x);
    pushed.add(y);
    ASSERT_EQ(lexer->pushTokens(pushed), 0);
    std::string order;
    for (Token* t = lexer->currentToken(); t && t->getType() != CPT_EOF; t = lexer->nextToken())
        order += str(t->getSpelling());
    EXPECT_EQ(order, "xyab");
    lexer->release();
}

TEST(TokenSource, DroppedTokensAreReusedWithoutAllocating) {
    std::string input;
    for (int i = 0; i < 200; ++i) input += "word ";
    auto* lexer = new TestLexer(testText(input.c_str()));
    lexer->addRef();
    int tokens = 0;
    for (Token* t = lexer->currentToken(); t && t->getType() != CPT_EOF; t = lexer->nextToken())
        ++tokens;
    EXPECT_EQ(tokens, 400);
    EXPECT_EQ(lexer->makeTokenCalls, 1);
    lexer->release();
}

TEST(TokenSource, ReusedTokenIsCleanAndKeptTokensAreNotPooled) {
    auto* lexer = new TestLexer(testText("!! a b"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    Token* flagged = lexer->currentToken();
    EXPECT_TRUE(flagged->hasError());
    TestTree* tree = new TestTree(NT_DECL);
    tree->addRef();
    Token* a = lexer->nextToken();  // the flagged token is dropped into the pool here
    EXPECT_EQ(lexer->getPoolCount(), 0u);  // ...and taken out again for a
    EXPECT_EQ(a, flagged);
    EXPECT_FALSE(a->hasError());
    EXPECT_EQ(a->getAttributes(), nullptr);
    tree->addChild(a);
    Token* b = lexer->nextToken();
    EXPECT_NE(b, a);
    EXPECT_EQ(str(a->getSpelling()), "a");
    EXPECT_EQ(lexer->makeTokenCalls, 2);
    tree->release();
    lexer->release();
}

TEST(TokenSource, ListSourceAndTreeSourceGiveBackTheSameText) {
    std::string input = "#include <x.h>\nint main() { return 0; } // done\n";
    FilteredStream stream(input);
    TokenList tokens = drainTokens(*stream.filter);

    auto* array = new TBPArrayTokenSource<CPParseNodeType>(tokens);
    array->addRef();
    EXPECT_EQ(str(drainText(*array)), input);
    array->release();

    TestTree* root = new TestTree(NT_UNIT);
    TestTree* group = new TestTree(NT_GROUP);
    root->addChild(group);
    root->addChild(nullptr);
    for (unsigned i = 0; i < tokens.count(); ++i) (i < 4 ? group : root)->addChild(tokens[i]);
    auto* walker = new CPTreeTokenSource(root);
    walker->addRef();
    EXPECT_EQ(str(drainText(*walker)), input);
    EXPECT_EQ(walker->restart(root), 0);
    unsigned count = 0;
    while (walker->nextToken()) ++count;  // the current token stays until the walker moves on
    EXPECT_EQ(count, tokens.count());
    walker->release();  // the walker held the only count on root
    releaseAll(tokens);
}

TEST(TokenSource, MarkedFilterRewindsAcrossWhitespace) {
    std::string input = "a /* x */ b\n#c\nd";
    FilteredStream stream(input);
    Source& filter = *stream.filter;
    filter.currentToken();
    filter.mark();
    QBString first = drainText(filter);
    filter.rollback();
    QBString second = drainText(filter);
    EXPECT_EQ(str(first), input);
    EXPECT_EQ(str(second), input);
}

TEST(TokenSource, OutOfMemoryDuringMarkOrReadIsAStatus) {
    auto* lexer = new TestLexer(testText("a b"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    QBAllocator::failAllocationAfter(1);
    EXPECT_EQ(lexer->mark(), -8);
    QBAllocator::failAllocationAfter(0);
    EXPECT_EQ(lexer->getMarkCount(), 0u);
    QBAllocator::failAllocationAfter(1);
    EXPECT_EQ(lexer->nextToken(), nullptr);
    QBAllocator::failAllocationAfter(0);
    EXPECT_NE(lexer->nextToken(), nullptr);
    lexer->release();
}

TEST(TokenSource, DestroyingASourceWithOpenMarksReleasesEverything) {
    size_t live = QBAllocator::liveBlocks();
    FilteredStream* stream = new FilteredStream("a b c d e f");
    stream->filter->currentToken();
    stream->filter->mark();
    stream->filter->nextToken();
    stream->filter->mark();
    stream->filter->peekType(3);
    EXPECT_EQ(stream->filter->getMarkCount(), 2u);
    EXPECT_GT(QBAllocator::liveBlocks(), live);
    delete stream;
    EXPECT_EQ(QBAllocator::liveBlocks(), live) << "a token, a mark's queue or the text stayed";
}
