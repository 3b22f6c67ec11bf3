// Conversion ranks: the numbers overload resolution compares, level by level.
#include <gtest/gtest.h>

#include "support/TypeWorld.h"

namespace {

const uint32_t C = CPTYPE_Const, V = CPTYPE_Volatile;

struct RankCase {
    const char* what;
    BaseType* target;
    BaseType* source;
    uint32_t flags;
    int rank;
};

TEST(ConversionRank, SimpleTypesPointersAndQualifiers) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo& ci = w.simple(CPSIMPLE_SignedInt, C);
    CPTypeInfo& vi = w.simple(CPSIMPLE_SignedInt, V);
    CPTypeInfo& d = w.simple(CPSIMPLE_Double);
    CPTypeInfo& vd = w.simple(CPSIMPLE_Void);
    CPTypeInfo& cvd = w.simple(CPSIMPLE_Void, C);
    CPTypeInfo& c = w.simple(CPSIMPLE_Char);
    CPTypeInfo& cc = w.simple(CPSIMPLE_Char, C);
    CPTypeInfo& pc = w.pointer(c);
    CPTypeInfo& pcc = w.pointer(cc);
    const RankCase cases[] = {
        {"const int from int", &ci, &i, 0, 10},
        {"int from const int", &i, &ci, 0, -1},
        {"identical", &i, &i, 0, 11},
        {"volatile int from const int", &vi, &ci, 0, -1},
        {"int from double", &i, &d, 0, -1},
        {"void* from int*", &w.pointer(vd), &w.pointer(i), 0, 12},
        {"void* from const int*", &w.pointer(vd), &w.pointer(ci), 0, -1},
        {"const void* from int*", &w.pointer(cvd), &w.pointer(i), 0, 11},
        {"int* from int*", &w.pointer(i), &w.pointer(i), 0, 11},
        {"const int* from int*", &w.pointer(ci), &w.pointer(i), 0, 10},
        {"int* from const int*", &w.pointer(i), &w.pointer(ci), 0, -1},
        {"double* from int*", &w.pointer(d), &w.pointer(i), 0, -1},
        {"const char** from char**", &w.pointer(pcc), &w.pointer(pc), 0, -1},
        {"const char* const* from char**", &w.pointer(w.pointer(cc, C)), &w.pointer(pc), 0, 10},
        {"int& from int", &w.reference(i), &w.reference(i), 0, 11},
        {"int[3] from int[3]", &w.array(i, 3), &w.array(i, 3), 0, 22},
        {"int[3] from int[4]", &w.array(i, 3), &w.array(i, 4), 0, -1},
        {"int* from int[4]", &w.pointer(i), &w.array(i, 4), 0, 12},
        {"int[] from int*", &w.array(i, 0), &w.pointer(i), 0, 12},
        {"int[] from int* with the bound ignored", &w.array(i, 0), &w.pointer(i), CPRANK_ArrayBoundIgnored, -1},
        {"a link with const from int", &w.link(i, C), &i, 0, 10},
        {"int from a link to const int", &i, &w.link(ci), 0, -1},
    };
    for (const RankCase& k : cases)
        EXPECT_EQ(CPTypeInfo::conversionRank(k.target, k.source, k.flags), k.rank) << k.what;
}

