// What every grammar routine is given: the token source, the table of declared names and the
// nesting guard; and the small steps the routines share.
//
// The discipline of a routine: it marks the source, and either rolls back and gives null, or
// commits (with the error flag on its node after a logged message and a recovery) and gives its
// node. Messages are logged on nodes only, so a rejected attempt leaves no trace.
#pragma once

#include <cstdint>

#include "CPParseTree.h"
#include "QBHashTable.h"
#include "QBString.h"

enum CPParseFlags : unsigned {
    CPPARSE_NO_TYPE_SPECIFIER = 0x1,
    CPPARSE_BUILTIN_TYPE_ONLY = 0x2,
    CPPARSE_DECL_SPECIFIERS = 0x4,
    CPPARSE_TYPE_SEEN = 0x8,
    CPPARSE_NO_TEMPLATE_ID = 0x10,
    CPPARSE_TEMPLATE_NAME_OK = 0x20,
    CPPARSE_CONVERSION_OK = 0x80,
    CPPARSE_DESTRUCTOR_OK = 0x100,
    CPPARSE_IN_STATEMENT = 0x200,
    CPPARSE_IN_CLASS = 0x400,
    CPPARSE_ASM_LABEL = 0x1000,
    CPPARSE_SINGLE_STATEMENT = 0x2000,
    CPPARSE_DESIGNATOR = 0x4000,
    CPPARSE_NAMED_PARAMETER_FIRST = 0x8000,
    CPPARSE_REJECT_VALUE_NAMES = 0x10000,
    CPPARSE_OPTIONAL = 0x100000,
    CPPARSE_NO_FUNCTION_DECLARATOR = 0x200000,
    CPPARSE_KEYWORD_NAMES = 0x400000,
    CPPARSE_ALL_KEYWORD_NAMES = 0x800000,
};

// The kinds noted in the declared-name table.
enum CPNameKind {
    CPNAME_VARIABLE = 2,
    CPNAME_CLASS = 8,
    CPNAME_UNION = 9,
    CPNAME_NAMESPACE = 10,
    CPNAME_TYPEDEF = 11,
    CPNAME_FUNCTION = 13,
    CPNAME_VALUE = 14,
    CPNAME_LABEL = 15,
    CPNAME_TEMPLATE_TEMPLATE = 19,
    CPNAME_ENUM = 21,
};

// Name to kind, one level for the whole file.
typedef quernbase::QBHashTable<quernbase::QBString, int> CPDeclaredNames;

// A fresh table as the grammar wants it: 89 buckets, hashed by the string hash.
inline unsigned cpHashName(quernbase::QBString name) { return quernbase::QBString::hashString(name); }

// Nesting beyond this many levels of statements, expressions or declarators is refused with a
// message, so that hostile input can't exhaust the stack.
enum { CPPARSE_MAX_DEPTH = 160 };

// Shared by a parse and the nested parses of token arrays that it runs.
struct CPParseBudget {
    unsigned depth = 0;
    uint64_t steps = 0;
    bool exhausted = false;
    CPTokenSource* mainSource = nullptr;
};

struct CPParseContext {
    CPTokenSource& source;
    CPDeclaredNames& names;
    CPParseBudget ownBudget;
    CPParseBudget& budget;

    CPParseContext(CPTokenSource& s, CPDeclaredNames& n) : source(s), names(n), budget(ownBudget) {
        budget.mainSource = &s;
    }
    // A parse of other tokens inside this one, under the same limits.
    CPParseContext(CPTokenSource& s, CPParseContext& outer)
        : source(s), names(outer.names), budget(outer.budget) {}

    CPParseNodeType type() { return source.currentType(); }
    CPParseNodeType peek(int n) { return source.peekType(n); }
    bool at(CPParseNodeType t) { return source.currentType() == t; }
    // The current token, counted by the node, and the source moves on.
    void take(CPParseTree* node) {
        node->addChild(source.currentToken());
        source.nextToken();
    }
    bool accept(CPParseTree* node, CPParseNodeType t) {
        if (!at(t)) return false;
        take(node);
        return true;
    }
    // The source's text of the current token, as messages quote it.
    quernbase::QBString currentText();

    void mark() { source.mark(); }
    CPParseTree* rollback(CPParseNode* node = nullptr) {
        cpFree(node);
        source.rollback();
        return nullptr;
    }
    template <class N> N* commit(N* node) {
        source.commit();
        return node;
    }
    // Logs code on node (at the current token), recovers, commits with the error flag.
    CPParseTree* fail(CPParseTree* node, int code, const quernbase::QBString& text);
    // After a message already logged on node: recovers and commits with the error flag.
    CPParseTree* bail(CPParseTree* node) {
        node->recover(source);
        source.commitWithError(node);
        return node;
    }
    // SyntaxError with the current token's text.
    CPParseTree* failHere(CPParseTree* node) { return fail(node, qbmsg::SyntaxError, currentText()); }
    // Requires a token: it is taken, or ExpectedToken with its spelling is logged. True when
    // taken.
    bool expect(CPParseTree* node, CPParseNodeType t);
    // ExpectedToken with t's spelling, then as fail.
    CPParseTree* failExpecting(CPParseTree* node, CPParseNodeType t);
    // Adds child, or logs SyntaxError when it is null. True when there was a child.
    bool require(CPParseTree* node, CPParseNode* child);
};

// Notes name with kind: a new name enters, a different non-zero kind turns it into 2.
void cpNoteName(CPDeclaredNames& names, const quernbase::QBString& name, int kind);
// Notes the name declared by node with kind, or with the node's own kind when kind is 0.
void cpNoteDeclared(CPParseContext& ctx, const CPParseTree* node, int kind);

// Guards one level of recursion. Past the depth limit, or when backtracking has spent far more
// steps than the input has tokens, the budget is exhausted and every guarded routine refuses at
// once from then on, so that unwinding stays cheap; the unit logs the failure.
class CPDepthGuard {
public:
    explicit CPDepthGuard(CPParseContext& c) : budget(c.budget) { ++budget.depth; }
    ~CPDepthGuard() { --budget.depth; }
    bool refused() {
        if (budget.exhausted) return true;
        ++budget.steps;
        uint64_t tokens = budget.mainSource ? budget.mainSource->getTokensRead() : 0;
        if (budget.depth > CPPARSE_MAX_DEPTH ||
            (budget.steps > 4000000 && budget.steps > 2000 * (tokens + 1)))
            budget.exhausted = true;
        return budget.exhausted;
    }

private:
    CPParseBudget& budget;
};

// Identifier-like by the label rule: IDENTIFIER, the keywords both name lists hold, __except
// and __finally.
bool cpIsLabelName(CPParseNodeType t);
// The keyword lists that may be names in C code, by flag.
bool cpIsNameKeyword(CPParseNodeType t, unsigned flags);
// The same lists as unqualified ids take them.
bool cpIsIdNameKeyword(CPParseNodeType t, unsigned flags);
bool cpIsBuiltinTypeKeyword(CPParseNodeType t);

// A shape: the children a node kind may have, written as a pattern of node, token and keyword
// names with ( | ) groups and the suffixes ? * +. Each family file has a table of them.
struct CPShapePattern {
    int type;
    const char* pattern;
};
extern const CPShapePattern cpDeclarationShapes[];
extern const CPShapePattern cpClassShapes[];
extern const CPShapePattern cpStatementShapes[];
extern const CPShapePattern cpExpressionShapes[];
// The number of names in the shape tables that name no kind (a fault of the tables).
int cpShapeProblems();
