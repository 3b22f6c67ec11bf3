// Golden trees of statements, with the choice between a declaration and an expression.
#include <gtest/gtest.h>

#include "support/GoldenTrees.h"

std::vector<GoldenCase> statementCases() {
    return {
        {"declaration_or_expression",
         "a * b with a parameter a is an expression; c * d declares d; T(y) declares y; f(1) and x = 1 are expressions",
         "void f(int a) { a * b; c * d; T(y); f(1); x = 1; }\n", false,
         {"[MultiplicativeExpression", "[DeclarationStatement", "[ExpressionStatement"}},
        {"labels_and_goto", "labels, keyword-like labels and goto",
         "void f() { top: x++; goto top; again: ; }\n", false, {"[LabeledStatement", "[GotoStatement"}},
        {"label_without_statement", "label: } logs -8001 and goes on", "void f() { label: }\n", true},
        {"if_else_chain", "an else-if chain stays flat in one IfStatement",
         "void f() { if (a) b; else if (c) d; else if (e) g; else h; if (x) y; }\n", false,
         {"[IfStatement", "else="}},
        {"conditions_with_declarations", "conditions that declare: if, while, switch, for",
         "void f() {\n  if (int a = g()) { }\n  while (T *p = next()) { }\n  switch (int k = 3) { case 1: ; }\n"
         "  for (; char c = *s; ++s) ;\n}\n",
         false, {"[AssignmentCondition"}},
        {"switch_cases", "case, GNU case ranges, default and statements before the first label",
         "void f() {\n  switch (a) {\n    x();\n  case 1: b(); break;\n  case 2 ... 5:\n  case 'x': { }\n  default: ;\n  }\n}\n",
         false, {"[SwitchStatement", "[SwitchCaseStatementSequence", "[SwitchCaseStatement", "ELLIPSE="}},
        {"switch_without_braces", "switch (a) case 1: b(); has null brace children",
         "void f() { switch (a) case 1: b(); c(); }\n", false, {"[SwitchCaseStatement"}},
        {"switch_two_defaults", "two default labels log -8073 and -8018, and both stay",
         "void f() { switch (a) { default: ; default: ; } }\n", true},
        {"loops", "for with an expression, a declaration and nothing in its header; while; do",
         "void f() {\n  for (;;) ;\n  for (int i = 0, j = 1; i < j; ++i) { }\n  for (i = 0; i < n; i++) x += i;\n"
         "  while (x) x--;\n  do { } while (a < b);\n  do x(); while (0);\n}\n",
         false, {"[ForStatement", "[ForInitStatement", "[WhileStatement", "[DoWhileStatement"}},
        {"jumps", "return with and without a value, break, continue",
         "int f() { while (1) { if (a) break; else continue; } return; return a + 1; }\n", false,
         {"[ReturnStatement", "[BreakStatement", "[ContinueStatement"}},
        {"try_blocks", "try with handlers, rethrow, a handler by reference and an unnamed one",
         "void f() {\n  try { g(); } catch (const E& e) { throw; } catch (int) { } catch (...) { throw E(); }\n"
         "  try { } __finally { }\n}\n",
         false, {"[TryBlock", "[Handler", "[ExceptionDeclaration", "[ThrowExpression"}},
        {"try_without_handler", "try with neither handler nor __finally logs -8081", "void f() { try { } x = 1; }\n", true},
        {"structured_exceptions", "__try with __except, with __finally, with both; __leave",
         "void f() {\n  __try { } __except (EXCEPTION_EXECUTE_HANDLER) { }\n  __try { __leave; } __finally { }\n"
         "  __try { } __except (1) { } __finally { }\n}\n",
         false, {"[StructuredTryBlock", "[LeaveStatement"}},
        {"if_exists_statements", "__if_exists and __if_not_exists as statements",
         "void f() { __if_exists (x) { y(); } __if_not_exists (z) { } }\n", false, {"[IfExistsStatement"}},
        {"blocks_and_empty", "nested blocks, empty statements and a declaration statement",
         "void f() { int a; { } ; { ; } }\n", false, {"[EmptyStatement", "[BlockStatement"}},
        {"asm_statements", "assembly inside a function", "void f() { __asm { mov eax, 1 } asm(\"nop\"); }\n",
         false, {"[ASMDefinition"}},
        {"missing_semicolon", "a missing ; after x = 1 logs -8002 and the next statement is parsed",
         "void f() { x = 1 y = 2; z = 3; }\n", true, {"IDENTIFIER=3           z"}},
        {"broken_for_header", "the for statement's recovery stops at ) and leaves its body",
         "void f() { for (int i = ; ; ) x(); y(); }\n", true},
        {"condition_without_declarator", "a condition that is neither an expression nor a declaration keeps its tokens",
         "void f() { while (T * = next()) { } }\n", true, {"IDENTIFIER=3           T"}},
    };
}

TEST(Statements, GoldenTrees) { checkFamily("Statements", statementCases()); }
