// Golden trees of classes, members, bases and enums.
#include <gtest/gtest.h>

#include "support/GoldenTrees.h"

std::vector<GoldenCase> classCases() {
    return {
        {"members_and_access", "access labels open member sequences; data, static and typedef members",
         "class A {\n  int a;\npublic:\n  static const int n = 3;\n  typedef int T;\nprotected:\nprivate:\n  mutable int m;\n};\n",
         false, {"[MemberDeclarationSequence", "public=", "[MemberDeclarator"}},
        {"constructors_destructors_conversions", "C(); ~C(); operator int(); are members without a type",
         "class C {\n  C();\n  explicit C(int);\n  ~C();\n  virtual ~C();\n  operator int() const;\n  C(const C&);\n};\n",
         false, {"[DestructorID", "[ConversionFunctionID", "[ConversionTypeID"}},
        {"inline_member_functions", "definitions inside the class, with and without a trailing SEMICOLON",
         "struct S {\n  int get() const { return v; }\n  void set(int x) { v = x; };\n  S() : v(0) { }\n  int v;\n};\n",
         false, {"[InlineMemberFunctionDefinition", "[CtorInitializer"}},
        {"pure_virtual_and_operators", "= 0 is EQUALS and a constant in a member declarator; operator members",
         "class I {\n  virtual void f() = 0;\n  virtual int g(int) const = 0;\n  I& operator=(const I&);\n"
         "  bool operator<(const I&) const;\n  int operator[](int);\n  void operator()();\n  void* operator new(size_t);\n"
         "  void operator delete[](void*);\n};\n",
         false, {"[OperatorFunctionID", "EQUALS="}},
        {"bit_fields", "named and nameless bit fields; a constant expression as width",
         "struct S { int a : 3; int : 0; unsigned b : 1 + 2, c : 4; };\n", false, {"[BitFieldDeclarator"}},
        {"base_clauses", "access and virtual in both orders, qualified and template bases",
         "class D : public B, virtual protected C, private virtual E, F, ::N::G, public H<int> { };\n", false,
         {"[BaseClause", "[BaseSpecifier", "[UserDefinedBaseSpecifier", "virtual="}},
        {"missing_class_body", "a base clause with no brace logs -8002 {", "class A : public B\n", true},
        {"friends", "friend classes and functions, a friend defined in the class",
         "class A {\n  friend class B;\n  friend void f(A&);\n  friend int g() { return 1; }\n  friend struct ::N::C;\n};\n",
         false, {"friend="}},
        {"nested_types", "a nested class, enum and union, and an anonymous struct member",
         "class O {\n  class I { int x; };\n  enum E { a, b };\n  union U { int i; float f; } u;\n  struct { int a; } s;\n};\n",
         false, {"[EnumSpecifier", "[ClassSpecifier"}},
        {"enums", "a trailing COMMA, values, an unnamed enum and an elaborated use",
         "enum E { a, b = 2, c = b + 1, };\nenum { x };\nenum E e;\n", false,
         {"[EnumeratorDefinition", "[ElaboratedEnumSpecifier"}},
        {"elaborated_and_forward", "class A; is forward, class A *p; elaborated",
         "class A;\nclass A *p;\nstruct N::B *q;\nunion U;\n", false,
         {"[ForwardClassSpecifier", "[ElaboratedClassSpecifier"}},
        {"qualified_class_definitions", "a class named through a nested name, and a static member defined outside",
         "class N::C { int x; };\nint A::count = 0;\n", false, {"[NestedNameSpecifier"}},
        {"using_and_access_members", "a using declaration and an access declaration in a class",
         "class D : B {\n  using B::f;\n  B::g;\n};\n", false, {"[UsingDeclaration", "[ForwardMemberDeclaration"}},
        {"if_exists_members", "__if_exists in a class with an access label",
         "class C {\n  __if_exists(T::x) { public: int y; }\n  __if_not_exists(T::z) { int z; }\n};\n", false,
         {"[IfExistsMemberDeclarationSequence"}},
        {"member_attributes", "a bracketed attribute as a member",
         "class C {\n  [id(1)] void f();\n};\n", false, {"[Microsoft C++ Attribute"}},
        {"typeof_specifiers", "__typeof of an expression and of a type",
         "__typeof(a) b;\n__typeof(int *) c;\n", false, {"[TypeofTypeSpecifier"}},
        {"built_in_type_errors", "long char logs -8001; the tree keeps the tokens", "long char c;\n", true},
        {"unions_and_declarators", "a union with a declarator behind its body",
         "union U { int i; char c[4]; } u, *pu;\n", false, {"union="}},
        {"conversion_and_friend_operators", "conversion to a pointer type; friend operator; static member function",
         "class A {\n  operator char*() const;\n  operator const A&();\n  friend A operator+(const A&, const A&);\n"
         "  static int count();\n};\n",
         false, {"[ConversionTypeID", "friend="}},
    };
}

TEST(Classes, GoldenTrees) { checkFamily("Classes", classCases()); }
