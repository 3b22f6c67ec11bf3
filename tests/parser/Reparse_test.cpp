// The repairs that analysis asks of the grammar: a node's tokens read again by another rule. The
// new node must keep every byte, replace the old one cleanly, and refuse a reading that doesn't
// use all the tokens.
#include <gtest/gtest.h>

#include <string>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPParse.h"
#include "CPWhitespaceFilter.h"
#include "support/GoldenTrees.h"

using quernbase::QBString;

namespace {

std::string textOf(const CPParseNode* node) {
    QBString out("");
    node->getText(out);
    return out.get();
}

std::string printOf(CPParseTree* node) {
    QBString out("");
    node->printToString(out, 0, false);
    return out.get();
}

CPParseTree* findFirst(CPParseNode* node, int type) {
    if (!node || node->isToken()) return nullptr;
    CPParseTree* tree = static_cast<CPParseTree*>(node);
    if (tree->getType() == type) return tree;
    for (unsigned i = 0; i < tree->getChildCount(); ++i)
        if (CPParseTree* found = findFirst(tree->getChild(i), type)) return found;
    return nullptr;
}

// A parsed unit that the test owns, with the node of one kind that the repair is asked about.
class Unit {
public:
    explicit Unit(const std::string& source) : text(source) {
        BPSourceHandle handle = BPSourceHandle::makeTextSource(QBString(source.c_str()), 1, 0);
        lexer = new CPLexer(handle, 0);
        lexer->addRef();
        filter = new CPWhitespaceFilter(lexer);
        filter->addRef();
        root = cpParseCompilationUnit(*filter);
        if (root) root->addRef();
    }
    ~Unit() {
        if (root) root->release();
        filter->release();
        lexer->release();
    }
    CPParseTree* find(int type) { return findFirst(root, type); }
    // Puts repaired in the place of old; the unit's text must not change.
    void replace(CPParseTree* old, CPParseTree* repaired) {
        CPParseTree* parent = static_cast<CPParseTree*>(old->getParent());
        ASSERT_NE(parent, nullptr);
        int index = parent->indexOfChild(old, false);
        ASSERT_GE(index, 0);
        EXPECT_EQ(repaired->getParent(), parent);
        parent->setChild(unsigned(index), repaired);
        EXPECT_EQ(textOf(root), text);
    }

    std::string text;
    CPParseTree* root = nullptr;

private:
    CPLexer* lexer;
    CPWhitespaceFilter* filter;
};

}  // namespace

TEST(Reparse, FunctionDeclaratorBecomesAVariable) {
    for (const char* source : {"void f() { T x(a); }\n", "void f() { T *x (a + 1); }\n", "T x(a), y;\n"}) {
        Unit unit(source);
        CPParseTree* declarator = unit.find(CPN_InitDeclarator);
        ASSERT_NE(declarator, nullptr) << source;
        std::string before = textOf(declarator);
        CPParseTree* repaired = cpReparseAsVariable(declarator);
        ASSERT_NE(repaired, nullptr) << source;
        EXPECT_EQ(repaired->getType(), CPN_InitDeclarator);
        std::string tree = printOf(repaired);
        EXPECT_TRUE(holds(tree, "[ParenthesizedInitializer")) << tree;
        EXPECT_FALSE(holds(tree, "[FunctionDeclarator")) << tree;
        EXPECT_EQ(textOf(repaired), before);
        unit.replace(declarator, repaired);
    }
}

TEST(Reparse, RealParameterListIsNoVariable) {
    Unit unit("T x(int a);\n");
    CPParseTree* declarator = unit.find(CPN_InitDeclarator);
    ASSERT_NE(declarator, nullptr);
    EXPECT_EQ(cpReparseAsVariable(declarator), nullptr);
    EXPECT_EQ(textOf(unit.root), unit.text);
    EXPECT_EQ(cpReparseAsVariable(nullptr), nullptr);
}

TEST(Reparse, CastBecomesABinaryExpressionOrACall) {
    struct Case {
        const char* source;
        const char* kind;
    };
    const Case cases[] = {
        {"void f() { y = (a) - b; }\n", "[AdditiveExpression"},
        {"void f() { y = (a) + b; }\n", "[AdditiveExpression"},
        {"void f() { y = (a) * b; }\n", "[MultiplicativeExpression"},
        {"void f() { y = (a) & b; }\n", "[AndExpression"},
        {"void f() { y = (a)(b, c); }\n", "[FunctionCallExpression"},
    };
    for (const Case& c : cases) {
        Unit unit(c.source);
        CPParseTree* cast = unit.find(CPN_CStyleCastExpression);
        ASSERT_NE(cast, nullptr) << c.source;
        std::string before = textOf(cast);
        CPParseTree* repaired = cpReparseCast(cast);
        ASSERT_NE(repaired, nullptr) << c.source;
        std::string tree = printOf(repaired);
        EXPECT_TRUE(holds(tree, c.kind)) << tree;
        EXPECT_FALSE(holds(tree, "INVALID")) << tree;
        EXPECT_FALSE(holds(tree, "CStyleCast")) << tree;
        EXPECT_EQ(textOf(repaired), before);
        unit.replace(cast, repaired);
    }
}

TEST(Reparse, CastsWithOtherOperandsStand) {
    for (const char* source : {"void f() { y = (T){1, 2}; }\n", "void f() { y = (int)x; }\n", "void f() { y = (a) !b; }\n"}) {
        Unit unit(source);
        CPParseTree* cast = unit.find(CPN_CStyleCastExpression);
        ASSERT_NE(cast, nullptr) << source;
        EXPECT_EQ(cpReparseCast(cast), nullptr) << source;
        EXPECT_EQ(textOf(unit.root), unit.text);
    }
    Unit notACast("void f() { y = (a); }\n");
    EXPECT_EQ(cpReparseCast(notACast.find(CPN_ParenthesizedExpression)), nullptr);
}

TEST(Reparse, DataMemberBecomesAConstructor) {
    Unit unit("class C {\n  C(x);\n};\n");
    CPParseTree* member = unit.find(CPN_MemberDeclaration);
    ASSERT_NE(member, nullptr);
    ASSERT_FALSE(holds(printOf(member), "[FunctionDeclarator")) << printOf(member);
    std::string before = textOf(member);
    CPParseTree* repaired = cpReparseMemberDeclaration(member);
    ASSERT_NE(repaired, nullptr);
    std::string tree = printOf(repaired);
    EXPECT_EQ(repaired->getType(), CPN_MemberDeclaration);
    EXPECT_TRUE(holds(tree, "[FunctionDeclarator")) << tree;
    EXPECT_EQ(textOf(repaired), before);
    unit.replace(member, repaired);
}
