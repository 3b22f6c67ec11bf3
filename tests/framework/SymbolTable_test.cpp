// Symbol tables on real trees: declaration order under one key, removal, the raw walk through
// parents and imports, the symmetric reference graph with aliases, linking clones by seek
// position, display names, and the dump.
#include <gtest/gtest.h>

#include <string>

#include "CPSymbolInfo.h"
#include "support/FrameworkTestKit.h"

using quernbase::QBString;

namespace {

// "int f ; int g ;\nint f ;" as Unit[ Decl[int f ;] Decl[int g ;] Decl[int f ;] EOF ].
class Scope : public ::testing::Test {
protected:
    void SetUp() override {
        TokenList tokens = lexTokens("int f; int g;\nint f;", "scope.c");
        ASSERT_EQ(tokens.count(), 10u);
        unit = new TypedTestTree(NT_UNIT);
        unit->addRef();
        for (unsigned d = 0; d < 3; ++d) {
            decls[d] = new TypedTestTree(NT_DECL);
            unit->addChild(decls[d]);
            for (unsigned i = 0; i < 3; ++i) decls[d]->addChild(tokens[3 * d + i]);
        }
        unit->addChild(tokens[9]);
        releaseAll(tokens);
    }
    void TearDown() override {
        unit->release();
        Node::setTypeNameFunction(nullptr);
    }
    // A symbol named by the declaration's second token, declared in scope.
    CPSymbolInfo* declare(unsigned d, Tree* scope) {
        QBString name = decls[d]->getTokenChild(1)->getSpelling();
        auto* symbol = new CPSymbolInfo(name, decls[d], scope);
        EXPECT_EQ(scope->addSymbol(symbol), 0);
        return symbol;
    }
    Token* nameToken(unsigned d) { return decls[d]->getTokenChild(1); }
    std::string dumpOf(const SymbolTable* table, bool withReferences) {
        QBString out("");
        EXPECT_EQ(table->dumpToString(out, 2, withReferences), 0);
        return str(out);
    }

    TypedTestTree* unit = nullptr;
    TypedTestTree* decls[3] = {};
};

TEST_F(Scope, OverloadsShareOneKeyInDeclarationOrder) {
    CPSymbolInfo* first = declare(0, unit);
    declare(1, unit);
    CPSymbolInfo* second = declare(2, unit);
    SymbolTable* table = unit->getSymbolTable();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->getBucketCount(), 5);
    EXPECT_EQ(table->getKeyCount(), 2);
    SymbolList* list = unit->findSymbolList("f");
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->count(), 2u);
    EXPECT_EQ((*list)[0], first);
    EXPECT_EQ((*list)[1], second);
    EXPECT_EQ(first->getRefCount(), 1);  // the table's count
    EXPECT_EQ(unit->findSymbolList("F"), nullptr);  // keys compare byte for byte
}

TEST_F(Scope, TablesAreMadeOnDemandOrReserved) {
    EXPECT_EQ(unit->getSymbolTable(), nullptr);
    EXPECT_EQ(decls[0]->addImport(nullptr), 0);
    EXPECT_EQ(decls[0]->getSymbolTable(), nullptr);
    EXPECT_EQ(unit->reserveSymbols(2 * 3 - 1), 0);
    EXPECT_EQ(unit->getSymbolTable()->getBucketCount(), 5);
    EXPECT_EQ(decls[1]->reserveSymbols(13), 0);
    EXPECT_EQ(decls[1]->reserveSymbols(99), 0);  // an existing table stays
    EXPECT_EQ(decls[1]->getSymbolTable()->getBucketCount(), 13);
    EXPECT_EQ(decls[2]->addSymbol(nullptr), 0);
    EXPECT_NE(decls[2]->getSymbolTable(), nullptr);
}

