// Diagnostics on nodes: flags, records, the fate of messages of a dropped attempt, gathering
// in tree order, and formatting through the message file into one file's list.
#include <gtest/gtest.h>

#include "CPWhitespaceFilter.h"
#include "support/FrameworkTestKit.h"
#include "support/TestLexer.h"

using quernbase::QBArray;
using quernbase::QBHashTable;
using quernbase::QBString;

namespace {

class Messages : public ::testing::Test {
protected:
    void SetUp() override { installTestMessages(); }
    void TearDown() override { removeTestMessages(); }
};

std::string formatted(const ErrorLog& log) {
    QBString out("");
    log.appendTo(out);
    return str(out);
}

}  // namespace

TEST(ErrorFlags, ErrorsClimbWarningsDoNot) {
    TestTree* root = new TestTree(NT_UNIT);
    root->addRef();
    TestTree* mid = new TestTree(NT_DECL);
    TestTree* leaf = new TestTree(NT_GROUP);
    root->addChild(mid);
    mid->addChild(leaf);
    EXPECT_EQ(leaf->logWarning(nullptr, -8006), 0);
    EXPECT_FALSE(leaf->hasError());
    EXPECT_FALSE(root->hasError());
    EXPECT_EQ(leaf->getAttributes()->getWarningCount(), 1);
    EXPECT_EQ(leaf->logError(nullptr, -8001, QBString("x")), 0);
    EXPECT_TRUE(leaf->hasError());
    EXPECT_TRUE(mid->hasError());
    EXPECT_TRUE(root->hasError());
    root->release();

    TestTree* alone = new TestTree(NT_DECL);
    alone->addRef();
    alone->logError(nullptr, -8001);
    EXPECT_TRUE(alone->hasError());
    EXPECT_EQ(alone->getParent(), nullptr);
    alone->release();
}

TEST(ErrorFlags, AddingAFlaggedChildFlagsOnlyTheNewParent) {
    TestTree* root = new TestTree(NT_UNIT);
    root->addRef();
    TestTree* mid = new TestTree(NT_DECL);
    root->addChild(mid);
    TestTree* bad = new TestTree(NT_GROUP);
    bad->logError(nullptr, -8001);
    mid->addChild(bad);
    EXPECT_TRUE(mid->hasError());
    EXPECT_FALSE(root->hasError());
    root->release();
}

TEST(ErrorFlags, ClearingReexaminesTheParents) {
    TestTree* root = new TestTree(NT_UNIT);
    root->addRef();
    TestTree* a = new TestTree(NT_DECL);
    TestTree* b = new TestTree(NT_DECL);
    root->addChild(a);
    root->addChild(b);
    a->logError(nullptr, -8001);
    b->logError(nullptr, -8002);
    a->clearErrors(false);
    EXPECT_FALSE(a->hasError());
    EXPECT_TRUE(root->hasError());
    b->clearErrors(false);
    EXPECT_FALSE(root->hasError());

    a->logError(nullptr, -8001);
    root->logError(nullptr, -8003);
    a->clearErrors(true);
    EXPECT_TRUE(root->hasError());  // its own record keeps it
    root->clearErrors(true);
    EXPECT_FALSE(root->hasError());
    EXPECT_EQ(root->getAttributes()->getCount(), 0);
    root->release();
}

TEST(ErrorRecords, ArgumentsAreFileLineColumnCodeThenFive) {
    TestLexer* lexer = new TestLexer(testText("a\n  bb", "dir/file.c"),
                                     BPLEX_NO_WHITESPACE | BPLEX_NO_NEWLINES);
    lexer->addRef();
    lexer->currentToken();
    Token* bb = lexer->nextToken();
    TestTree* node = new TestTree(NT_DECL);
    node->addRef();
    node->addChild(bb);
    node->logErrorAtNode(node, -8002, QBString(";"), QBString(), QBString("c"));
    const ErrorLog::Record* record = node->getAttributes()->getRecord(0);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(node->getAttributes()->getRecord(1), nullptr);
    ASSERT_EQ(record->arguments.count(), 9u);
    const char* expected[] = {"dir/file.c", "2", "2", "-8002", ";", "", "c", "", ""};
    for (unsigned i = 0; i < 9; ++i) EXPECT_EQ(str(record->arguments[i]), expected[i]) << i;
    EXPECT_EQ(record->severity, 2);
    EXPECT_EQ(record->position, nullptr);

    node->logWarning(nullptr, -8006);
    const ErrorLog::Record* bare = node->getAttributes()->getRecord(1);
    EXPECT_EQ(str(bare->arguments[0]), "");
    EXPECT_EQ(str(bare->arguments[1]), "0");
    EXPECT_EQ(str(bare->arguments[2]), "0");
    node->release();
    lexer->release();
}

