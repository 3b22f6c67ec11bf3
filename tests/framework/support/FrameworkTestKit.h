// Shared pieces of the framework tests: draining a token stream back into text, holding tokens,
// a tree class with grammar rules, and a stand-in for the host's message file.
#pragma once

#include <string>

#include "CPParseNodeType.h"
#include "TBPParseTree.h"
#include "TBPTokenSource.h"

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

// Names for the tests' node types; the rest as the framework names them.
const char* testTypeName(int type);

// The host's message file, as far as the tests need it: texts with %s0..%s9 parameters.
// -8000 "{file}({line},{col}) error {code}: ", -8015 the same with "warning", and a few
// message texts. The prefix is empty when the code parameter is "-8999".
void installTestMessages();
void removeTestMessages();
