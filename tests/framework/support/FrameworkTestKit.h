// Shared pieces of the framework tests: draining a token stream back into text, holding tokens,
// a tree class with grammar rules, and a stand-in for the host's message file.
#pragma once

#include <string>

#include "CPParseNodeType.h"
#include "TBPParseTree.h"
#include "TBPSymbolTable.h"
#include "TBPTokenSource.h"
#include "TBPTypeInfo.h"

typedef TBPToken<CPParseNodeType> Token;
typedef TBPParseNode<CPParseNodeType> Node;
typedef TBPParseTree<CPParseNodeType> Tree;
typedef TBPErrorLog<CPParseNodeType> ErrorLog;
typedef TBPTokenSource<CPParseNodeType> Source;
typedef TBPValidationRule<CPParseNodeType> Rule;
typedef quernbase::QBArray<Token*> TokenList;

// Node types of the tests' little grammar.
enum TestNodeType : int { NT_UNIT = 301, NT_DECL = 302, NT_GROUP = 303 };

// Reads source from its current token to the end token inclusive, appending each token's text.
quernbase::QBString drainText(Source& source, int* tokenCount = nullptr);
// Reads source to the end token inclusive, keeping a count on every token.
TokenList drainTokens(Source& source);
void releaseAll(TokenList& tokens);
std::string str(const quernbase::QBString& s);

// An inner node that checks its children against a rule list.
class TestTree : public Tree {
public:
    explicit TestTree(int type, const Rule* rules = nullptr)
        : Tree(CPParseNodeType(type)), rules(rules) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) TestTree(type, rules)); }
    int validate() override { return rules ? Tree::validate(this, rules) : -1; }
    const Rule* rules;
};

typedef TBPTypeInfo<CPParseNodeType, CPSimpleTypeName> TypeInfo;
typedef TBPSymbolInfo<CPParseNodeType> Symbol;
typedef TBPSymbolTable<CPParseNodeType> SymbolTable;
typedef quernbase::QBArray<Symbol*> SymbolList;

// An inner node with an embedded type, as a language's tree base has one.
class TypedTestTree : public TestTree {
public:
    explicit TypedTestTree(int type) : TestTree(type) {}
    Node* clone() const override {
        TypedTestTree* copy = new (std::nothrow) TypedTestTree(type);
        if (copy) copy->typeInfo = typeInfo;
        return cloneInto(copy);
    }
    TypeInfo* getTypeInfo() override { return &typeInfo; }
    TypeInfo typeInfo;
};

// The tokens of text as the parser would see them (whitespace attached), each counted once.
TokenList lexTokens(const char* text, const char* fileName = "test.c");
// The lines of text, sorted: for dumps whose order follows hash buckets.
std::string sortedLines(const std::string& text);

// Names for the tests' node types; the rest as the framework names them.
const char* testTypeName(int type);

// The host's message file, as far as the tests need it: texts with %s0..%s9 parameters.
// -8000 "{file}({line},{col}) error {code}: ", -8015 the same with "warning", and a few
// message texts. The prefix is empty when the code parameter is "-8999".
void installTestMessages();
void removeTestMessages();
