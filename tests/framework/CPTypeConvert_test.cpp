// Arithmetic conversions with their constant values, the implicit conversion test, and the
// user-defined conversions found in class tables.
#include <gtest/gtest.h>

#include "support/TypeWorld.h"

namespace {

struct SimpleCase {
    CPSimpleTypeName from, to;
    bool explicitly;
    int status;
};

TEST(ConvertSimple, TheNarrowingMatrix) {
    const SimpleCase cases[] = {
        {CPSIMPLE_SignedInt, CPSIMPLE_Bool, false, -8029},
        {CPSIMPLE_Char, CPSIMPLE_Bool, false, -8029},
        {CPSIMPLE_SignedInt, CPSIMPLE_Bool, true, 0},
        {CPSIMPLE_Double, CPSIMPLE_WideChar, false, -8029},
        {CPSIMPLE_UnsignedLongLong, CPSIMPLE_WideChar, false, -8029},
        {CPSIMPLE_Char, CPSIMPLE_WideChar, false, 0},
        {CPSIMPLE_Double, CPSIMPLE_Float, false, -1},
        {CPSIMPLE_SignedLongLong, CPSIMPLE_Float, false, -1},
        {CPSIMPLE_SignedLong, CPSIMPLE_Float, false, 0},
        {CPSIMPLE_UnsignedLong, CPSIMPLE_Float, false, -1},
        {CPSIMPLE_Float, CPSIMPLE_Double, false, 0},
        {CPSIMPLE_LongDouble, CPSIMPLE_Double, false, -1},
        {CPSIMPLE_UnsignedLongLong, CPSIMPLE_LongDouble, false, -1},
        {CPSIMPLE_SignedShort, CPSIMPLE_Char, false, -1},
        {CPSIMPLE_WideChar, CPSIMPLE_UnsignedChar, false, -1},
        {CPSIMPLE_UnsignedChar, CPSIMPLE_SignedChar, false, 0},
        {CPSIMPLE_SignedLong, CPSIMPLE_SignedShort, false, -1},
        {CPSIMPLE_Char, CPSIMPLE_UnsignedShort, false, 0},
        {CPSIMPLE_Double, CPSIMPLE_SignedInt, false, -1},
        {CPSIMPLE_SignedLongLong, CPSIMPLE_UnsignedInt, false, -1},
        {CPSIMPLE_SignedLong, CPSIMPLE_SignedInt, false, 0},
        {CPSIMPLE_Float, CPSIMPLE_UnsignedLongLong, false, -1},
        {CPSIMPLE_SignedLong, CPSIMPLE_SignedLongLong, false, 0},
        {CPSIMPLE_Void, CPSIMPLE_SignedInt, true, -1},
        {CPSIMPLE_None, CPSIMPLE_SignedInt, true, -1},
    };
    TypeWorld w;
    for (const SimpleCase& k : cases) {
        CPTypeInfo t = w.simple(k.from);
        EXPECT_EQ(CPTypeInfo::convertSimple(t, k.to, nullptr, k.explicitly), k.status)
            << CPTypeInfo::simpleTypeText(k.from) << " to " << CPTypeInfo::simpleTypeText(k.to);
        CPSimpleTypeName expected = k.status == 0 ? k.to : k.from;
        EXPECT_EQ(t.getSimpleName(), expected) << "a refusal leaves the type alone";
    }
}

TEST(ConvertSimple, ValuesFollowWithCTruncation) {
    TypeWorld w;
    CPTypeInfo big = w.integer(CPSIMPLE_SignedInt, 300);
    ASSERT_EQ(CPTypeInfo::convertSimple(big, CPSIMPLE_UnsignedChar, nullptr, true), 0);
    ASSERT_NE(big.getValue(), nullptr);
    EXPECT_EQ(uint8_t(big.getValue()->getCharacter()), 44);

    CPTypeInfo real = w.simple(CPSIMPLE_Double);
    Value v;
    v.setDouble(-3.75);
    real.setValue(&v);
    ASSERT_EQ(CPTypeInfo::convertSimple(real, CPSIMPLE_SignedInt, nullptr, true), 0);
    EXPECT_EQ(real.getValue()->getSignedInteger(), -3);

    CPTypeInfo negative = w.integer(CPSIMPLE_SignedInt, -1);
    ASSERT_EQ(CPTypeInfo::convertSimple(negative, CPSIMPLE_UnsignedLongLong, nullptr, false), 0);
    EXPECT_EQ(negative.getValue()->getUnsignedLongLong(), ~uint64_t(0));

    CPTypeInfo any = w.simple(CPSIMPLE_SignedInt);
    Value unknown(BPVALUE_Any);
    any.setValue(&unknown);
    ASSERT_EQ(CPTypeInfo::convertSimple(any, CPSIMPLE_SignedLong, nullptr, false), 0);
    EXPECT_EQ(any.getValue()->getKind(), BPVALUE_Any);
}

TEST(ConvertSimple, PointersBecomeBooleans) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo null = w.pointer(i);
    Value zero;
    zero.setPointerAddress(0);
    null.setValue(&zero);
    ASSERT_EQ(CPTypeInfo::convertSimple(null, CPSIMPLE_Bool, nullptr, false), 0);
    EXPECT_EQ(null.getKind(), uint32_t(BPTYPE_Simple));
    EXPECT_EQ(null.getSimpleName(), CPSIMPLE_Bool);
    ASSERT_NE(null.getValue(), nullptr);
    EXPECT_FALSE(null.getValue()->getBoolean());

