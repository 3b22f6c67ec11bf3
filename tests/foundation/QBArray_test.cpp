#include <gtest/gtest.h>

#include <vector>

#include "QBArray.h"
#include "QBString.h"

using quernbase::QBAllocator;
using quernbase::QBArray;
using quernbase::QBString;

namespace {
int compareInts(const int& a, const int& b) { return a < b ? -1 : (a > b ? 1 : 0); }

std::vector<std::pair<int, int>> calls;
int recordingCompare(const int& a, const int& b) {
    calls.emplace_back(a, b);
    return compareInts(a, b);
}

// Orders by tens only, so that equal items can be told apart.
int compareTens(const int& a, const int& b) { return compareInts(a / 10, b / 10); }
}  // namespace

TEST(QBArrayGrowth, OnePointerAndNullWhileEmpty) {
    QBArray<int> a;
    EXPECT_EQ(sizeof a, sizeof(void*));
    EXPECT_TRUE(a.isNull());
    EXPECT_EQ(a.count(), 0u);
    EXPECT_EQ(a.find(3), -1);
    EXPECT_EQ(a.removeAt(0), -1);
}

TEST(QBArrayGrowth, SecondAddDoesNotReallocate) {
    QBArray<int> a;
    a.add(1);
    EXPECT_GE(a.capacity(), 2u);
    const int* first = &a[0];
    a.add(2);
    EXPECT_EQ(&a[0], first);
    EXPECT_EQ(a.count(), 2u);
}

TEST(QBArrayGrowth, CapacityFollowsTheAllocatorsUsableSize) {
    QBArray<char> a;
    a.add('x');
    // The block is at least what was asked for; capacity uses every usable byte of it.
    EXPECT_GE(a.capacity(), 2u);
    unsigned cap = a.capacity();
    for (unsigned i = 1; i < cap; ++i) a.add('y');
    EXPECT_EQ(a.capacity(), cap);
}

TEST(QBArrayGrowth, FreeSlotsOfStringArraysAreNullStrings) {
    QBArray<QBString> a;
    a.setCapacity(10);
    for (unsigned i = 0; i < a.capacity(); ++i) EXPECT_TRUE(a.begin()[i].isNull());
    for (int i = 0; i < 100; ++i) a.add(QBString(i));
    EXPECT_TRUE(a[57] == "57");
    a.add(a[3]);  // an item of the array itself, while the block moves
    EXPECT_TRUE(a[100] == "3");
}

TEST(QBArrayGrowth, OutOfMemoryLeavesTheArrayAsItWas) {
    QBArray<int> a;
    a.add(1);
    while (a.count() < a.capacity()) a.add(2);
    unsigned n = a.count();
    QBAllocator::failAllocationAfter(1);
    EXPECT_EQ(a.add(3), -8);
    QBAllocator::failAllocationAfter(0);
    EXPECT_EQ(a.count(), n);
    EXPECT_EQ(a[0], 1);
}

TEST(QBArraySorted, InsertSortedKeepsEqualsInArrivalOrder) {
    QBArray<int> a(compareTens);
    for (int v : {31, 10, 35, 12, 20, 33}) a.insertSorted(v);
    std::vector<int> got(a.begin(), a.end());
    EXPECT_EQ(got, (std::vector<int>{10, 12, 20, 31, 35, 33}));
}

TEST(QBArraySorted, WithoutCompareItemsSortAsUnsignedWords) {
    QBArray<int> a;
    for (int v : {3, -1, 2}) a.insertSorted(v);
    std::vector<int> got(a.begin(), a.end());
    EXPECT_EQ(got, (std::vector<int>{2, 3, -1}));
}

TEST(QBArrayFind, PassesTheKeyFirst) {
    QBArray<int> a(recordingCompare);
    a.add(5);
    a.add(7);
    calls.clear();
    EXPECT_EQ(a.find(7), 1);
    ASSERT_FALSE(calls.empty());
    for (auto& c : calls) EXPECT_EQ(c.first, 7);
    EXPECT_EQ(a.find(8), -1);
}

TEST(QBArrayFind, WithoutCompareIsBitwise) {
    QBArray<const char*> a;
    const char* p = "x";
    const char* q = "x";
    char r[] = "x";
    a.add(p);
    EXPECT_EQ(a.find(q), p == q ? 0 : -1);
    EXPECT_EQ(a.find(r), -1);
}

TEST(QBArrayRemove, ShiftsByAssignmentAndLastSlotKeepsItsValue) {
    QBArray<QBString> a;
    a.add(QBString("a"));
    a.add(QBString("b"));
    a.add(QBString("c"));
    EXPECT_EQ(a.removeAt(0), 0);
    ASSERT_EQ(a.count(), 2u);
    EXPECT_TRUE(a[0] == "b");
    EXPECT_TRUE(a[1] == "c");
    EXPECT_TRUE(a.begin()[2] == "c");  // the vacated slot is not cleared
    EXPECT_EQ(a.removeAt(1), 0);  // the last item: only the count changes
    EXPECT_EQ(a.count(), 1u);
    EXPECT_TRUE(a.begin()[1] == "c");
    EXPECT_EQ(a.removeAt(1), -1);
}

TEST(QBArrayCopy, CopiesItemsCountAndCompare) {
    QBArray<int> a(compareInts);
    a.add(2);
    a.add(1);
    QBArray<int> b;
    b = a;
    EXPECT_EQ(b.count(), 2u);
    EXPECT_EQ(b.getCompare(), a.getCompare());
    b.insertSorted(0);
    EXPECT_EQ(b[0], 0);
    EXPECT_EQ(a.count(), 2u);
    QBArray<int> none;
    b = none;
    EXPECT_EQ(b.count(), 0u);
    EXPECT_EQ(b.getCompare(), nullptr);
    EXPECT_FALSE(b.isNull());  // the block is kept
}
