// The operations that reshape a type, the attribute word along reference chains, and the
// wrong-kind answers of setters and getters.
#include <gtest/gtest.h>

#include "support/TypeWorld.h"

namespace {

TEST(TypeOps, ResolveOrsTheFlagsOfEveryLink) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo& alias = w.typedefOf("INT", i, CPTYPE_Volatile);
    CPTypeInfo& inner = w.link(alias, CPTYPE_Const);
    CPTypeInfo t;
    t.setReference(&inner);
    t.setFlags(CPTYPE_LValue);
    EXPECT_TRUE(t.isConst());
    EXPECT_TRUE(t.isLValue());
    EXPECT_EQ(t.getKind(), uint32_t(BPTYPE_Typedef));

    CPTypeInfo once(t);
    ASSERT_EQ(once.resolve(false), 0);
    EXPECT_EQ(once.getRawKind(), uint32_t(BPTYPE_Typedef));
    EXPECT_EQ(once.getFlags(), uint32_t(CPTYPE_LValue | CPTYPE_Const | CPTYPE_Volatile));

    Value seven;
    seven.setSignedInteger(7);
    t.setValue(&seven);
    ASSERT_EQ(t.resolve(true), 0);
    EXPECT_EQ(t.getRawKind(), uint32_t(BPTYPE_Simple));
    EXPECT_EQ(t.getSimpleName(), CPSIMPLE_SignedInt);
    ASSERT_NE(t.getValue(), nullptr);
    EXPECT_EQ(t.getValue()->getSignedInteger(), 7) << "the value stays";
    EXPECT_TRUE(t.isConst() && t.isVolatile() && t.isLValue());

    CPTypeInfo dead;
    dead.setReference(nullptr);
    EXPECT_EQ(dead.resolve(false), -8021);
    CPTypeInfo brokenTypedef(BPTYPE_Typedef);
    EXPECT_EQ(brokenTypedef.resolve(true), -8021);
    EXPECT_EQ(brokenTypedef.stripTypedef(), -8021);
}

TEST(TypeOps, OnlyAssignedToStaysOnItsOwnType) {
    TypeWorld w;
    CPTypeInfo& target = w.simple(CPSIMPLE_SignedInt, CPTYPE_AssignedTo | CPTYPE_Static);
    CPTypeInfo& use = w.link(target);
    EXPECT_FALSE(use.isAssignedTo());
    EXPECT_TRUE(use.isStatic());
    EXPECT_TRUE(use.hasFlags() == false);
    use.setFlag(CPTYPE_AssignedTo, true);
    EXPECT_TRUE(use.isAssignedTo());
    EXPECT_TRUE(use.hasFlags());

    CPTypeInfo& alias = w.typedefOf("T", w.simple(CPSIMPLE_SignedInt, CPTYPE_LValue));
    EXPECT_TRUE(w.link(alias).isLValue()) << "LValue passes typedef links";
    EXPECT_FALSE(w.link(alias).isConst());

    CPTypeInfo call = w.link(target);
    call.setFunctionCalled(true, false);
    EXPECT_TRUE(call.isFunctionCalled());
    EXPECT_FALSE(target.isFunctionCalled());
}

TEST(TypeOps, StripsAndNormalize) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo variable(BPTYPE_Variable);
    variable.setVariableType(&w.typedefOf("C_INT", w.link(i, CPTYPE_Const)));
    variable.setFlags(CPTYPE_LValue | CPTYPE_Static);
    Value five;
    five.setSignedInteger(5);
    variable.setValue(&five);
    ASSERT_EQ(variable.normalize(), 0);
    EXPECT_EQ(variable.getKind(), uint32_t(BPTYPE_Simple));
    EXPECT_TRUE(variable.isConst()) << "a typedef's const carries over";
    EXPECT_TRUE(variable.isLValue());
    EXPECT_FALSE(variable.isStatic());
    EXPECT_EQ(variable.getValue()->getSignedInteger(), 5);

    CPTypeInfo ref = w.reference(i);
    Value referred, inner;
    inner.setSignedInteger(9);
    referred.setReferredValue(inner);
    ref.setValue(&referred);
    ASSERT_EQ(ref.normalize(), 0);
    EXPECT_EQ(ref.getKind(), uint32_t(BPTYPE_Simple));
    EXPECT_EQ(ref.getValue()->getSignedInteger(), 9);

    CPTypeInfo empty(BPTYPE_Reference);
    EXPECT_EQ(empty.normalize(), -8021);
    CPTypeInfo untyped(BPTYPE_Variable);
    EXPECT_EQ(untyped.stripVariable(), -8021);
}