    CPTypeInfo somewhere = w.pointer(i);
    Value address;
    address.setPointerAddress(0x1000);
    somewhere.setValue(&address);
    ASSERT_EQ(CPTypeInfo::convertSimple(somewhere, CPSIMPLE_Bool, nullptr, false), 0);
    EXPECT_TRUE(somewhere.getValue()->getBoolean());

    CPTypeInfo notSimple = w.pointer(i);
    EXPECT_EQ(CPTypeInfo::convertSimple(notSimple, CPSIMPLE_SignedInt, nullptr, true), -1);
}

struct ArithmeticCase {
    CPSimpleTypeName left, right, common;
};

TEST(UsualArithmetic, CommonTypes) {
    const ArithmeticCase cases[] = {
        {CPSIMPLE_UnsignedInt, CPSIMPLE_SignedLong, CPSIMPLE_UnsignedLong},
        {CPSIMPLE_SignedLong, CPSIMPLE_UnsignedInt, CPSIMPLE_UnsignedLong},
        {CPSIMPLE_SignedInt, CPSIMPLE_Double, CPSIMPLE_Double},
        {CPSIMPLE_Float, CPSIMPLE_LongDouble, CPSIMPLE_LongDouble},
        {CPSIMPLE_Char, CPSIMPLE_SignedShort, CPSIMPLE_SignedInt},
        {CPSIMPLE_Bool, CPSIMPLE_Bool, CPSIMPLE_SignedInt},
        {CPSIMPLE_UnsignedShort, CPSIMPLE_UnsignedInt, CPSIMPLE_UnsignedInt},
        {CPSIMPLE_SignedLongLong, CPSIMPLE_UnsignedLong, CPSIMPLE_SignedLongLong},
        {CPSIMPLE_SignedLongLong, CPSIMPLE_UnsignedLongLong, CPSIMPLE_UnsignedLongLong},
        {CPSIMPLE_SignedInt, CPSIMPLE_SignedLong, CPSIMPLE_SignedLong},
    };
    TypeWorld w;
    for (const ArithmeticCase& k : cases) {
        CPTypeInfo l = w.simple(k.left), r = w.simple(k.right);
        ASSERT_EQ(CPTypeInfo::usualArithmetic(l, r, nullptr, nullptr), 0);
        EXPECT_EQ(l.getSimpleName(), k.common) << CPTypeInfo::simpleTypeText(k.left) << " with " << CPTypeInfo::simpleTypeText(k.right);
        EXPECT_EQ(r.getSimpleName(), k.common) << CPTypeInfo::simpleTypeText(k.left) << " with " << CPTypeInfo::simpleTypeText(k.right);
    }
}