TEST_F(Scope, RemovingTheLastSymbolDropsTheKeyAndLookupGoesToTheParent) {
    EXPECT_EQ(decls[0]->removeSymbol(nullptr), qbmsg::NotInList);
    CPSymbolInfo* outer = declare(0, unit);
    outer->addRef();
    CPSymbolInfo* inner = declare(2, decls[0]);
    EXPECT_EQ((*decls[0]->findSymbolList("f"))[0], inner);
    CPSymbolInfo stranger("nobody", nullptr, nullptr);
    EXPECT_EQ(decls[0]->removeSymbol(&stranger), 0);
    EXPECT_EQ(decls[0]->removeSymbol(inner), 0);  // frees it: the table held the only count
    EXPECT_EQ(decls[0]->getSymbolTable()->getKeyCount(), 0);
    SymbolList* list = decls[0]->findSymbolList("f");
    ASSERT_NE(list, nullptr);
    EXPECT_EQ((*list)[0], outer);
    EXPECT_EQ(unit->removeSymbol(outer), 0);
    EXPECT_EQ(outer->getRefCount(), 1);
    EXPECT_EQ(decls[0]->findSymbolList("f"), nullptr);
    outer->release();
}

TEST_F(Scope, FindSymbolsWalksUpAndReportsAbsence) {
    CPSymbolInfo* g = declare(1, unit);
    SymbolList out;
    EXPECT_EQ(decls[2]->findSymbols("g", out), 0);
    ASSERT_EQ(out.count(), 1u);
    EXPECT_EQ(out[0], g);
    SymbolList none;
    EXPECT_EQ(decls[2]->findSymbols("h", none), qbmsg::NameNotFound);
    EXPECT_EQ(none.count(), 0u);
}

TEST_F(Scope, MutualImportsEndAndTwoRoutesListASymbolTwice) {
    // decls[0] and decls[1] import each other; decls[2] imports both.
    CPSymbolInfo* f = declare(0, decls[0]);
    declare(1, decls[1]);
    ASSERT_EQ(decls[0]->addImport(decls[1]->getSymbolTable()), 0);
    ASSERT_EQ(decls[1]->addImport(decls[0]->getSymbolTable()), 0);
    SymbolList out;
    EXPECT_EQ(decls[1]->findSymbols("f", out), 0);
    EXPECT_EQ(out.count(), 1u);
    SymbolList missing;
    EXPECT_EQ(decls[0]->getSymbolTable()->collectSymbols("zz", missing, false), qbmsg::NameNotFound);

    ASSERT_EQ(decls[2]->addImport(decls[1]->getSymbolTable()), 0);
    ASSERT_EQ(decls[2]->addImport(decls[0]->getSymbolTable()), 0);
    SymbolList twice;
    EXPECT_EQ(decls[2]->findSymbols("f", twice), 0);
    ASSERT_EQ(twice.count(), 2u);
    EXPECT_EQ(twice[0], f);
    EXPECT_EQ(twice[1], f);
    SymbolList first;
    EXPECT_EQ(decls[2]->getSymbolTable()->collectSymbols("f", first, true), 0);
    EXPECT_EQ(first.count(), 1u);
}

TEST_F(Scope, PrefixSearchCoversOnlyThisTable) {
    declare(0, unit);
    declare(1, unit);
    declare(2, unit);
    declare(1, decls[0]);
    SymbolList all;
    EXPECT_EQ(unit->findSymbolsWithPrefix("", all), 0);
    EXPECT_EQ(all.count(), 3u);
    SymbolList fs;
    EXPECT_EQ(unit->findSymbolsWithPrefix("f", fs), 0);
    EXPECT_EQ(fs.count(), 2u);
    SymbolList none;
    EXPECT_EQ(decls[2]->findSymbolsWithPrefix("", none), 0);
    EXPECT_EQ(none.count(), 0u);
}

TEST_F(Scope, MovingASymbolChangesItsTableAndScope) {
    CPSymbolInfo* g = declare(1, unit);
    EXPECT_EQ(unit->moveSymbol(g, nullptr), -8021);
    EXPECT_EQ(unit->moveSymbol(g, decls[2]), 0);
    EXPECT_EQ(unit->getSymbolTable()->getKeyCount(), 0);
    EXPECT_EQ((*decls[2]->findSymbolList("g"))[0], g);
    EXPECT_EQ(g->getScope(), decls[2]);
    EXPECT_EQ(g->getRefCount(), 1);
}

