// Golden trees of templates: declarations, parameters, ids against less-than, instantiation and
// specialization.
#include <gtest/gtest.h>

#include "support/GoldenTrees.h"

std::vector<GoldenCase> templateCases() {
    return {
        {"template_id_declares", "a < b > c; in a block: a<b> is a template id, and c is declared",
         "void f() { a < b > c; }\n", false, {"[TemplateID", "[DeclarationStatement"}},
        {"logical_operator_means_expression", "a < b && c > d; the && makes an expression",
         "void f() { a < b && c > d; }\n", false, {"[LogicalAndExpression"}, {"[TemplateID"}},
        {"parenthesized_greater", "a < (b > c) > d; the GT inside parentheses doesn't count",
         "void f() { a < (b > c) > d; }\n", false, {"[TemplateID", "[ParenthesizedExpression"}},
        {"nested_with_space", "vector<vector<int> > v; is a template id in a template id",
         "vector<vector<int> > v;\n", false, {"[TemplateArgument", "[TypeID"}},
        {"nested_with_shift", ">> is one token and closes no list, so this is no declaration",
         "void f() { vector<vector<int>> v; }\n", true, {}, {"[TemplateID"}},
        {"forward_template_class", "template <class T> class A; is forward",
         "template <class T> class A;\n", false, {"[TemplateDeclaration", "[ForwardClassSpecifier", "[TypeParameter"}},
        {"parameter_kinds", "type, non-type, defaulted and template template parameters",
         "template <class T, int N = 3, typename U = T*, template <class> class TT = std::vector, class A::B x = 0>\n"
         "class Array { T data[N]; };\n",
         false, {"[TemplateParameterList", "[TemplateParameter", "[ParameterDeclaration"}},
        {"function_template", "a function template definition",
         "template <typename T> T max(T a, T b) { return a > b ? a : b; }\n", false,
         {"[FunctionDefinition", "[ConditionalExpression"}},
        {"member_template_outside", "two template headers for a member template defined outside",
         "template <class T> template <class U> void A<T>::f(U u) { }\n", false, {"[QualifiedClassID"}},
        {"member_templates", "templates inside a class",
         "class A {\n  template <class T> void f(T);\n  template <class T> struct R { };\n};\n", false,
         {"[TemplateDeclaration"}},
        {"explicit_instantiations", "template without < instantiates; extern template too",
         "template class A<int>;\ntemplate void f<int>(int);\nextern template class A<char>;\n", false,
         {"[ExplicitInstantiation"}},
        {"explicit_specializations", "template <> specializes a class and a function",
         "template <> class A<void> { };\ntemplate <> void f<char>(char) { }\n", false,
         {"[ExplicitSpecialization"}},
        {"typename_specifiers", "typename with nested names and template in a dependent name",
         "template <class T> void f() {\n  typename T::type x;\n  typename T::template rebind<int>::other y;\n}\n", false,
         {"[TypenameTypeSpecifier"}},
        {"template_arguments", "a type id, constants, an expression in parentheses, a call with arguments",
         "A<int*, 3, B<2> > a;\nA<(1 > 2)> b;\nint c = f<int>(3);\n", false,
         {"[TemplateArgument", "[FunctionCallExpression"}},
        {"operator_template_id", "operator== <> takes the LT and GT as its own children",
         "class A {\n  friend bool operator== <>(const A&, const A&);\n};\n", false, {"[OperatorFunctionID"}},
        {"export_template", "export before template", "export template <class T> void f(T);\n", false,
         {"export="}},
        {"user_defined_template_specifier", "N::template C<int> names a template through a nested name",
         "N::template C<int> x;\n", false, {"[UserDefinedTemplateSpecifier"}},
        {"unclosed_parameter_list", "a parameter list that never closes is reported", "template <class T\nint x;\n",
         true},
        {"less_than_in_statements", "a < b; and a for header compare; T<int> x; declares",
         "void f() { a < b; x = a < b; T<int> x; for (i = 0; i < n; i++) ; if (a < b) c = d > e; x = y < z ? 1 : 2; }\n",
         false, {"[RelationalExpression", "[TemplateID"}},
        {"defaults_and_members", "a defaulted type parameter; instantiation of a member; an operator specialization",
         "template <class T = int, class U = A<T> > struct P;\ntemplate void A<int>::f();\n"
         "template <> bool operator< <int>(int, int);\n",
         false, {"[ExplicitInstantiation", "[ExplicitSpecialization"}},
    };
}

TEST(Templates, GoldenTrees) { checkFamily("Templates", templateCases()); }
