// Parse trees: building from a real token stream, printing, editing and writing back, with the
// untouched bytes unchanged; navigation, equality, cloning and rule validation.
#include <gtest/gtest.h>

#include <string>

#include "CPWhitespaceFilter.h"
#include "support/FrameworkTestKit.h"
#include "support/TestLexer.h"

using quernbase::QBString;

namespace {

const char* const kFile = "int  x = 1; // keep\n\tfloat y;\n";

// Unit[ Decl[int x = 1 ;] Decl[float y ;] EOF ], from the file through the whitespace filter.
class BuiltTree : public ::testing::Test {
protected:
    void SetUp() override {
        auto* lexer = new TestLexer(testText(kFile));
        auto* filter = new CPWhitespaceFilter(lexer);
        filter->addRef();
        TokenList tokens = drainTokens(*filter);
        filter->release();
        ASSERT_EQ(tokens.count(), 9u);
        root = new TestTree(NT_UNIT);
        root->addRef();
        decl1 = new TestTree(NT_DECL);
        decl2 = new TestTree(NT_DECL);
        root->addChild(decl1);
        root->addChild(decl2);
        for (unsigned i = 0; i < 5; ++i) decl1->addChild(tokens[i]);
        for (unsigned i = 5; i < 8; ++i) decl2->addChild(tokens[i]);
        root->addChild(tokens[8]);
        releaseAll(tokens);
    }
    void TearDown() override {
        root->release();
        Node::setTypeNameFunction(nullptr);
    }
    std::string text(Node* node) {
        QBString out("x");
        node->getTextString(out);
        return str(out);
    }
    Token* token(Tree* decl, unsigned i) { return decl->getTokenChild(i); }

    TestTree* root = nullptr;
    TestTree* decl1 = nullptr;
    TestTree* decl2 = nullptr;
};

}  // namespace

TEST_F(BuiltTree, TextOfTheRootIsTheFile) {
    EXPECT_EQ(text(root), kFile);
    EXPECT_EQ(text(decl2), " // keep\n\tfloat y;");  // a comment leads the next token
    EXPECT_FALSE(root->isModified());
}

TEST_F(BuiltTree, SetSpellingChangesExactlyThatTokensBytes) {
    Token* x = token(decl1, 1);
    EXPECT_EQ(x->setSpelling("value"), 0);
    EXPECT_EQ(text(root), "int  value = 1; // keep\n\tfloat y;\n");
    EXPECT_TRUE(x->isModified());
    EXPECT_TRUE(decl1->isModified());
    EXPECT_TRUE(root->isModified());
    EXPECT_FALSE(decl2->isModified());
    EXPECT_FALSE(token(decl1, 0)->isModified());
    EXPECT_EQ(x->getLength(), 5u);
    EXPECT_EQ(x->getSeekPosition(), 5u);  // the place it was read from stays
}

TEST_F(BuiltTree, SecondEditInASubtreeStopsBelowTheRoot) {
    token(decl1, 1)->setSpelling("a");
    root->getAttributes()->modified = false;
    token(decl1, 3)->setSpelling("2");
    EXPECT_TRUE(token(decl1, 3)->isModified());
    EXPECT_FALSE(root->isModified());
}

TEST_F(BuiltTree, StructuralEditsTouchOnlyTheirBytes) {
    // Replace the initializer with a fresh token, remove the first declaration's name.
    BPSourcePosition nowhere;
    Token* two = new Token(CPParseNodeType(TT_WORD), nowhere, 0, nowhere);
    two->setSpelling("2");
    two->copyWhitespace(token(decl1, 3));
    EXPECT_EQ(decl1->setChild(3, two), 0);
    EXPECT_EQ(text(root), "int  x = 2; // keep\n\tfloat y;\n");

    EXPECT_EQ(decl2->insertChild(1, nullptr), 0);
    EXPECT_EQ(decl2->getChildCount(), 4u);
    EXPECT_EQ(text(root), "int  x = 2; // keep\n\tfloat y;\n");

    root->removeChildren(0, 1);
    EXPECT_EQ(text(root), " // keep\n\tfloat y;\n");
    EXPECT_EQ(root->getChildCount(), 2u);
}

TEST_F(BuiltTree, RemovedChildLosesItsParentButLivesWhileHeld) {
    decl1->addRef();
    EXPECT_EQ(root->removeChildren(0, 1), 0);
    EXPECT_EQ(decl1->getParent(), nullptr);
    EXPECT_EQ(text(decl1), "int  x = 1;");
    EXPECT_EQ(token(decl1, 0)->getParent(), decl1);
    decl1->release();
}

TEST_F(BuiltTree, ChildSlotsAreFixed) {
    EXPECT_EQ(decl1->setChild(2, nullptr), 0);
    EXPECT_EQ(decl1->getChildCount(), 5u);
    EXPECT_EQ(decl1->getChild(2), nullptr);
    EXPECT_EQ(text(decl1), "int  x 1;");
    EXPECT_EQ(decl1->setChild(5, nullptr), -1);
    EXPECT_EQ(decl1->insertChild(7, nullptr), -1);
    EXPECT_EQ(decl1->findChildOfType(CPT_IDENTIFIER, 2), 3);
    EXPECT_EQ(decl1->findChildOfType(CPT_IDENTIFIER, 5), -1);
    EXPECT_EQ(decl1->getChild(99), nullptr);
    EXPECT_EQ(decl1->getTokenChild(2), nullptr);
}