// ---- The reference graph ----

TEST_F(Scope, AnAliasChainOfTwoPutsAReferenceInThreeLists) {
    CPSymbolInfo* a = declare(0, decls[0]);
    CPSymbolInfo* b = declare(1, decls[1]);
    CPSymbolInfo* c = declare(2, decls[2]);
    EXPECT_EQ(a->setAlias(b), 0);
    EXPECT_EQ(b->setAlias(c), 0);
    EXPECT_EQ(b->getRefCount(), 2);
    Token* use = nameToken(1);
    EXPECT_EQ(a->addReference(use), 0);
    EXPECT_EQ(a->addReference(nullptr), 0);
    for (CPSymbolInfo* s : {a, b, c}) {
        ASSERT_EQ(s->getReferenceCount(), 1u);
        EXPECT_EQ(s->getReference(0), use);
    }
    EXPECT_EQ(a->getReference(1), nullptr);
    ASSERT_EQ(use->getReferringSymbolCount(), 3u);

    // Without unlink the first symbol stays in the side list; the aliases always leave it.
    EXPECT_EQ(a->removeReference(use, false), 0);
    EXPECT_EQ(a->getReferenceCount() + b->getReferenceCount() + c->getReferenceCount(), 0u);
    ASSERT_EQ(use->getReferringSymbolCount(), 1u);
    EXPECT_EQ(use->getReferringSymbol(0), a);
    use->removeReferringSymbol(a);
}

TEST_F(Scope, AliasCyclesAreRefused) {
    CPSymbolInfo* a = declare(0, decls[0]);
    CPSymbolInfo* b = declare(1, decls[1]);
    EXPECT_EQ(a->setAlias(a), 0);
    EXPECT_EQ(a->getAlias(), nullptr);
    EXPECT_EQ(a->setAlias(b), 0);
    EXPECT_EQ(b->setAlias(a), -8021);
    EXPECT_EQ(b->getAlias(), nullptr);
    EXPECT_EQ(a->addReference(nameToken(2)), 0);  // ends: the chain is a, b
    EXPECT_EQ(nameToken(2)->getReferringSymbolCount(), 2u);
    EXPECT_EQ(a->setAlias(nullptr), 0);
    EXPECT_EQ(b->getRefCount(), 1);
}

TEST_F(Scope, OnlyTheLastDuplicateReferenceIsRemoved) {
    CPSymbolInfo* f = declare(0, unit);
    Token* x = nameToken(0);
    Token* y = nameToken(1);
    f->addReference(x);
    f->addReference(y);
    f->addReference(x);
    EXPECT_EQ(f->removeReference(x, true), 0);
    ASSERT_EQ(f->getReferenceCount(), 2u);
    EXPECT_EQ(f->getReference(0), x);
    EXPECT_EQ(f->getReference(1), y);
    EXPECT_EQ(x->getReferringSymbolCount(), 1u);
}

TEST_F(Scope, WhoeverDiesFirstUnhooksItself) {
    CPSymbolInfo* f = declare(0, unit);
    f->addRef();
    Token* spare = nameToken(2);
    spare->addRef();
    f->addReference(nameToken(0));
    f->addReference(spare);
    // The node goes first: the symbol forgets it.
    decls[2]->setChild(1, nullptr);
    spare->release();
    ASSERT_EQ(f->getReferenceCount(), 1u);
    EXPECT_EQ(f->getReference(0), nameToken(0));
    // The symbol goes first: the node's side list forgets it.
    unit->removeSymbol(f);
    f->release();
    EXPECT_EQ(nameToken(0)->getReferringSymbolCount(), 0u);
}

TEST_F(Scope, ASymbolOutlivingItsTreeKeepsNoStaleReferences) {
    auto* held = new CPSymbolInfo("held", decls[0], unit);
    held->addRef();
    held->addReference(nameToken(0));
    held->addReference(nameToken(1));
    unit->release();
    unit = new TypedTestTree(NT_UNIT);
    unit->addRef();
    EXPECT_EQ(held->getReferenceCount(), 0u);
    held->release();
}

// ---- Cloning and linking ----

