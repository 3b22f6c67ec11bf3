// Out of memory at every allocation of the conversion and text work: a status or a refusal,
// never a crash or a leak, and the same answers once memory is back.
#include <gtest/gtest.h>

#include "QBMemory.h"
#include "support/TypeWorld.h"

namespace {

struct Answers {
    bool converts = false;
    int rank = 0;
    int arithmetic = 0;
    CPSimpleTypeName common = CPSIMPLE_None;
    std::string text;
};

Answers work(TypeWorld& w, TypeNode* number, CPTypeInfo& i, CPTypeInfo& pointerToF, TypeNode* use) {
    Answers a;
    a.converts = CPTypeInfo::canConvert(&number->typeInfo, &i, use, 0);
    a.rank = CPTypeInfo::conversionRank(&w.pointer(w.simple(CPSIMPLE_Void)), &pointerToF, 0);
    CPTypeInfo l = w.integer(CPSIMPLE_UnsignedInt, 3), r = w.integer(CPSIMPLE_SignedLong, 4);
    a.arithmetic = CPTypeInfo::usualArithmetic(l, r, nullptr, nullptr);
    a.common = r.getSimpleName();
    a.text = textOf(pointerToF, true);
    return a;
}

TEST(TypeOutOfMemory, EveryAllocationMayFail) {
    TypeWorld w;
    CPTypeInfo& i = w.simple(CPSIMPLE_SignedInt);
    TypeNode* number = w.declareClass("Number");
    w.declareFunction("operator signed int", number, &i, {});
    CPTypeInfo& pointerToF = w.pointer(w.declareFunction("f", nullptr, &i, {&w.simple(CPSIMPLE_Char)})->typeInfo);
    TypeNode* use = w.node(CPN_InitDeclarator);
    Answers expected = work(w, number, i, pointerToF, use);
    ASSERT_TRUE(expected.converts);
    ASSERT_EQ(expected.text, "signed int(*f)(char)");
    // The world keeps the types each round makes: a round may leave no more blocks than a
    // round that had all the memory it asked for.
    size_t before = quernbase::QBAllocator::liveBlocks();
    work(w, number, i, pointerToF, use);
    const size_t kept = quernbase::QBAllocator::liveBlocks() - before;
    unsigned failedRounds = 0;
    bool ranOut = false;
    for (unsigned n = 1; n < 2000 && !ranOut; ++n) {
        before = quernbase::QBAllocator::liveBlocks();
        quernbase::QBAllocator::failAllocationAfter(n);
        work(w, number, i, pointerToF, use);
        ranOut = quernbase::QBAllocator::failAllocationAfter(0) != 0;
        if (!ranOut) ++failedRounds;
        EXPECT_LE(quernbase::QBAllocator::liveBlocks() - before, kept) << "allocation " << n;
    }
    EXPECT_TRUE(ranOut) << "some allocation of the work never failed";
    EXPECT_GT(failedRounds, 5u);
    Answers after = work(w, number, i, pointerToF, use);
    EXPECT_EQ(after.converts, expected.converts);
    EXPECT_EQ(after.rank, expected.rank);
    EXPECT_EQ(after.arithmetic, 0);
    EXPECT_EQ(after.common, CPSIMPLE_UnsignedLong);
    EXPECT_EQ(after.text, expected.text);
}

}  // namespace
