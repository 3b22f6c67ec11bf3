#include <gtest/gtest.h>

#include <set>
#include <string>

#include "QBHash.h"
#include "QBHashTable.h"
#include "QBString.h"

using quernbase::QBAllocator;
using quernbase::QBHashTable;
using quernbase::QBString;

namespace {
unsigned sameHash(QBString) { return 7; }
unsigned intHash(int k) { return unsigned(k); }
}  // namespace

TEST(QBHashTableRehash, NinetyAlikeKeysRehashAtTheNinetyFirst) {
    QBHashTable<QBString, int> t(sameHash);
    EXPECT_EQ(t.getBucketCount(), 89);
    for (int i = 0; i < 90; ++i) ASSERT_EQ(t.set(QBString(i), i), 0);
    EXPECT_EQ(t.count(), 90);
    EXPECT_EQ(t.getCollisions(), 89);
    EXPECT_EQ(t.getBucketCount(), 89);
    ASSERT_EQ(t.set(QBString(90), 90), 0);
    EXPECT_EQ(t.getBucketCount(), 179);
    // Old collisions kept, plus 89 new ones from the rehash, plus the 91st key's own.
    EXPECT_EQ(t.getCollisions(), 89 + 89 + 1);
    for (int i = 0; i <= 90; ++i) ASSERT_NE(t.find(QBString(i)), nullptr);
    EXPECT_EQ(*t.find(QBString(42)), 42);
}

TEST(QBHashTableRehash, SizesGrowAsTwiceAndOne) {
    QBHashTable<int, int> t(intHash);
    EXPECT_EQ(t.rehash(0), 0);
    EXPECT_EQ(t.getBucketCount(), 179);
    EXPECT_EQ(t.rehash(-1), 0);
    EXPECT_EQ(t.getBucketCount(), 359);
}

TEST(QBHashTableSet, ReplacesValueAndStoredKey) {
    QBHashTable<QBString, QBString> t(QBString::hashString);
    QBString k1("key"), k2("key");
    t.set(k1, QBString("one"));
    t.set(k2, QBString("two"));
    EXPECT_EQ(t.count(), 1);
    EXPECT_TRUE(*t.find(QBString("key")) == "two");
    QBString* keys = t.keys();
    ASSERT_NE(keys, nullptr);
    EXPECT_TRUE(keys[0].sameBody(k2));
    delete[] keys;
}

TEST(QBHashTableSet, WithoutEqualNullKeyDiffersFromEmpty) {
    QBHashTable<QBString, int> t(QBString::hashString);
    t.set(QBString(""), 1);
    EXPECT_FALSE(t.contains(QBString()));
    EXPECT_TRUE(t.contains(QBString("")));
}

TEST(QBHashTableSet, EqualFunctionDecides) {
    auto ignoreCase = [](QBString a, QBString b) { return a.compare(b, 0); };
    QBHashTable<QBString, int> t(QBString::hashString, ignoreCase);
    t.set(QBString("File.C"), 1);
    t.set(QBString("file.c"), 2);
    EXPECT_EQ(t.count(), 1);
    EXPECT_EQ(*t.find(QBString("FILE.C")), 2);
}

TEST(QBHashTableKeys, ThreeKeysInBucketOrder) {
    QBHashTable<int, int> t(intHash);
    EXPECT_EQ(t.keys(), nullptr);
    t.set(200, 0);  // bucket 22
    t.set(5, 0);    // bucket 5
    t.set(94, 0);   // bucket 5, ahead of 5 in its chain
    int* keys = t.keys();
    ASSERT_NE(keys, nullptr);
    EXPECT_EQ(keys[0], 94);
    EXPECT_EQ(keys[1], 5);
    EXPECT_EQ(keys[2], 200);
    delete[] keys;
}

TEST(QBHashTableRemove, CountsAndCollisions) {
    QBHashTable<int, int> t(intHash);
    EXPECT_EQ(t.remove(1), 0);  // empty: nothing searched
    t.set(1, 1);
    t.set(90, 2);  // same bucket as 1
    EXPECT_EQ(t.getCollisions(), 1);
    EXPECT_EQ(t.remove(2), -2);
    EXPECT_EQ(t.remove(1), 0);
    EXPECT_EQ(t.getCollisions(), 0);
    EXPECT_EQ(t.count(), 1);
    EXPECT_EQ(t.remove(90), 0);
    EXPECT_EQ(t.getCollisions(), 0);
    EXPECT_FALSE(t.contains(90));
}

TEST(QBHashTableMemory, FailedConstructionIsRepairedByTheNextInsertion) {
    QBAllocator::failAllocationAfter(1);
    QBHashTable<int, int> t(intHash);
    QBAllocator::failAllocationAfter(0);
    EXPECT_EQ(t.getBucketCount(), 0);
    EXPECT_EQ(t.find(3), nullptr);
    EXPECT_EQ(t.set(3, 4), 0);
    EXPECT_EQ(t.getBucketCount(), 89);
    EXPECT_EQ(*t.find(3), 4);
}

TEST(QBHashTableMemory, FailedInsertionLeavesTheTable) {
    QBHashTable<QBString, QBString> t(QBString::hashString);
    t.set(QBString("a"), QBString("1"));
    QBString b("b"), two("2");
    QBAllocator::failAllocationAfter(1);
    EXPECT_EQ(t.set(b, two), -8);
    QBAllocator::failAllocationAfter(0);
    EXPECT_EQ(t.count(), 1);
    EXPECT_FALSE(t.contains(QBString("b")));
    t.clear(false);
    EXPECT_EQ(t.count(), 0);
    EXPECT_EQ(t.set(QBString("c"), QBString("3")), 0);
}

TEST(QBHashTablePointers, PointerKeysSpreadOverBuckets) {
    QBHashTable<const void*, int> t(quernbase::QBHashPointer);
    static long objects[300];
    for (int i = 0; i < 300; ++i) t.set(&objects[i], i);
    std::set<unsigned> buckets;
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(*t.find(&objects[i]), i);
        buckets.insert(quernbase::QBHashPointer(&objects[i]) % 89);
    }
    EXPECT_GT(buckets.size(), 60u);
}