TEST(ErrorRecords, LoggingAtTheSourceUsesItsCurrentToken) {
    TestLexer* lexer = new TestLexer(testText("one two"), BPLEX_NO_WHITESPACE);
    lexer->addRef();
    lexer->currentToken();
    lexer->nextToken();
    TestTree* node = new TestTree(NT_DECL);
    node->addRef();
    node->logErrorAtSource(*lexer, -8001);
    EXPECT_EQ(str(node->getAttributes()->getRecord(0)->arguments[2]), "5");
    node->release();

    // At the end of a list source the node's own last leaf gives the place.
    TokenList none;
    auto* empty = new TBPArrayTokenSource<CPParseNodeType>(none);
    empty->addRef();
    TestTree* holder = new TestTree(NT_DECL);
    holder->addRef();
    holder->addChild(lexer->currentToken());
    holder->logErrorAtSource(*empty, -8001);
    EXPECT_EQ(str(holder->getAttributes()->getRecord(0)->arguments[2]), "5");
    holder->release();
    empty->release();
    lexer->release();
}

TEST(ErrorRecords, AttemptDroppedByRollbackLeavesNoTrace) {
    auto* filter = new CPWhitespaceFilter(new TestLexer(testText("a ( b ;")));
    filter->addRef();
    TestTree* root = new TestTree(NT_UNIT);
    root->addRef();
    filter->currentToken();

    // A tentative parse that fails: its node logs, then the attempt is taken back.
    filter->mark();
    TestTree* attempt = new TestTree(NT_DECL);
    attempt->addRef();
    attempt->addChild(filter->currentToken());
    attempt->addChild(filter->nextToken());
    attempt->logErrorAtSource(*filter, -8002, QBString(")"));
    EXPECT_TRUE(attempt->hasError());
    filter->rollback();
    attempt->release();

    // The same tokens, read again, go into the kept tree.
    for (Token* t = filter->currentToken(); t; t = filter->nextToken()) {
        root->addChild(t);
        if (t->getType() == CPT_EOF) break;
    }
    ErrorLog log;
    EXPECT_EQ(root->collectErrors(log), 0);
    EXPECT_EQ(log.getCount(), 0);
    EXPECT_FALSE(root->hasError());
    for (unsigned i = 0; i < root->getChildCount(); ++i)
        EXPECT_FALSE(root->getChild(i)->hasError()) << i;
    QBString text("");
    root->getTextString(text);
    EXPECT_EQ(str(text), "a ( b ;");
    root->release();
    filter->release();
}

TEST(ErrorRecords, LexerMessagesRideOnTheirTokens) {
    TestLexer* lexer = new TestLexer(testText("x !! ??"));
    lexer->addRef();
    TestTree* root = new TestTree(NT_UNIT);
    root->addRef();
    for (Token* t = lexer->currentToken(); t; t = lexer->nextToken()) {
        root->addChild(t);
        if (t->getType() == CPT_EOF) break;
    }
    ErrorLog log;
    root->collectErrors(log);
    ASSERT_EQ(log.getCount(), 2);
    EXPECT_EQ(log.getRecord(0)->code, TEST_LEX_ERROR);
    EXPECT_EQ(str(log.getRecord(0)->arguments[2]), "5");  // where the scan stopped
    EXPECT_EQ(log.getRecord(1)->code, TEST_LEX_WARNING);
    EXPECT_EQ(log.getErrorCount(), 1);
    EXPECT_EQ(log.getWarningCount(), 1);
    root->release();
    lexer->release();

    TestLexer* quiet = new TestLexer(testText("!!"), BPLEX_QUIET);
    quiet->addRef();
    EXPECT_EQ(quiet->currentToken()->getAttributes(), nullptr);
    quiet->release();
}