TEST(TypeOps, FunctionAndPointerForms) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    TypeNode* cls = w.declareClass("Point");
    CPTypeInfo& f = w.declareFunction("f", nullptr, &i, {})->typeInfo;
    CPTypeInfo& ctor = w.declareFunction("Point", cls, nullptr, {})->typeInfo;
    CPTypeInfo& method = w.declareFunction("get", cls, &i, {})->typeInfo;

    CPTypeInfo viaPointer = w.pointer(f);
    EXPECT_TRUE(viaPointer.isCallable());
    EXPECT_TRUE(viaPointer.isFunctionPointer());
    ASSERT_EQ(viaPointer.toFunctionType(), 0);
    EXPECT_EQ(viaPointer.getSimpleName(), CPSIMPLE_SignedInt);

    CPTypeInfo construct(ctor);
    EXPECT_TRUE(ctor.isConstructor());
    EXPECT_FALSE(method.isConstructor());
    EXPECT_TRUE(method.isMemberFunction());
    ASSERT_EQ(construct.toFunctionType(), 0);
    EXPECT_EQ(construct.getKind(), uint32_t(BPTYPE_Class));
    EXPECT_EQ(str(construct.getName()), "Point");

    CPTypeInfo memberPointer(BPTYPE_MemberPointer);
    memberPointer.setClassType(&cls->typeInfo);
    memberPointer.setMemberType(&method);
    EXPECT_TRUE(memberPointer.isMemberFunctionPointer());
    EXPECT_TRUE(w.reference(f).isFunctionReference());
    CPTypeInfo notCallable = w.pointer(i);
    EXPECT_FALSE(notCallable.isCallable());
    EXPECT_EQ(notCallable.toFunctionType(), -1);

    CPTypeInfo literal = w.stringLiteral("hi");
    EXPECT_TRUE(literal.isStringType());
    ASSERT_EQ(literal.arrayToPointer(), 0);
    EXPECT_EQ(literal.getKind(), uint32_t(BPTYPE_Pointer));
    EXPECT_EQ(literal.getPointedType()->getSimpleName(), CPSIMPLE_Char);
    ASSERT_NE(literal.getValue(), nullptr);
    EXPECT_EQ(literal.getValue()->getKind(), BPVALUE_Pointer);
    ASSERT_NE(literal.getValue()->getPointedValue(), nullptr);
    EXPECT_EQ(str(literal.getValue()->getPointedValue()->getString()), "hi");
    EXPECT_EQ(i.arrayToPointer(), -8021);
}

TEST(TypeOps, NullPointerConstantsAndAny) {
    TypeWorld w;
    EXPECT_TRUE(w.integer(CPSIMPLE_SignedInt, 0).isNullPointerConstant());
    EXPECT_TRUE(w.integer(CPSIMPLE_Char, 0).isNullPointerConstant());
    EXPECT_FALSE(w.integer(CPSIMPLE_SignedInt, 1).isNullPointerConstant());
    EXPECT_FALSE(w.simple(CPSIMPLE_SignedInt).isNullPointerConstant());
    CPTypeInfo& zeroDouble = w.simple(CPSIMPLE_Double);
    Value z;
    z.setDouble(0);
    zeroDouble.setValue(&z);
    EXPECT_FALSE(zeroDouble.isNullPointerConstant());

    CPTypeInfo& any = w.make(BPTYPE_Any);
    CPTypeInfo& pointerToAny = w.pointer(any);
    CPTypeInfo& function = w.make(BPTYPE_Function);
    function.setReturnType(&any);
    CPTypeInfo& id = w.make(BPTYPE_TemplateID);
    id.addArgument(quernbase::QBString("T"), &any, nullptr);
    CPTypeInfo& parameter = w.make(BPTYPE_TemplateParameter);
    CPTypeInfo& variable = w.make(BPTYPE_Variable);
    struct Case {
        const CPTypeInfo* type;
        bool shallow, deep;
    } cases[] = {
        {&any, true, true},
        {&w.link(any), true, true},
        {&pointerToAny, false, true},
        {&w.array(any, 2), false, true},
        {&w.reference(any), true, true},
        {&function, true, true},
        {&id, false, true},
        {&parameter, true, true},
        {&variable, true, true},
        {&w.simple(CPSIMPLE_SignedInt), false, false},
        {&w.pointer(w.simple(CPSIMPLE_SignedInt)), false, false},
    };
    for (const Case& k : cases) {
        EXPECT_EQ(k.type->containsAny(false), k.shallow) << textOf(*k.type);
        EXPECT_EQ(k.type->containsAny(true), k.deep) << textOf(*k.type);
    }
}