TEST(UsualArithmetic, ValuesEnumerationsAndRefusals) {
    TypeWorld w;
    CPTypeInfo c = w.integer(CPSIMPLE_Char, 'A');
    CPTypeInfo d = w.simple(CPSIMPLE_Double);
    ASSERT_EQ(CPTypeInfo::usualArithmetic(c, d, nullptr, nullptr), 0);
    EXPECT_EQ(c.getValue()->getDouble(), 65.0);

    CPTypeInfo colour = w.declareEnum("Colour")->typeInfo;
    Value red;
    red.setEnumeration(2);
    colour.setValue(&red);
    CPTypeInfo i = w.integer(CPSIMPLE_SignedInt, 1);
    ASSERT_EQ(CPTypeInfo::usualArithmetic(colour, i, nullptr, nullptr), 0);
    EXPECT_EQ(colour.getKind(), uint32_t(BPTYPE_Simple));
    EXPECT_EQ(colour.getSimpleName(), CPSIMPLE_SignedInt);
    EXPECT_EQ(colour.getValue()->getKind(), BPVALUE_SignedLong);
    EXPECT_EQ(colour.getValue()->getSignedLong(), 2);

    CPTypeInfo typedefd = w.typedefOf("UINT", w.simple(CPSIMPLE_UnsignedInt));
    CPTypeInfo l = w.simple(CPSIMPLE_SignedLong);
    ASSERT_EQ(CPTypeInfo::usualArithmetic(typedefd, l, nullptr, nullptr), 0);
    EXPECT_EQ(typedefd.getSimpleName(), CPSIMPLE_UnsignedLong);

    CPTypeInfo p = w.pointer(w.simple(CPSIMPLE_SignedInt)), j = w.simple(CPSIMPLE_SignedInt);
    EXPECT_EQ(CPTypeInfo::usualArithmetic(p, j, nullptr, nullptr), -1);
    CPTypeInfo cls = w.declareClass("S")->typeInfo, k = w.simple(CPSIMPLE_SignedInt);
    EXPECT_EQ(CPTypeInfo::usualArithmetic(cls, k, nullptr, nullptr), -1);
}

TEST(CanConvert, ImplicitConversions) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo& pi = w.pointer(i);
    CPTypeInfo& cc = w.simple(CPSIMPLE_Char, CPTYPE_Const);
    TypeNode* base = w.declareClass("Base");
    TypeNode* derived = w.declareClass("Derived", nullptr, base);
    struct Case {
        const char* what;
        BaseType* source;
        BaseType* target;
        bool converts;
    } cases[] = {
        {"0 to a pointer", &w.integer(CPSIMPLE_SignedInt, 0), &pi, true},
        {"1 to a pointer", &w.integer(CPSIMPLE_SignedInt, 1), &pi, false},
        {"a pointer to an int", &pi, &i, false},
        {"a pointer to bool", &pi, &w.simple(CPSIMPLE_Bool), true},
        {"double to int", &w.simple(CPSIMPLE_Double), &i, true},
        {"a string literal to const char*", &w.stringLiteral("x"), &w.pointer(cc), true},
        {"int* to void*", &pi, &w.pointer(w.simple(CPSIMPLE_Void)), true},
        {"const int* to int*", &w.pointer(w.simple(CPSIMPLE_SignedInt, CPTYPE_Const)), &pi, false},
        {"Derived* to Base*", &w.pointer(derived->typeInfo), &w.pointer(base->typeInfo), true},
        {"Base* to Derived*", &w.pointer(base->typeInfo), &w.pointer(derived->typeInfo), false},
        {"Derived to Base", &derived->typeInfo, &base->typeInfo, true},
        {"Any to a class", &w.make(BPTYPE_Any), &base->typeInfo, true},
        {"a pointer to Any to int", &w.pointer(w.make(BPTYPE_Any)), &i, true},
        {"anything to no target", &pi, nullptr, true},
        {"nothing to int", nullptr, &i, false},
        {"0 to an array of unknown bound", &w.integer(CPSIMPLE_SignedInt, 0), &w.array(i, 0), true},
        {"a variable of int to int", nullptr, &i, false},
    };
    CPTypeInfo& variable = w.make(BPTYPE_Variable, CPTYPE_LValue);
    variable.setVariableType(&i);
    cases[16].source = &variable;
    cases[16].converts = true;
    for (const Case& k : cases)
        EXPECT_EQ(CPTypeInfo::canConvert(k.source, k.target, nullptr, 0), k.converts) << k.what;
}