TEST_F(BuiltTree, RemoveChildrenClampsTheCount) {
    EXPECT_EQ(decl1->removeChildren(2, 100), 0);
    EXPECT_EQ(decl1->getChildCount(), 2u);
    EXPECT_EQ(decl1->removeChildren(2, 1), -1);
    EXPECT_EQ(text(decl1), "int  x");
}

TEST_F(BuiltTree, NavigationWalksLeavesInDocumentOrder) {
    Token* semicolon = token(decl1, 4);
    Token* floatToken = token(decl2, 0);
    EXPECT_EQ(semicolon->getNextToken(), floatToken);
    EXPECT_EQ(floatToken->getPreviousToken(), semicolon);
    EXPECT_EQ(root->getFirstToken(), token(decl1, 0));
    EXPECT_EQ(root->getLastToken(), root->getTokenChild(2));
    EXPECT_EQ(root->getLastToken()->getNextToken(), nullptr);
    EXPECT_EQ(root->indexOfChild(floatToken, false), -1);
    EXPECT_EQ(root->indexOfChild(floatToken, true), 1);
    EXPECT_EQ(floatToken->findAncestor(CPParseNodeType(NT_UNIT)), root);
    EXPECT_TRUE(root->isAncestor(floatToken));
    EXPECT_FALSE(decl1->isAncestor(floatToken));
    // A whitespace token's parent is its token: navigation does not leave it.
    Token* comment = floatToken->getWhitespace(0);
    EXPECT_EQ(comment->getParent(), floatToken);
    EXPECT_EQ(comment->getNextToken(), nullptr);
    EXPECT_EQ(root->findEnclosingScope(), nullptr);
}

TEST_F(BuiltTree, FindTokenAtUsesSeekRanges) {
    QBString file("test.c");
    EXPECT_EQ(root->findTokenAt(file, 5, false), token(decl1, 1));
    EXPECT_EQ(root->findTokenAt(file, 3, false), nullptr);  // the blanks in front of x
    EXPECT_EQ(root->findTokenAt(file, 3, true), token(decl1, 1));
    EXPECT_EQ(root->findTokenAt(file, 21, false), token(decl2, 0));
    EXPECT_EQ(root->findTokenAt(QBString("other.c"), 5, false), nullptr);
}

TEST_F(BuiltTree, PrintShowsStructureWhitespaceAndFlags) {
    Node::setTypeNameFunction(testTypeName);
    QBString out("");
    decl2->printToString(out, 2, true);
    EXPECT_EQ(str(out),
              "  [Decl     ***INVALID***\n"
              "    ( WHITESPACE\n"
              "      WHITESPACE=8            \n"
              "      LINE_COMMENT=10        // keep\n"
              "      NEWLINE=9              \\n\n"
              "      WHITESPACE=8           \\t\n"
              "    )\n"
              "    IDENTIFIER=3           float\n"
              "    ( WHITESPACE\n"
              "      WHITESPACE=8            \n"
              "    )\n"
              "    IDENTIFIER=3           y\n"
              "    PUNCT=150              ;\n"
              "  ]\n");
}

TEST_F(BuiltTree, PrintOfAnErrorNodeSkipsValidation) {
    struct Counting : TestTree {
        Counting() : TestTree(NT_GROUP) {}
        int validate() override { return ++calls, 0; }
        int calls = 0;
    };
    Counting* node = new Counting;
    root->insertChild(0, node);
    node->addChild(nullptr);
    QBString out("");
    node->printToString(out, 0, false);
    EXPECT_EQ(str(out), "[CUSTOM\n  (null)\n]\n");
    EXPECT_EQ(node->calls, 1);
    node->setErrorFlag(false);
    out.makeEmpty();
    node->printToString(out, 0, false);
    EXPECT_EQ(str(out), "[CUSTOM     ***ERRORS***\n  (null)\n]\n");
    EXPECT_EQ(node->calls, 1);
}

TEST_F(BuiltTree, CloneIsEqualAndIndependent) {
    decl1->ensureAttributes()->modified = true;
    decl1->logError(nullptr, -8001);
    Node* copy = root->clone();
    ASSERT_NE(copy, nullptr);
    copy->addRef();
    EXPECT_EQ(copy->getRefCount(), 1);
    EXPECT_EQ(copy->getParent(), nullptr);
    EXPECT_TRUE(root->equals(copy));
    EXPECT_EQ(text(copy), kFile);
    Node* copiedDecl = copy->getChild(0);
    EXPECT_NE(copiedDecl, decl1);
    EXPECT_EQ(copiedDecl->getParent(), copy);
    EXPECT_TRUE(copiedDecl->isModified());
    EXPECT_TRUE(copiedDecl->hasError());
    EXPECT_EQ(copiedDecl->getAttributes()->getCount(), 0);  // flags travel, records don't
    Token* copiedX = copiedDecl->getTokenChild(1);
    copiedX->setSpelling("z");
    EXPECT_FALSE(root->equals(copy));
    EXPECT_EQ(text(root), kFile);
    EXPECT_EQ(copiedX->getWhitespaceCount(), 1u);
    EXPECT_NE(copiedX->getWhitespace(0), token(decl1, 1)->getWhitespace(0));
    copy->release();
}