TEST(TypeOps, WrongKindsAnswerQuietly) {
    CPTypeInfo simple(BPTYPE_Simple);
    EXPECT_EQ(simple.setElementType(&simple), -8021);
    EXPECT_EQ(simple.setReturnType(nullptr), -8021);
    EXPECT_EQ(simple.setAliasedType(nullptr), -8021);
    EXPECT_EQ(simple.setVariableType(nullptr), -8021);
    EXPECT_EQ(simple.setClassType(nullptr), -8021);
    EXPECT_EQ(simple.getElementType(), nullptr);
    EXPECT_EQ(simple.getReturnType(), nullptr);
    EXPECT_EQ(simple.getMemberCount(), 0u);
    EXPECT_EQ(simple.getArgumentType(0), nullptr);
    EXPECT_EQ(simple.getSize(), 0);
    CPTypeInfo array(BPTYPE_Array);
    EXPECT_EQ(array.setSimpleName(CPSIMPLE_Char), -8021);
    EXPECT_EQ(array.getSimpleName(), CPSIMPLE_None);
    EXPECT_FALSE(array.isCallable());
    EXPECT_FALSE(array.isMemberFunction());
    EXPECT_FALSE(CPTypeInfo::isDerivedFrom(&array, nullptr, nullptr));
}

TEST(TypeOps, DerivationThroughBases) {
    TypeWorld w;
    TypeNode* a = w.declareClass("A");
    TypeNode* b = w.declareClass("B", nullptr, a);
    TypeNode* c = w.declareClass("C", nullptr, b);
    CPTypeInfo found;
    EXPECT_TRUE(CPTypeInfo::isDerivedFrom(&c->typeInfo, &a->typeInfo, &found));
    EXPECT_EQ(str(found.getName()), "A");
    EXPECT_TRUE(CPTypeInfo::isDerivedFrom(&w.link(c->typeInfo), &w.typedefOf("AA", a->typeInfo), nullptr));
    EXPECT_FALSE(CPTypeInfo::isDerivedFrom(&a->typeInfo, &c->typeInfo, nullptr));
    EXPECT_TRUE(CPTypeInfo::isDerivedFrom(&a->typeInfo, &a->typeInfo, nullptr));
    EXPECT_FALSE(CPTypeInfo::isDerivedFrom(&w.simple(CPSIMPLE_SignedInt), &a->typeInfo, nullptr));
}

TEST(TypeOps, WideCharacterTypeFromTheConfiguration) {
    TypeWorld w;
    TypeNode* deep = w.node(CPN_SimpleDeclaration, w.node(CPN_NamespaceDefinition));
    EXPECT_EQ(CPTypeInfo::getWideCharType(deep), CPSIMPLE_WideChar);
    EXPECT_EQ(CPTypeInfo::getWideCharType(nullptr), CPSIMPLE_WideChar);
    w.typedefOf("__wchar_t", w.simple(CPSIMPLE_UnsignedShort));
    EXPECT_EQ(CPTypeInfo::getWideCharType(deep), CPSIMPLE_UnsignedShort);
}

}  // namespace