TEST(CanConvert, UserDefinedConversionsAddReferences) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo& d = w.simple(CPSIMPLE_Double);
    TypeNode* number = w.declareClass("Number");
    TypeNode* toInt = w.declareFunction("operator signed int", number, &i, {});
    TypeNode* fromDouble = w.declareFunction("Number", number, nullptr, {&d});
    TypeNode* wrapper = w.declareClass("Wrapper");
    w.declareFunction("Wrapper", wrapper, nullptr, {&i}, CPTYPE_Explicit);
    TypeNode* use = w.node(CPN_InitDeclarator);
    Symbol* toIntSymbol = toInt->typeInfo.getSymbol();
    Symbol* fromDoubleSymbol = fromDouble->typeInfo.getSymbol();

    EXPECT_TRUE(CPTypeInfo::canConvert(&number->typeInfo, &i, use, 0));
    EXPECT_EQ(toIntSymbol->getReferenceCount(), 1u);
    EXPECT_EQ(toIntSymbol->getReference(0), use);

    EXPECT_TRUE(CPTypeInfo::canConvert(&d, &number->typeInfo, use, 0));
    EXPECT_EQ(fromDoubleSymbol->getReferenceCount(), 1u);

    EXPECT_FALSE(CPTypeInfo::canConvert(&i, &wrapper->typeInfo, use, 0)) << "explicit constructors don't convert";
    EXPECT_FALSE(CPTypeInfo::canConvert(&number->typeInfo, &i, use, LOOKUP_NoUserConversions));
    EXPECT_FALSE(use->hasError()) << "type operations never log";

    CPTypeInfo converted(number->typeInfo);
    Symbol* found = nullptr;
    ASSERT_EQ(CPTypeInfo::findConversionFunction(converted, &d, nullptr, 0, &found), 0);
    EXPECT_EQ(found, toIntSymbol) << "int is the one conversion, and it converts to double";
    EXPECT_EQ(converted.getSimpleName(), CPSIMPLE_SignedInt);
    CPTypeInfo viaSimple(number->typeInfo);
    EXPECT_EQ(CPTypeInfo::convertSimple(viaSimple, CPSIMPLE_SignedInt, nullptr, false), 0);
    EXPECT_EQ(viaSimple.getSimpleName(), CPSIMPLE_SignedInt);
    CPTypeInfo none = w.declareClass("Empty")->typeInfo;
    EXPECT_EQ(CPTypeInfo::convertSimple(none, CPSIMPLE_SignedInt, nullptr, false), -1);
}

TEST(CanConvert, ASelfConvertingClassEnds) {
    TypeWorld w;
    TypeNode* loop = w.declareClass("Loop");
    w.declareFunction("Loop", loop, nullptr, {&loop->typeInfo});
    TypeNode* other = w.declareClass("Other");
    EXPECT_FALSE(CPTypeInfo::canConvert(&other->typeInfo, &loop->typeInfo, nullptr, 0));
    EXPECT_TRUE(CPTypeInfo::canConvert(&loop->typeInfo, &loop->typeInfo, nullptr, 0));
}

}  // namespace
