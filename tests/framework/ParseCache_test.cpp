#include <gtest/gtest.h>

#include "CPParseNodeType.h"
#include "TBPParseCache.h"

using quernbase::QBArray;
using quernbase::QBString;
typedef TBPParseTree<CPParseNodeType> Tree;
typedef TBPParseCache<CPParseNodeType> Cache;

namespace {
struct CountedTree : Tree {
    explicit CountedTree(int* deaths) : Tree(CPN_PreprocessorUnit), deaths(deaths) {}
    ~CountedTree() override { ++*deaths; }
    int* deaths;
};
}  // namespace

TEST(ParseCache, SetTwiceKeepsOneCountAndReplacingReleasesTheOld) {
    int deaths = 0;
    Cache* cache = new Cache;
    cache->addRef();
    CountedTree* a = new CountedTree(&deaths);
    CountedTree* b = new CountedTree(&deaths);
    EXPECT_EQ(cache->set(QBString("a.h"), a), 0);
    EXPECT_EQ(cache->set(QBString("a.h"), a), 0);
    EXPECT_EQ(a->getRefCount(), 1);
    EXPECT_EQ(cache->find(QBString("a.h")), a);
    EXPECT_EQ(cache->set(QBString("a.h"), b), 0);
    EXPECT_EQ(deaths, 1);  // a had only the cache's count
    EXPECT_EQ(cache->set(QBString("b.h"), nullptr), 0);
    EXPECT_EQ(cache->count(), 2);
    QBArray<QBString> names;
    QBArray<Tree*> trees;
    cache->getNames(names);
    cache->getTrees(trees);
    EXPECT_EQ(names.count(), 2u);
    EXPECT_EQ(trees.count(), 2u);
    EXPECT_EQ(cache->find(QBString("c.h")), nullptr);
    cache->release();
    EXPECT_EQ(deaths, 2);
}
