// The grammar at its boundary: trees of tricky shapes, text round trips, recovery, hostile
// input, and the #if evaluator.
#include <gtest/gtest.h>

#include <string>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPParse.h"
#include "CPParseContext.h"
#include "CPWhitespaceFilter.h"

using quernbase::QBString;

namespace {

struct Parsed {
    CPParseTree* unit = nullptr;
    std::string text, tree, errors;
};

// Lexes, filters and parses text; the tree printed, its text and its messages.
Parsed parse(const std::string& source, bool evaluate = false, int64_t* value = nullptr) {
    Parsed result;
    BPSourceHandle handle = BPSourceHandle::makeTextSource(QBString(source.c_str()), 1, 0);
    CPLexer* lexer = new CPLexer(handle, 0);
    lexer->addRef();
    CPWhitespaceFilter* filter = new CPWhitespaceFilter(lexer);
    filter->addRef();
    if (evaluate) {
        cpEvaluateIfExpression(*filter, *value);
    } else if ((result.unit = cpParseCompilationUnit(*filter))) {
        result.unit->addRef();
        QBString out("");
        result.unit->getText(out);
        result.text = out.get();
        out.makeEmpty();
        result.unit->printToString(out, 0, false);
        result.tree = out.get();
        out.makeEmpty();
        result.unit->appendErrors(out);
        result.errors = out.get();
        result.unit->release();
        result.unit = nullptr;
    }
    filter->release();
    lexer->release();
    return result;
}

bool has(const std::string& tree, const std::string& piece) { return tree.find(piece) != std::string::npos; }

int64_t evaluate(const std::string& expression) {
    int64_t value = -12345;
    parse(expression, true, &value);
    return value;
}

}  // namespace

TEST(Shapes, EveryNameInTheShapeTablesIsAKind) {
    EXPECT_EQ(cpShapeProblems(), 0);
}

TEST(Declarations, PrototypeAndDefinition) {
    Parsed p = parse("int f();\nint f() {}\n");
    EXPECT_TRUE(has(p.tree, "[SimpleDeclaration\n"));
    EXPECT_TRUE(has(p.tree, "[FunctionDefinition\n"));
    EXPECT_EQ(p.errors, "");
    EXPECT_FALSE(has(p.tree, "INVALID"));
}

TEST(Declarations, ConstructorCallAtFileScopeAndQualifiedConstructor) {
    Parsed p = parse("x(1);\nA::A() : x(1) {}\n");
    EXPECT_EQ(p.errors, "");
    EXPECT_TRUE(has(p.tree, "[ParenthesizedInitializer"));
    EXPECT_TRUE(has(p.tree, "[CtorInitializer"));
}

TEST(Declarations, KeywordAsNameAndC99StarAndLinkage) {
    Parsed p = parse("int class = 3;\nint a[*];\nextern \"C\" int b;\nextern \"C\" { int c; }\n");
    EXPECT_EQ(p.errors, "");
    EXPECT_TRUE(has(p.tree, "class=24"));
    EXPECT_TRUE(has(p.tree, "[LinkageSpecification"));
}

TEST(Templates, TemplateIdVersusLessThan) {
    Parsed nested = parse("vector<vector<int> > v;\n");
    EXPECT_EQ(nested.errors, "");
    EXPECT_TRUE(has(nested.tree, "[TemplateID"));
    Parsed shift = parse("void f() { vector<vector<int>> v; }\n");
    EXPECT_FALSE(has(shift.tree, "[TemplateID"));
    Parsed logical = parse("void f() { a < b && c > d; }\n");
    EXPECT_FALSE(has(logical.tree, "[TemplateID"));
    EXPECT_TRUE(has(logical.tree, "[LogicalAndExpression"));
    Parsed forward = parse("template <class T> class A;\n");
    EXPECT_TRUE(has(forward.tree, "[ForwardClassSpecifier"));
}

TEST(Statements, DeclarationFirstThenExpression) {
    Parsed p = parse("void f(int a) { a * b; x = 1; if (a) b; else if (c) d; else e; for (;;) ; }\n");
    EXPECT_EQ(p.errors, "");
    EXPECT_TRUE(has(p.tree, "[MultiplicativeExpression"));
    EXPECT_TRUE(has(p.tree, "[AssignmentExpression"));
    EXPECT_TRUE(has(p.tree, "[ForInitStatement"));
}

TEST(Statements, MicrosoftAndGnuForms) {
    Parsed p = parse("void f() { __try { } __except (1) { } __finally { } "
                     "switch (a) { case 1 ... 3: break; } x = a ? : b; y = ({ int q; q; }); }\n");
    EXPECT_EQ(p.errors, "");
    EXPECT_TRUE(has(p.tree, "[StructuredTryBlock"));
    EXPECT_TRUE(has(p.tree, "ELLIPSE"));
    EXPECT_TRUE(has(p.tree, "[ConditionalExpression"));
    EXPECT_TRUE(has(p.tree, "[BlockStatement"));
}

TEST(Recovery, MissingSemicolonKeepsTokensAndGoesOn) {
    std::string source = "void f() { x = 1 y = 2; z = 3; }\n";
    Parsed p = parse(source);
    EXPECT_EQ(p.text, source);
    EXPECT_TRUE(has(p.errors, "8002"));
    EXPECT_TRUE(has(p.tree, "IDENTIFIER=3           z"));
}

TEST(Recovery, FailedAttemptsLeaveNoMessages) {
    // The definition is read as a declaration first, which fails at its brace.
    Parsed p = parse("int f() { return 1; }\n");
    EXPECT_EQ(p.errors, "");
}

TEST(Hostile, InputsGiveTreesThatKeepEveryByte) {
    std::string deep(5000, '(');
    const std::string inputs[] = {
        "}}}{{{", "template<", "int x = " + deep + ";", "a<b<c>>d;", "template <class T> f<T>> x;",
        ") ( ] [ ; ; operator", "class A : public B", "int;", "struct S { int a : 3; int : 0; };",
    };
    for (const std::string& input : inputs) {
        Parsed p = parse(input);
        EXPECT_EQ(p.text, input);
    }
}

TEST(Evaluator, SignedQuirksOfIfExpressions) {
    EXPECT_EQ(evaluate("0x10 == 16"), 1);
    EXPECT_EQ(evaluate("010 == 8"), 1);
    EXPECT_EQ(evaluate("10L == 10"), 1);
    EXPECT_EQ(evaluate("'A' == 65"), 1);
    EXPECT_EQ(evaluate("'\\101' == 65"), 0);
    EXPECT_EQ(evaluate("-1 < 0u"), 1);
    EXPECT_EQ(evaluate("1 || (1/0)"), 1);
    EXPECT_EQ(evaluate("1 ? 2 : (1/0)"), 2);
    EXPECT_EQ(evaluate("FOO"), 0);
    EXPECT_EQ(evaluate("!FOO"), 1);
    EXPECT_EQ(evaluate("(3 <? 2)"), 2);
    EXPECT_EQ(evaluate("1 << 65"), 2);
}