TEST_F(Scope, ACloneLinksItsSymbolsBySeekPosition) {
    CPSymbolInfo* f = declare(0, unit);
    CPSymbolInfo* implicit = new CPSymbolInfo("f", nullptr, unit);  // made by analysis: no token
    unit->addSymbol(implicit);
    f->addReference(nameToken(0));
    Node* copy = unit->clone();
    ASSERT_NE(copy, nullptr);
    copy->addRef();
    Tree* tree = static_cast<Tree*>(copy);
    SymbolList* list = tree->findSymbolList("f");
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->count(), 2u);
    EXPECT_EQ((*list)[0]->getAlias(), f);
    EXPECT_EQ((*list)[1]->getAlias(), nullptr);
    EXPECT_EQ((*list)[0]->getReferenceCount(), 1u);  // copied, and entered in the side list
    EXPECT_EQ(nameToken(0)->getReferringSymbolCount(), 2u);
    EXPECT_GE(tree->getSymbolTable()->getBucketCount(), 2 * 1 + 5);
    copy->release();
    EXPECT_EQ(nameToken(0)->getReferringSymbolCount(), 1u);
    EXPECT_EQ(f->getRefCount(), 1);
}

TEST_F(Scope, LinkingNeedsTheSameSeekPositionAndNodeType) {
    CPSymbolInfo* mine = new CPSymbolInfo("f", decls[0], decls[0]);
    decls[0]->addSymbol(mine);
    CPSymbolInfo* sameSpot = new CPSymbolInfo("f", decls[0], decls[1]);
    CPSymbolInfo* elsewhere = new CPSymbolInfo("f", decls[2], decls[1]);
    decls[1]->addSymbol(elsewhere);
    decls[1]->addSymbol(sameSpot);
    EXPECT_EQ(decls[0]->linkSymbols(unit, false), 0);  // types differ: nothing
    EXPECT_EQ(mine->getAlias(), nullptr);
    EXPECT_EQ(decls[0]->linkSymbols(nullptr, true), 0);
    EXPECT_EQ(decls[0]->linkSymbols(decls[1], false), 0);
    EXPECT_EQ(mine->getAlias(), sameSpot);
}

TEST_F(Scope, RecursiveLinkingWalksChildrenInStep) {
    TBPParseTree<CPParseNodeType>* copy = static_cast<Tree*>(unit->clone());
    copy->addRef();
    CPSymbolInfo* original = declare(1, decls[1]);
    auto* twin = new CPSymbolInfo("g", decls[1], static_cast<Tree*>(copy->getChild(1)));
    static_cast<Tree*>(copy->getChild(1))->addSymbol(twin);
    EXPECT_EQ(copy->linkSymbols(unit, true), 0);
    EXPECT_EQ(twin->getAlias(), original);
    copy->release();
}

// ---- Names and dumps ----

TEST_F(Scope, DumpShowsDefinitionsReferencesAndImports) {
    CPSymbolInfo* g = declare(1, decls[0]);
    g->addReference(nameToken(1));
    g->addReference(decls[2]);
    auto* loose = new CPSymbolInfo("loose", nullptr, decls[0]);
    decls[0]->addSymbol(loose);
    loose->addReference(nameToken(2));
    auto* implicitCall = new TestTree(NT_GROUP);  // a reference with no token of its own
    unit->addChild(implicitCall);
    loose->addReference(implicitCall);
    decls[1]->addSymbol(nullptr);
    decls[0]->addImport(decls[1]->getSymbolTable());
    Node::setTypeNameFunction(testTypeName);
    std::string expected =
        "  g\n"
        "    scope.c(1,8):@7: definition of 'g'\n"
        "    scope.c(1,12):@11: reference to 'g'\n"
        "    scope.c(2,1):@14: reference to 'g'\n"
        "  loose\n"
        "    scope.c(2,5):@18: reference to 'loose'\n"
        "    Group\n"
        "  imports Decl\n";
    EXPECT_EQ(sortedLines(dumpOf(decls[0]->getSymbolTable(), true)), sortedLines(expected));
    EXPECT_EQ(sortedLines(dumpOf(decls[0]->getSymbolTable(), false)),
              sortedLines("  g\n  loose\n  imports Decl\n"));
}

