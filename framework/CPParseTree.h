// CPParseTree: the base of every C and C++ tree node, preprocessor nodes included.
//
// It adds to the framework's tree the operations that analysis and the refactorings call on any
// node. Those whose meaning belongs to name lookup, typing or rewriting answer here with their
// plain base behaviour (no symbol, no type, nothing to do); the classes that know better
// override them. The grammar itself uses recover, recoverTo, isSyncToken, the declared-name
// queries and validate, whose shape tables are looked up by node number.
#pragma once

#include <cstdint>

#include "CPParseNodeType.h"
#include "CPTypeInfo.h"
#include "QBArray.h"
#include "QBString.h"
#include "TBPParseTree.h"
#include "TBPTokenSource.h"

class CPSymbolInfo;

typedef TBPTokenSource<CPParseNodeType> CPTokenSource;
typedef TBPToken<CPParseNodeType> CPToken;
typedef TBPParseNode<CPParseNodeType> CPParseNode;
typedef TBPValidationRule<CPParseNodeType> CPShapeRule;

class CPParseTree : public TBPParseTree<CPParseNodeType> {
public:
    explicit CPParseTree(CPParseNodeType nodeType) : TBPParseTree<CPParseNodeType>(nodeType) {}

    Node* clone() const override { return cloneInto(new (std::nothrow) CPParseTree(this->type)); }
    // Compares the children with the shape of this node's kind.
    int validate() override;

    // The operations every node answers, in their fixed order.
    virtual bool isPreprocessorNode() const { return false; }
    virtual int analyze(CPParseTree* context = nullptr, unsigned flags = 0);
    virtual void setAssignedTo(bool) {}
    virtual CPSymbolInfo* findSymbol(const quernbase::QBString& name, CPParseTree* requester,
                                     unsigned flags, quernbase::QBArray<CPParseTree*>* arguments,
                                     int kind, int* errorOut, CPParseTree** conversionNode);
    virtual int findMembersWithPrefix(const quernbase::QBString& prefix,
                                      quernbase::QBArray<CPSymbolInfo*>& out);
    virtual CPSymbolInfo* findSymbolByPath(const quernbase::QBString& path);
    virtual CPSymbolInfo* findSymbolAtPosition(const quernbase::QBString& name,
                                               const quernbase::QBString& file,
                                               uint32_t beginSeek, uint32_t endSeek);
    virtual CPSymbolInfo* findSymbolInFile(const quernbase::QBString& name,
                                           const quernbase::QBString& file, uint32_t seek);
    // Skips to the first synchronising token, keeping every skipped token as a child.
    // -1 when the end of the input came first (logged as UnexpectedEndOfFile).
    virtual int recover(CPTokenSource& source);
    // Skips, keeping the tokens, up to a token of type; with keep that token is taken too.
    virtual int recoverTo(CPTokenSource& source, CPParseNodeType stopType, bool keep);
    virtual int getDeclaredName(quernbase::QBString& out) const;
    virtual CPParseNode* getDeclaredNameNode() const { return nullptr; }
    virtual CPParseTree* getDeclaredQualifier(bool& flag) const {
        flag = false;
        return nullptr;
    }
    virtual int getSpelledName(quernbase::QBString& out) const { return out.makeEmpty(); }
    virtual bool isSyncToken(CPParseNodeType tokenType) const;
    // The type analysis records for this node, embedded in every node.
    CPTypeInfo* getTypeInfo() override { return &typeInfo; }
    virtual CPParseTree* getTypeNode() { return nullptr; }
    virtual CPTypeInfo* getValueType() { return nullptr; }
    virtual int askLastLeaf() { return 0; }
    virtual int askFirstLeaf(CPParseNode*) { return 0; }
    virtual int findChildOfType(CPParseNodeType childType, int start) const {
        return TBPParseNode<CPParseNodeType>::findChildOfType(childType, start);
    }
    virtual int visitMacroLeaves(bool) { return 0; }
    virtual int removeTokens(unsigned start, unsigned count) { return removeChildren(start, count); }
    virtual int replaceChild(unsigned index, CPParseNode* node) {
        return replaceChildren(index, 1, node);
    }
    virtual int replaceChildren(unsigned index, unsigned count, CPParseNode* node);
    virtual int insertChild(unsigned index, CPParseNode* node, bool after) {
        return TBPParseTree<CPParseNodeType>::insertChild(after ? index + 1 : index, node);
    }
    virtual int insertBefore(CPParseNode* node) { return insertBeside(node, false); }
    virtual int insertAfter(CPParseNode* node) { return insertBeside(node, true); }
    virtual int requireType() { return 0; }

    // The kind under which the name this node declares is noted while parsing (2 for a plain
    // declarator); 0 when it declares nothing.
    virtual int getDeclaratorKind() const { return 0; }

    using TBPParseTree<CPParseNodeType>::insertChild;
    using TBPParseTree<CPParseNodeType>::getType;

protected:
    // On the parent, next to this node.
    int insertBeside(CPParseNode* node, bool after);
    // A message at a token that came out of a macro also notes where the user wrote it (the
    // call site, for the first token of an expansion).
    int noteWrittenPlace(CPToken* leaf) override;

    // Not copied by clone: a cloned subtree is analysed anew.
    CPTypeInfo typeInfo;
};

// The node types a shape names, for a node kind; null for a kind without a shape. The table
// belongs to the grammar, which defines it with CPParseTree::validate.
const CPShapeRule* cpShapeOf(int nodeType);
// Where recovery stops: tokens that begin or end a declaration or a statement.
bool cpIsSyncToken(CPParseNodeType t);

// Frees a node that nothing holds (count 0); null is fine.
inline void cpFree(CPParseNode* node) {
    if (!node) return;
    node->addRef();
    node->release();
}

// Declares a node class of a family: CP + print name, made with its number, cloned as itself.
#define CP_DECLARE_NODE(Class, Base, number)                                                 \
    class Class : public Base {                                                              \
    public:                                                                                  \
        Class() : Base(number) {}                                                            \
        explicit Class(CPParseNodeType nodeType) : Base(nodeType) {}                         \
        Node* clone() const override { return cloneInto(new (std::nothrow) Class(this->type)); } \
    };

// Declares a family base: a class that answers isKindOf for its family number.
#define CP_DECLARE_FAMILY(Class, Base, number)                                               \
    class Class : public Base {                                                              \
    public:                                                                                  \
        explicit Class(CPParseNodeType nodeType = number) : Base(nodeType) {}                \
        Node* clone() const override { return cloneInto(new (std::nothrow) Class(this->type)); } \
        bool isKindOf(CPParseNodeType t) const override { return t == number || Base::isKindOf(t); } \
    };
