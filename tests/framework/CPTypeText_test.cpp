// The text of types as they go back into source, the dump's attribute names, and the
// decorated name.
#include <gtest/gtest.h>

#include "support/TypeWorld.h"

namespace {

TEST(TypeText, WrittenAsInSource) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo& c = w.simple(CPSIMPLE_Char);
    CPTypeInfo& f = w.declareFunction("f", nullptr, &i, {&c})->typeInfo;
    TypeNode* cls = w.declareClass("Widget");
    CPTypeInfo& size = w.declareFunction("size", cls, &w.simple(CPSIMPLE_UnsignedLong), {}, CPTYPE_Const)->typeInfo;
    struct Case {
        const BaseType* type;
        bool normalize;
        const char* text;
    } cases[] = {
        {&w.pointer(f), false, "signed int(*f)(char)"},
        {&size, false, "unsigned long size() const"},
        {&w.link(size), false, "unsigned long size() const"},
        {&w.pointer(w.simple(CPSIMPLE_SignedInt, CPTYPE_Const)), false, "const signed int*"},
        {&w.reference(w.simple(CPSIMPLE_Double, CPTYPE_Volatile)), false, "volatile double&"},
        {&w.array(c, 4), false, "char[4]"},
        {&w.array(c, 0), false, "char[]"},
        {&w.link(i, CPTYPE_Const), false, "const signed int"},
        {&w.simple(CPSIMPLE_UnsignedLongLong), false, "unsigned long long"},
        {&w.simple(CPSIMPLE_LongDouble), false, "long double"},
        {&w.simple(CPSIMPLE_SignedChar), false, "signed char"},
        {&cls->typeInfo, false, "Widget"},
        {&size, true, "unsigned long Widget::size() const"},
        {&w.typedefOf("size_type", w.simple(CPSIMPLE_UnsignedInt)), false, "size_type"},
        {&w.typedefOf("size_type2", w.simple(CPSIMPLE_UnsignedInt)), true, "unsigned int"},
        {&w.typedefOf("wild", w.make(BPTYPE_Any)), true, "wild"},
        {&w.make(BPTYPE_Any), false, ""},
        {&w.make(BPTYPE_Null, CPTYPE_Const), false, "const "},
    };
    for (const auto& k : cases) EXPECT_EQ(textOf(*k.type, k.normalize), k.text);
    EXPECT_EQ(textOf(size, false, true), "size");
}

TEST(TypeText, ClassesInNamespacesAndBrokenLinks) {
    TypeWorld w;
    TypeNode* space = w.node(CPN_NamespaceDefinition);
    space->typeInfo.setKind(BPTYPE_Namespace);
    space->typeInfo.setSymbol(w.symbol("app", space, w.root()));
    TypeNode* inner = w.declareClass("Item", space);
    EXPECT_EQ(textOf(inner->typeInfo, true), "app::Item");
    EXPECT_EQ(textOf(inner->typeInfo, false), "Item");
    EXPECT_EQ(textOf(w.pointer(inner->typeInfo), true), "app::Item*");

    CPTypeInfo dead;
    EXPECT_EQ(dead.setReference(nullptr), -8021);
    EXPECT_EQ(textOf(dead), "<<unknown>>");
}

TEST(TypeText, DumpNamesTheAttributes) {
    TypeWorld w;
    CPTypeInfo& t = w.simple(CPSIMPLE_SignedInt, CPTYPE_LValue | CPTYPE_Const | CPTYPE_TemplateNotInstantiated);
    quernbase::QBString out("");
    ASSERT_EQ(t.dumpToString(out, 0, "x", false, false), 0);
    EXPECT_EQ(str(out), "x=BPTYPE_Simple: type=10\n  flags=LValue Const TemplateNotInstantiated\n");
    for (uint32_t bit = 1; bit <= CPTYPE_TemplateNotInstantiated; bit <<= 1) EXPECT_NE(CPTypeInfo::flagName(bit), nullptr);
    EXPECT_EQ(CPTypeInfo::flagName(CPTYPE_TemplateNotInstantiated << 1), nullptr);
    EXPECT_EQ(CPTypeInfo::flagName(3), nullptr);
}

TEST(TypeText, DecoratedNames) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo& uc = w.simple(CPSIMPLE_UnsignedChar);
    TypeNode* cls = w.declareClass("Matrix");
    struct Case {
        const BaseType* type;
        const char* name;
    } cases[] = {
        {&w.declareFunction("scale", nullptr, &i, {&i, &w.pointer(uc)})->typeInfo, "5scale__FSiPUc_"},
        {&w.declareFunction("Matrix", cls, nullptr, {})->typeInfo, "__ct__Fv_"},
        {&w.declareFunction("~Matrix", cls, nullptr, {})->typeInfo, "__dt__Fv_"},
        {&w.declareFunction("operator *", cls, &cls->typeInfo, {&w.reference(w.link(cls->typeInfo, CPTYPE_Const))})->typeInfo, "__op__ml__FRC6Matrix_"},
        {&w.declareFunction("operator !=", cls, &w.simple(CPSIMPLE_Bool), {&w.make(BPTYPE_Any)})->typeInfo, "__op__ne__F7__ANY___"},
        {&w.simple(CPSIMPLE_SignedLongLong), "Sm"},
        {&w.simple(CPSIMPLE_UnsignedShort), "Us"},
    };
    for (const auto& k : cases) {
        quernbase::QBString out("");
        ASSERT_EQ(static_cast<const CPTypeInfo*>(k.type)->getDecoratedName(out), 0);
        EXPECT_EQ(str(out), k.name);
    }
}

}  // namespace
