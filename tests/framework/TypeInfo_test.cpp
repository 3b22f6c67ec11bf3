// The type model: reference chains, records per kind, copying, equality, the text form and the
// dump with its cycle guard; constant values of every payload family.
#include <gtest/gtest.h>

#include <string>

#include "CPSymbolInfo.h"
#include "support/FrameworkTestKit.h"

using quernbase::QBString;
typedef TBPValue<CPParseNodeType> Value;

namespace {

std::string textOf(const TypeInfo& t) {
    QBString out("");
    EXPECT_EQ(t.getText(out, false, false), 0);
    return str(out);
}

std::string dumpOf(const TypeInfo& t, bool deep, bool showReferences, const char* label = nullptr) {
    QBString out("");
    EXPECT_EQ(t.dumpToString(out, 0, label, deep, showReferences), 0);
    return str(out);
}

TypeInfo simple(CPSimpleTypeName name) {
    TypeInfo t(BPTYPE_Simple);
    t.setSimpleName(name);
    return t;
}

// Symbols need a home that holds their count: a scope node whose table keeps them.
class Types : public ::testing::Test {
protected:
    void SetUp() override {
        scope = new TypedTestTree(NT_UNIT);
        scope->addRef();
    }
    void TearDown() override { scope->release(); }
    Symbol* symbol(const char* name) {
        auto* s = new CPSymbolInfo(name, nullptr, scope);
        scope->addSymbol(s);
        return s;
    }
    TypedTestTree* scope = nullptr;
};

TEST_F(Types, KindsFollowReferenceChains) {
    TypeInfo function(BPTYPE_Function), first, second;
    Value constant;
    constant.setSignedInteger(1);
    EXPECT_EQ(first.setReference(&function), 0);
    first.setValue(&constant);  // keeps first in any chain through it
    EXPECT_EQ(second.setReference(&first), 0);
    EXPECT_EQ(second.getReferenceTarget(), &first);
    EXPECT_EQ(second.getKind(), uint32_t(BPTYPE_Function));
    EXPECT_EQ(second.getRawKind(), uint32_t(BPTYPE_TypeReference));
    EXPECT_EQ(second.resolved(), &function);

    TypeInfo dead;
    EXPECT_EQ(dead.setReference(nullptr), -8021);
    EXPECT_EQ(dead.getKind(), uint32_t(BPTYPE_TypeReference));
    EXPECT_EQ(dead.getElementType(), nullptr);
    EXPECT_EQ(dead.setSize(3), -8021);
}

TEST_F(Types, SetReferenceShortensPlainChainsOnly) {
    TypeInfo end(BPTYPE_Class), a, b, c;
    a.setReference(&end);
    b.setReference(&a);
    EXPECT_EQ(b.getReferenceTarget(), &end);
    Value seven;
    seven.setSignedInteger(7);
    a.setValue(&seven);  // a link with a value stays in the chain
    c.setReference(&a);
    EXPECT_EQ(c.getReferenceTarget(), &a);
    ASSERT_NE(c.getValue(), nullptr);  // found along the chain
    EXPECT_EQ(c.getValue()->getSignedInteger(), 7);
    EXPECT_EQ(end.setReference(&c), -8021);  // would close a cycle
    EXPECT_EQ(end.getReferenceTarget(), nullptr);
}

TEST_F(Types, AccessorsWorkOnTheirKindOnly) {
    TypeInfo array(BPTYPE_Array), element = simple(CPSIMPLE_SignedInt);
    EXPECT_EQ(array.setElementType(&element), 0);
    EXPECT_EQ(array.setSize(4), 0);
    EXPECT_EQ(array.getElementType(), &element);
    EXPECT_EQ(array.getSize(), 4);
    EXPECT_EQ(array.getMember(0), nullptr);
    EXPECT_EQ(array.addMember(&element), -8021);
    EXPECT_EQ(array.setReturnType(&element), -8021);
    EXPECT_EQ(element.getSimpleName(), CPSIMPLE_SignedInt);
    EXPECT_EQ(array.getSimpleName(), CPSIMPLE_None);
    // Through a reference, accessors reach the target's record.
    TypeInfo use;
    use.setReference(&array);
    EXPECT_EQ(use.setStart(1), 0);
    EXPECT_EQ(array.getStart(), 1);
    // A new kind frees the old record.
    array.setKind(BPTYPE_Statement);
    EXPECT_EQ(array.getSize(), 0);
    EXPECT_EQ(array.setStatementName("loop"), 0);
    EXPECT_EQ(str(array.getName()), "loop");
}

TEST_F(Types, ArgumentsAreReachedThroughTheirOwner) {
    TypeInfo function(BPTYPE_Function), i = simple(CPSIMPLE_SignedInt), def(BPTYPE_Any);
    EXPECT_EQ(function.addArgument("a", &i, nullptr), 0);
    EXPECT_EQ(function.addArgument("b", &i, &def), 0);
    EXPECT_EQ(function.getArgumentCount(), 2u);
    EXPECT_EQ(str(function.getArgumentName(1)), "b");
    EXPECT_EQ(function.getArgumentDefault(0), nullptr);
    EXPECT_EQ(function.getArgumentDefault(1), &def);
    EXPECT_EQ(function.getArgumentType(2), nullptr);
    ASSERT_NE(function.getArguments(), nullptr);
    EXPECT_EQ(function.getArguments()->getOwner(), &function);

    TypeInfo id(BPTYPE_TemplateID);
    EXPECT_EQ(id.addArgument("T", &i, nullptr), 0);
    EXPECT_EQ(id.getArgumentCount(), 1u);
    EXPECT_EQ(str(id.getArgumentName(0)), "T");

    TypeInfo statement(BPTYPE_Statement);
    EXPECT_EQ(statement.addArgument("x", &i, nullptr), -8021);
    EXPECT_EQ(statement.addBodyType(&i), 0);
    EXPECT_EQ(function.addBodyType(&i), 0);
    EXPECT_EQ(statement.getBodyTypeCount(), 1u);
    statement.clearBodyTypes();
    EXPECT_EQ(statement.getBodyTypeCount(), 0u);
    EXPECT_EQ(function.getBodyTypeCount(), 1u);
}

TEST_F(Types, ACopyDuplicatesArraysSharesSubTypesAndCountsSymbols) {
    Symbol* s = symbol("Point");
    TypeInfo member(BPTYPE_Variable), cls(BPTYPE_Class);
    cls.setSymbol(s);
    cls.addMember(&member);
    EXPECT_EQ(s->getRefCount(), 2);
    {
        TypeInfo copy(cls);
        EXPECT_EQ(s->getRefCount(), 3);
        EXPECT_EQ(copy.getMember(0), &member);
        copy.addMember(&cls);
        EXPECT_EQ(cls.getMemberCount(), 1u);
    }
    EXPECT_EQ(s->getRefCount(), 2);

    TypeInfo function(BPTYPE_Function), i = simple(CPSIMPLE_SignedInt);
    function.addArgument("a", &i, nullptr);
    TypeInfo twin(BPTYPE_Null);
    twin = function;
    ASSERT_NE(twin.getArguments(), nullptr);
    EXPECT_NE(twin.getArguments(), function.getArguments());  // its own list now
    EXPECT_EQ(twin.getArguments()->getOwner(), &twin);
    EXPECT_EQ(twin.getArgumentType(0), &i);
    cls.setKind(BPTYPE_None);
    EXPECT_EQ(s->getRefCount(), 1);
}

TEST_F(Types, SymbolsAndNamesOfEachKind) {
    Symbol* vec = symbol("vector");
    TypeInfo declaration(BPTYPE_TemplateDeclaration), id(BPTYPE_TemplateID), any(BPTYPE_Any);
    declaration.setSymbol(vec);
    id.setTemplateType(&declaration);
    EXPECT_EQ(id.getSymbol(), vec);
    EXPECT_EQ(str(id.getName()), "vector");
    any.setSymbol(vec);
    EXPECT_EQ(any.getSymbol(), vec);
    EXPECT_EQ(id.setSymbol(vec), -8021);
    TypeInfo parameter(BPTYPE_TemplateParameter), declared(BPTYPE_Variable);
    declared.setSymbol(symbol("T"));
    parameter.setDeclaration(&declared);
    EXPECT_EQ(str(parameter.getName()), "T");
    EXPECT_EQ(parameter.getScopeNode(), nullptr);
    auto* defined = new CPSymbolInfo("defined", scope, scope);
    scope->addSymbol(defined);
    TypeInfo cls(BPTYPE_Class), use;
    cls.setSymbol(defined);
    use.setReference(&cls);
    EXPECT_EQ(use.getScopeNode(), scope);
    EXPECT_EQ(use.getOwnerScope(), scope);
}

// ---- Equality ----

TEST_F(Types, ClassesAreEqualByBareName) {
    TypeInfo a(BPTYPE_Class), b(BPTYPE_Class), base(BPTYPE_Class);
    auto* inOne = new CPSymbolInfo("Node", nullptr, nullptr);
    auto* inOther = new CPSymbolInfo("Node", nullptr, scope);
    scope->addSymbol(inOne);
    scope->addSymbol(inOther);
    a.setSymbol(inOne);
    b.setSymbol(inOther);
    b.addParent(&base);
    EXPECT_TRUE(a == b);
    TypeInfo ref;
    ref.setReference(&b);
    EXPECT_TRUE(ref == a);
    EXPECT_TRUE(a == ref);
    TypeInfo dead;
    dead.setReference(nullptr);
    EXPECT_FALSE(dead == a);
}

TEST_F(Types, UnnamedClassesCompareTheirParts) {
    TypeInfo x = simple(CPSIMPLE_SignedInt), y = simple(CPSIMPLE_SignedInt), base(BPTYPE_Class);
    TypeInfo u1(BPTYPE_Union), u2(BPTYPE_Union);
    u1.addMember(&x);
    u2.addMember(&y);
    EXPECT_TRUE(u1 == u2);
    TypeInfo c1(BPTYPE_Class), c2(BPTYPE_Class);
    c1.addMember(&x);
    c2.addMember(&y);
    c2.addParent(&base);
    EXPECT_FALSE(c1 == c2);
    c1.addParent(&base);
    EXPECT_TRUE(c1 == c2);
    EXPECT_FALSE(c1 == u1);
}

TEST_F(Types, StructuralKindsCompareTheirParts) {
    TypeInfo i = simple(CPSIMPLE_SignedInt), c = simple(CPSIMPLE_Char), j = simple(CPSIMPLE_SignedInt);
    EXPECT_TRUE(i == j);
    EXPECT_FALSE(i == c);
    TypeInfo a1(BPTYPE_Array), a2(BPTYPE_Array), p1(BPTYPE_Pointer), p2(BPTYPE_Pointer);
    a1.setElementType(&i);
    a2.setElementType(&j);
    EXPECT_TRUE(a1 == a2);
    a2.setSize(3);
    EXPECT_FALSE(a1 == a2);
    p1.setPointedType(&i);
    p2.setPointedType(&c);
    EXPECT_FALSE(p1 == p2);
    p2.setPointedType(&j);
    EXPECT_TRUE(p1 == p2);
    TypeInfo f1(BPTYPE_Function), f2(BPTYPE_Function);
    f1.addArgument("a", &i, nullptr);
    f2.addArgument("b", &c, nullptr);
    EXPECT_FALSE(f1 == f2);
    TypeInfo unknown(99);
    EXPECT_FALSE(unknown == unknown);
}

TEST_F(Types, SelfReferencingUnnamedClassesEndTheirComparison) {
    TypeInfo c1(BPTYPE_Class), c2(BPTYPE_Class), p1(BPTYPE_Pointer), p2(BPTYPE_Pointer);
    p1.setPointedType(&c1);
    p2.setPointedType(&c2);
    c1.addMember(&p1);
    c2.addMember(&p2);
    EXPECT_FALSE(c1 == c2);  // undecidable within the depth bound: not equal, and no hang
    EXPECT_TRUE(c1 == c1);
}

// ---- Text ----

TEST_F(Types, TextOfArraysPointersAndReferences) {
    TypeInfo i = simple(CPSIMPLE_SignedInt), unbounded(BPTYPE_Array), bounded(BPTYPE_Array);
    unbounded.setElementType(&i);
    bounded.setElementType(&unbounded);
    bounded.setSize(10);
    EXPECT_EQ(textOf(unbounded), "SIMPLE[]");
    EXPECT_EQ(textOf(bounded), "SIMPLE[][10]");
    TypeInfo pointer(BPTYPE_Pointer), reference(BPTYPE_Reference);
    pointer.setPointedType(&i);
    reference.setPointedType(&pointer);
    EXPECT_EQ(textOf(reference), "SIMPLE*&");

    TypeInfo function(BPTYPE_Function), toFunction(BPTYPE_Pointer);
    function.setReturnType(&i);
    function.addArgument("a", &i, nullptr);
    function.addArgument("b", &pointer, nullptr);
    toFunction.setPointedType(&function);
    EXPECT_EQ(textOf(toFunction), "SIMPLE(*)(SIMPLE, SIMPLE*)");
    function.setSymbol(symbol("cb"));
    EXPECT_EQ(textOf(toFunction), "SIMPLE(*cb)(SIMPLE, SIMPLE*)");
    EXPECT_EQ(textOf(function), "cb(SIMPLE, SIMPLE*)");
}

TEST_F(Types, TextOfNamedKindsAndTemplates) {
    TypeInfo cls(BPTYPE_Class), unnamedUnion(BPTYPE_Union), space(BPTYPE_Namespace), e(BPTYPE_Enumeration);
    cls.setSymbol(symbol("Point"));
    EXPECT_EQ(textOf(cls), "Point");
    EXPECT_EQ(textOf(unnamedUnion), "UNION");
    EXPECT_EQ(textOf(space), "NAMESPACE");
    EXPECT_EQ(textOf(e), "ENUM");
    EXPECT_EQ(textOf(TypeInfo(BPTYPE_Null)), "NULL");
    EXPECT_EQ(textOf(TypeInfo(BPTYPE_Any)), "ANY");
    EXPECT_EQ(textOf(TypeInfo(77)), "<<unknown>>");

    TypeInfo declaration(BPTYPE_TemplateDeclaration), t(BPTYPE_TemplateParameter), u(BPTYPE_TemplateParameter);
    declaration.setSymbol(symbol("map"));
    t.setSymbol(symbol("K"));
    u.setSymbol(symbol("V"));
    declaration.addArgument("K", &t, nullptr);
    declaration.addArgument("V", &u, nullptr);
    EXPECT_EQ(textOf(declaration), "template <K, V>");
    TypeInfo id(BPTYPE_TemplateID), i = simple(CPSIMPLE_SignedInt);
    id.setTemplateType(&declaration);
    id.addArgument("", &cls, nullptr);
    id.addArgument("", &i, nullptr);
    EXPECT_EQ(textOf(id), "map<Point, SIMPLE>");
    TypeInfo variable(BPTYPE_Variable);
    variable.setVariableType(&id);
    EXPECT_EQ(textOf(variable), "map<Point, SIMPLE>");
}

// ---- Dump ----

TEST_F(Types, DumpFormatsOfCommonKinds) {
    TypeInfo i = simple(CPSIMPLE_SignedInt), array(BPTYPE_Array), use;
    array.setElementType(&i);
    array.setStart(0);
    EXPECT_EQ(dumpOf(array, false, false, "a"),
              "a=BPTYPE_Array: size=0 start=0\n  element type=BPTYPE_Simple: type=10\n");
    use.setReference(&i);
    EXPECT_EQ(dumpOf(use, false, true), "BPTYPE_TypeReference:\n  type=BPTYPE_Simple: type=10\n");
    EXPECT_EQ(dumpOf(use, false, false, "x"), "x=BPTYPE_Simple: type=10\n");

    TypeInfo variable(BPTYPE_Variable);
    variable.setSymbol(symbol("limit"));
    variable.setVariableType(&i);
    variable.setVariableFlags(BPVARIABLE_CONST);
    Value v;
    v.setSignedInteger(-3);
    variable.setValue(&v);
    EXPECT_EQ(dumpOf(variable, true, false),
              "BPTYPE_Variable: name=limit\n CONST\n  type=BPTYPE_Simple: type=10\n"
              "  value=BPVALUE_SignedInteger: -3\n");
    EXPECT_EQ(dumpOf(TypeInfo(40), false, false), "***UNKNOWN TYPE ERROR***\n");
}

TEST_F(Types, DumpOfTemplatesShowsTheirArguments) {
    TypeInfo declaration(BPTYPE_TemplateDeclaration), t(BPTYPE_TemplateParameter), id(BPTYPE_TemplateID);
    declaration.setSymbol(symbol("box"));
    t.setSymbol(symbol("T"));
    t.setNormalizedName("__T0");
    declaration.addArgument("T", &t, nullptr);
    id.setTemplateType(&declaration);
    TypeInfo i = simple(CPSIMPLE_Char);
    id.addArgument("T", &i, nullptr);
    EXPECT_EQ(dumpOf(id, true, false),
              "BPTYPE_TemplateID: name=box<SIMPLE>\n"
              "  type=BPTYPE_TemplateDeclaration: name=box<T>\n"
              "    parameters=BPTYPE_ArgumentList:\n"
              "      T=BPTYPE_TemplateParameter: name=T  normalized=__T0\n"
              "  arg(T)=BPTYPE_Simple: type=7\n");
}

TEST_F(Types, ASelfReferencingClassDumpStops) {
    TypeInfo cls(BPTYPE_Class), next(BPTYPE_Variable), pointer(BPTYPE_Pointer);
    cls.setSymbol(symbol("List"));
    pointer.setPointedType(&cls);
    next.setSymbol(symbol("next"));
    next.setVariableType(&pointer);
    cls.addMember(&next);
    std::string dump = dumpOf(cls, true, false);
    size_t lines = 0, widest = 0, start = 0;
    for (size_t end; (end = dump.find('\n', start)) != std::string::npos; start = end + 1) {
        ++lines;
        size_t blanks = dump.find_first_not_of(' ', start) - start;
        widest = blanks > widest ? blanks : widest;
    }
    EXPECT_LE(widest, 200u);
    EXPECT_GT(lines, 60u);  // it went as deep as allowed
    EXPECT_EQ(textOf(cls), "List");
}

// ---- Values ----

TEST(Values, TypedReadsMatchTheKindOnly) {
    Value v(BPVALUE_SignedInteger);
    v.setUnsignedShort(65535);
    EXPECT_EQ(v.getUnsignedShort(), 65535);
    EXPECT_EQ(v.getSignedShort(), 0);
    EXPECT_EQ(v.getSignedInteger(), 0);
    v.setSignedLongLong(-5000000000LL);
    EXPECT_EQ(v.getSignedLongLong(), -5000000000LL);
    EXPECT_EQ(v.getUnsignedLongLong(), 0u);
    v.setBoolean(true);
    EXPECT_TRUE(v.getBoolean());
    v.setKind(BPVALUE_Double);
    EXPECT_EQ(v.getDouble(), 0.0);
    EXPECT_TRUE(v.getString().isNull());
}

TEST(Values, SourceTextOfEachFamily) {
    auto text = [](const Value& v) {
        QBString out("");
        EXPECT_EQ(v.toText(out), 0);
        return str(out);
    };
    Value v;
    EXPECT_EQ(text(v), "void");
    v.setUnsignedLong(4000000000u);
    EXPECT_EQ(text(v), "4000000000");
    v.setSignedShort(-12);
    EXPECT_EQ(text(v), "-12");
    v.setWideCharacter('x');
    EXPECT_EQ(text(v), "L'x'");
    v.setBoolean(false);
    EXPECT_EQ(text(v), "false");
    v.setString("hello");
    EXPECT_EQ(text(v), "hello");
    v.setKind(BPVALUE_String);
    EXPECT_EQ(text(v), "(null)");
    v.setDouble(1.5);
    EXPECT_EQ(text(v), "1.500000");
    ASSERT_EQ(v.setLongDouble(2.25), 0);
    EXPECT_EQ(text(v), "2.250000");
    ASSERT_EQ(v.setBigNumber("123456789012345678901234567890"), 0);
    EXPECT_EQ(text(v), "123456789012345678901234567890");
}

TEST(Values, BoxedPayloadsCopyDeeply) {
    Value member;
    member.setString("inner");
    Value aggregate;
    ASSERT_EQ(aggregate.makeAggregate(BPVALUE_Class), 0);
    ASSERT_EQ(aggregate.addItem(member), 0);
    Value pointed;
    ASSERT_EQ(pointed.setPointedValue(member), 0);
    ASSERT_EQ(aggregate.addItem(pointed), 0);
    Value copy(aggregate);
    aggregate.clear();
    member.clear();
    ASSERT_EQ(copy.getItemCount(), 2u);
    EXPECT_EQ(str(copy.getItem(0)->getString()), "inner");
    ASSERT_NE(copy.getItem(1)->getPointedValue(), nullptr);
    EXPECT_EQ(str(copy.getItem(1)->getPointedValue()->getString()), "inner");
    EXPECT_EQ(aggregate.addItem(member), -8021);

    const uint16_t units[] = {0x48, 0x49};
    Value wide;
    ASSERT_EQ(wide.setWideString(units, 2), 0);
    Value wideCopy = wide;
    ASSERT_NE(wideCopy.getWideString(), nullptr);
    EXPECT_EQ(wideCopy.getWideString()->count(), 2u);
    EXPECT_NE(wideCopy.getWideString(), wide.getWideString());
}

TEST(Values, DumpShowsKindAndPayload) {
    Value u;
    u.setCharacter('q');
    Value array;
    array.makeAggregate(BPVALUE_Array);
    array.addItem(u);
    Value w;
    w.setWideCharacter(0x263A);
    array.addItem(w);
    QBString out("");
    ASSERT_EQ(array.dumpToString(out, 0, "value"), 0);
    EXPECT_EQ(str(out),
              "value=BPVALUE_Array:\n  BPVALUE_Character: 'q'\n  BPVALUE_WideCharacter: L'\\u263A'\n");
    Value broken(60);
    QBString bad("");
    broken.dumpToString(bad, 0, nullptr);
    EXPECT_EQ(str(bad), "***ERROR***\n");
}

TEST_F(Types, SetValueCopiesAndNullFrees) {
    TypeInfo t = simple(CPSIMPLE_SignedInt);
    EXPECT_EQ(t.setValue(nullptr), 0);
    EXPECT_EQ(t.getValue(), nullptr);
    Value v;
    v.setSignedInteger(4);
    EXPECT_EQ(t.setValue(&v), 0);
    v.setSignedInteger(5);
    EXPECT_EQ(t.getValue()->getSignedInteger(), 4);
    t.setKind(BPTYPE_Simple, true);
    ASSERT_NE(t.getValue(), nullptr);
    t.setKind(BPTYPE_Simple, false);
    EXPECT_EQ(t.getValue(), nullptr);
}

}  // namespace