TEST_F(Scope, ATreePrintListsItsSymbols) {
    declare(1, decls[0]);
    Node::setTypeNameFunction(testTypeName);
    QBString out("");
    ASSERT_EQ(decls[0]->printToString(out, 0, false), 0);
    std::string text = str(out);
    EXPECT_EQ(text.substr(0, text.find("IDENT")),
              "[Decl     ***INVALID***\n Symbols:\n   g\n     scope.c(1,8):@7: definition of 'g'\n\n  ");
}

TEST_F(Scope, DisplayNamesFollowTheType) {
    CPSymbolInfo* f = declare(0, unit);
    QBString name;
    ASSERT_EQ(f->getDisplayName(name), 0);
    EXPECT_EQ(str(name), "f");

    TypeInfo intType(BPTYPE_Simple), charType(BPTYPE_Simple);
    TypeInfo& function = decls[0]->typeInfo;
    function.setKind(BPTYPE_Function);
    function.addArgument("a", &intType, nullptr);
    function.addArgument("b", &charType, nullptr);
    ASSERT_EQ(f->getDisplayName(name), 0);
    EXPECT_EQ(str(name), "f(SIMPLE, SIMPLE)");

    // A class instance shows its template arguments; a template ID is its own text.
    CPSymbolInfo* g = declare(1, unit);
    TypeInfo id(BPTYPE_TemplateID);
    id.addArgument("", &intType, nullptr);
    decls[1]->typeInfo.setKind(BPTYPE_Class);
    decls[1]->typeInfo.setTemplateID(&id);
    ASSERT_EQ(g->getDisplayName(name), 0);
    EXPECT_EQ(str(name), "g<SIMPLE>");
    id.setTemplateType(&decls[1]->typeInfo);
    decls[1]->typeInfo.setSymbol(g);
    decls[2]->typeInfo.setReference(&id);
    CPSymbolInfo* instance = new CPSymbolInfo("ignored", decls[2], unit);
    unit->addSymbol(instance);
    ASSERT_EQ(instance->getDisplayName(name), 0);
    EXPECT_EQ(str(name), "g<SIMPLE>");
    decls[1]->typeInfo.setKind(BPTYPE_Null);  // drops the type's count on g
}

}  // namespace

namespace {

// Every allocation of a round of table work failing in turn: statuses come back, the two sides
// of the reference graph stay symmetric, and nothing leaks.
TEST(SymbolTableMemory, FailuresLeaveTheGraphSymmetric) {
    for (unsigned n = 1; n < 40; ++n) {
        TokenList tokens = lexTokens("a b");
        auto* root = new TypedTestTree(NT_UNIT);
        root->addRef();
        for (Token* token : tokens) root->addChild(token);
        releaseAll(tokens);
        auto* symbol = new CPSymbolInfo("a", root, root);
        auto* alias = new CPSymbolInfo("a", root, root);
        quernbase::QBAllocator::failAllocationAfter(n);
        int rc = root->addSymbol(symbol);
        if (rc == 0) rc = root->addSymbol(alias);
        for (Symbol* s : {static_cast<Symbol*>(symbol), static_cast<Symbol*>(alias)})
            if (s->getRefCount() == 0) delete s;  // not taken by the table
        if (rc == 0) rc = symbol->setAlias(alias);
        if (rc == 0) rc = symbol->addReference(root->getChild(0));
        Node* copy = rc == 0 ? root->clone() : nullptr;
        quernbase::QBAllocator::failAllocationAfter(0);
        Node* token = root->getChild(0);
        unsigned listed = 0;
        for (unsigned i = 0; rc == 0 && i < token->getReferringSymbolCount(); ++i)
            listed += token->getReferringSymbol(i) == symbol || token->getReferringSymbol(i) == alias;
        if (rc == 0) {
            EXPECT_EQ(listed, symbol->getReferenceCount() + alias->getReferenceCount()) << n;
        }
        if (copy) {
            copy->addRef();
            copy->release();
        }
        root->release();
    }
}

}  // namespace
