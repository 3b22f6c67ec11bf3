// TBPParseCache: finished trees by file path, the parser's second memory. The preprocessor enters
// each file's source tree here, so that a header's tree is built once per parser and the rewrite
// toolkit can enumerate the files of a translation unit. Each entry holds one count on its tree.
#pragma once

#include "BPRefCountObject.h"
#include "QBArray.h"
#include "QBHashTable.h"
#include "QBString.h"
#include "TBPParseTree.h"

template <class T>
class TBPParseCache : public BPRefCountObject {
public:
    typedef TBPParseTree<T> Tree;

    TBPParseCache() : trees(quernbase::QBString::hashString) {}
    ~TBPParseCache() override {
        trees.forEach([](const quernbase::QBString&, Tree* const& tree) {
            if (tree) tree->release();
        });
    }

    // Replaces the entry: the old tree loses its count (and dies at 0), the key stays.
    int set(const quernbase::QBString& name, Tree* tree) {
        Tree** slot = trees.find(name);
        Tree* old = slot ? *slot : nullptr;
        if (slot && tree == old) return 0;
        if (tree) tree->addRef();
        int rc = trees.set(name, tree);
        if (rc != 0) {
            if (tree) tree->release();
            return rc;
        }
        if (old) old->release();
        return 0;
    }

    Tree* find(const quernbase::QBString& name) const {
        Tree** slot = trees.find(name);
        return slot ? *slot : nullptr;
    }

    // The whole content, in bucket order; each appends to out.
    int getNames(quernbase::QBArray<quernbase::QBString>& out) const {
        int rc = 0;
        trees.forEach([&](const quernbase::QBString& name, Tree* const&) {
            if (rc == 0) rc = out.add(name);
        });
        return rc;
    }
    int getTrees(quernbase::QBArray<Tree*>& out) const {
        int rc = 0;
        trees.forEach([&](const quernbase::QBString&, Tree* const& tree) {
            if (rc == 0) rc = out.add(tree);
        });
        return rc;
    }
    int count() const { return trees.count(); }

private:
    quernbase::QBHashTable<quernbase::QBString, Tree*> trees;
};