TEST(ErrorRecords, CollectionFollowsTreeOrderChildrenFirst) {
    BPSourcePosition nowhere;
    TestTree* root = new TestTree(NT_UNIT);
    root->addRef();
    TestTree* decl = new TestTree(NT_DECL);
    Token* token = new Token(CPT_IDENTIFIER, nowhere, 0, nowhere);
    Token* space = new Token(CPT_WHITESPACE, nowhere, 0, nowhere);
    root->addChild(decl);
    decl->addChild(token);
    root->logError(nullptr, -8004);
    decl->logError(nullptr, -8003);
    token->logError(nullptr, -8002);
    space->logWarning(nullptr, -8006);
    TokenList ws;
    ws.add(space);
    token->addWhitespace(ws);
    ErrorLog log;
    EXPECT_EQ(root->collectErrors(log), 0);
    ASSERT_EQ(log.getCount(), 4);
    int order[] = {-8006, -8002, -8003, -8004};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(log.getRecord(i)->code, order[i]);

    ErrorLog twice;
    twice.merge(log);
    twice.merge(log);
    EXPECT_EQ(twice.getCount(), 8);  // no test for doubles
    root->release();
}

TEST(ErrorLogCounts, WarningsOnlyCountNoErrors) {
    TestTree* node = new TestTree(NT_DECL);
    node->addRef();
    node->logWarning(nullptr, -8006);
    node->logWarning(nullptr, -8017);
    EXPECT_EQ(node->getAttributes()->getErrorCount(), 0);
    EXPECT_EQ(node->getAttributes()->getWarningCount(), 2);
    EXPECT_EQ(node->getAttributes()->getRecord(-1), nullptr);
    node->release();
}

TEST_F(Messages, RecordsFormatThroughTheMessageFile) {
    TestLexer* lexer = new TestLexer(testText("int\n\tfoo", "a.c"),
                                     BPLEX_NO_WHITESPACE | BPLEX_NO_NEWLINES);
    lexer->addRef();
    lexer->currentToken();
    TestTree* node = new TestTree(NT_DECL);
    node->addRef();
    node->addChild(lexer->nextToken());
    node->logErrorAtNode(node, -8001, QBString("foo"));
    node->logWarning(nullptr, -8006);
    node->logErrorAtNode(node, -8002, QBString(";"), QBString("foo"));
    ErrorLog log;
    node->collectErrors(log);
    EXPECT_EQ(formatted(log),
              "a.c(2,1) error -8001: syntax error at 'foo'\n"
              "(0,0) warning -8006: suspicious characters\n"
              "a.c(2,1) error -8002: ';' expected before 'foo'\n");
    QBString own("");
    node->appendErrors(own);
    EXPECT_EQ(str(own), formatted(log));
    node->release();
    lexer->release();
}

TEST_F(Messages, StoreTextsFillsOneFilesEntryAfresh) {
    TestTree* node = new TestTree(NT_DECL);
    node->addRef();
    node->logError(nullptr, -8001, QBString("x"));
    node->logError(nullptr, -8999);  // a text that comes out empty is left out
    node->logWarning(nullptr, -8006);
    ErrorLog log;
    node->collectErrors(log);

    QBHashTable<QBString, QBArray<QBString>> errorFiles(QBString::hashString);
    QBArray<QBString> stale;
    stale.add(QBString("old"));
    errorFiles.set(QBString("f.c"), stale);
    EXPECT_EQ(log.storeTexts(errorFiles, QBString("f.c")), 0);
    QBArray<QBString>* list = errorFiles.find(QBString("f.c"));
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->count(), 2u);
    EXPECT_EQ(str((*list)[0]), "(0,0) error -8001: syntax error at 'x'");
    EXPECT_EQ(str((*list)[1]), "(0,0) warning -8006: suspicious characters");
    EXPECT_EQ(errorFiles.count(), 1);
    node->release();
}

TEST_F(Messages, WithoutTheHostTextsFallBackToNumbers) {
    removeTestMessages();
    TestTree* node = new TestTree(NT_DECL);
    node->addRef();
    node->logError(nullptr, -8001);
    QBString out("");
    ErrorLog::format(*node->getAttributes()->getRecord(0), out);
    EXPECT_EQ(str(out), "message -8000message -8001");
    node->release();
}