TEST(ParseTreeEquality, NullSlotsAndShapes) {
    BPSourcePosition nowhere;
    auto leaf = [&](const char* s) {
        Token* t = new Token(CPT_IDENTIFIER, nowhere, 0, nowhere);
        t->setSpelling(s);
        return t;
    };
    TestTree* a = new TestTree(NT_DECL);
    TestTree* b = new TestTree(NT_DECL);
    a->addRef();
    b->addRef();
    a->addChild(leaf("p"));
    a->addChild(nullptr);
    b->addChild(leaf("p"));
    b->addChild(nullptr);
    EXPECT_TRUE(a->equals(b));
    b->setChild(1, leaf("q"));
    EXPECT_FALSE(a->equals(b));
    EXPECT_FALSE(b->equals(a));
    TestTree* empty = new TestTree(NT_DECL);
    empty->addRef();
    EXPECT_TRUE(empty->equals(nullptr));
    EXPECT_FALSE(a->equals(nullptr));
    EXPECT_FALSE(a->equals(a->getChild(0)));
    empty->release();
    a->release();
    b->release();
}

namespace {
// Decl: WORD PUNCT? (PUNCT WORD)* ;  Group: Decl+ (WORD | PUNCT)
const Rule kPair[] = {{TT_PUNCT, ' ', nullptr}, {TT_WORD, ' ', nullptr}, {0, 0, nullptr}};
const Rule kDeclRules[] = {
    {TT_WORD, ' ', nullptr}, {TT_PUNCT, '?', nullptr}, {0, '*', kPair}, {0, 0, nullptr}};
const Rule kEnding[] = {{TT_WORD, ' ', nullptr}, {TT_PUNCT, ' ', nullptr}, {0, 0, nullptr}};
const Rule kGroupRules[] = {{NT_DECL, '+', nullptr}, {0, '|', kEnding}, {0, 0, nullptr}};

// Builds a Decl from a pattern: w = word, p = punctuation, 0 = null slot.
TestTree* declOf(const char* pattern) {
    BPSourcePosition nowhere;
    TestTree* decl = new TestTree(NT_DECL, kDeclRules);
    for (const char* c = pattern; *c; ++c) {
        if (*c == '0') decl->addChild(nullptr);
        else decl->addChild(new Token(CPParseNodeType(*c == 'w' ? TT_WORD : TT_PUNCT), nowhere, 0,
                                      nowhere));
    }
    return decl;
}

int validity(const char* pattern) {
    TestTree* decl = declOf(pattern);
    decl->addRef();
    int rc = decl->validate();
    decl->release();
    return rc;
}
}  // namespace

TEST(ParseTreeValidation, RuleOperators) {
    EXPECT_EQ(validity("w"), 0);
    EXPECT_EQ(validity("wp"), 0);
    EXPECT_EQ(validity("wppw"), 0);
    EXPECT_EQ(validity("wppwpw"), 0);
    EXPECT_EQ(validity("wpw"), -1);  // no backtracking: the optional item took the p
    EXPECT_EQ(validity("w0pw"), 0);  // the optional item's slot is null
    EXPECT_EQ(validity("0"), -1);
    EXPECT_EQ(validity("p"), -1);
    EXPECT_EQ(validity("ww"), -1);   // a child left over
    EXPECT_EQ(validity("wpp"), -1);  // a repeated pair cut short
    EXPECT_EQ(validity(""), -1);
}

TEST(ParseTreeValidation, NestedNodesAndCaching) {
    BPSourcePosition nowhere;
    TestTree* group = new TestTree(NT_GROUP, kGroupRules);
    group->addRef();
    TestTree* good = declOf("wp");
    group->addChild(good);
    group->addChild(declOf("w"));
    group->addChild(new Token(CPParseNodeType(TT_PUNCT), nowhere, 0, nowhere));
    EXPECT_EQ(group->validate(), 0);
    EXPECT_TRUE(group->isValidated());

    good->addChild(nullptr);  // a null slot where no optional item may stand
    group->clearValidation();
    good->clearValidation();
    EXPECT_EQ(good->validate(), -1);
    EXPECT_EQ(group->validate(), -1);

    good->removeChildren(2, 1);
    EXPECT_EQ(group->validate(), -1);  // cached
    group->clearValidation();
    good->clearValidation();
    EXPECT_EQ(group->validate(), 0);
    group->setErrorFlag(false);
    EXPECT_EQ(group->validate(), -1);  // a node with errors is never valid
    group->release();
}