TEST(ConversionRank, NullPointerConstantsAndStrings) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo& pi = w.pointer(i);
    EXPECT_EQ(CPTypeInfo::conversionRank(&pi, &w.integer(CPSIMPLE_SignedInt, 0), 0), 11);
    EXPECT_EQ(CPTypeInfo::conversionRank(&pi, &w.integer(CPSIMPLE_SignedInt, 1), 0), -1);
    EXPECT_EQ(CPTypeInfo::conversionRank(&pi, &i, 0), -1) << "an int without a value is no null pointer";

    CPTypeInfo& literal = w.stringLiteral("abc");
    CPTypeInfo& cc = w.simple(CPSIMPLE_Char, C);
    EXPECT_GE(CPTypeInfo::conversionRank(&w.pointer(cc), &literal, 0), 10);
    EXPECT_EQ(CPTypeInfo::simpleRank(&w.pointer(cc), &literal, 0), 10);
    EXPECT_EQ(CPTypeInfo::simpleRank(&w.pointer(w.simple(CPSIMPLE_WideChar)), &literal, 0), -1);
    EXPECT_EQ(CPTypeInfo::simpleRank(&w.array(w.simple(CPSIMPLE_UnsignedChar), 0), &literal, 0), 10);
    EXPECT_EQ(CPTypeInfo::simpleRank(&w.array(w.simple(CPSIMPLE_UnsignedChar, CPTYPE_NoImplicitConversion), 0), &literal, 0), -1);
    CPTypeInfo& unvalued = w.array(w.simple(CPSIMPLE_Char), 4);
    EXPECT_EQ(CPTypeInfo::simpleRank(&w.pointer(cc), &unvalued, 0), -1) << "only a constant is a string";
}

TEST(ConversionRank, ClassesTypedefsAndDerivation) {
    TypeWorld w;
    TypeNode* base = w.declareClass("Base");
    TypeNode* derived = w.declareClass("Derived", nullptr, base);
    TypeNode* other = w.declareClass("Other");
    CPTypeInfo& b = base->typeInfo;
    CPTypeInfo& d = derived->typeInfo;
    CPTypeInfo& alias = w.typedefOf("B", b);
    CPTypeInfo& constAlias = w.typedefOf("CB", w.link(b, C));
    const RankCase cases[] = {
        {"same class", &b, &b, 0, 11},
        {"different classes", &b, &other->typeInfo, 0, -1},
        {"derived to base, not allowed", &b, &d, 0, -1},
        {"derived to base, allowed", &b, &d, CPRANK_DerivedToBase, 11},
        {"base to derived", &d, &b, CPRANK_DerivedToBase, -1},
        {"typedef of the class as source", &b, &alias, 0, 12},
        {"typedef of the class as target", &alias, &b, 0, 12},
        {"const typedef into the plain class", &b, &constAlias, 0, -1},
        {"const typedef into a const link", &w.link(b, C), &constAlias, 0, 11},
        {"pointer to derived into pointer to base", &w.pointer(b), &w.pointer(d), CPRANK_DerivedToBase, 11},
    };
    for (const RankCase& k : cases)
        EXPECT_EQ(CPTypeInfo::conversionRank(k.target, k.source, k.flags), k.rank) << k.what;
    EXPECT_EQ(CPTypeInfo::conversionRank(nullptr, &b, 0), -1);
    EXPECT_EQ(CPTypeInfo::conversionRank(&b, nullptr, 0), -1);
}

TEST(ConversionRank, FunctionsAndFunctionPointers) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    CPTypeInfo& c = w.simple(CPSIMPLE_Char);
    CPTypeInfo& f = w.declareFunction("f", nullptr, &i, {&c})->typeInfo;
    CPTypeInfo& g = w.declareFunction("g", nullptr, &i, {&c})->typeInfo;
    CPTypeInfo& h = w.declareFunction("h", nullptr, &i, {&i})->typeInfo;
    EXPECT_EQ(CPTypeInfo::conversionRank(&f, &f, 0), 22);
    EXPECT_EQ(CPTypeInfo::conversionRank(&f, &g, 0), -1) << "functions differ by name";
    EXPECT_EQ(CPTypeInfo::conversionRank(&w.pointer(f), &w.pointer(g), 0), 22) << "below a pointer names don't count";
    EXPECT_EQ(CPTypeInfo::conversionRank(&w.pointer(f), &w.pointer(h), 0), -1) << "argument lists differ";
    EXPECT_TRUE(CPTypeInfo::compatibleFunctionPointers(&w.pointer(f), &g, true));
    EXPECT_FALSE(CPTypeInfo::compatibleFunctionPointers(&w.pointer(f), &h, true));
    EXPECT_FALSE(CPTypeInfo::compatibleFunctionPointers(&f, &g, true)) << "the target must be a pointer or reference";
    EXPECT_TRUE(CPTypeInfo::canConvert(&g, &w.pointer(f), nullptr, 0));
}

}  // namespace
