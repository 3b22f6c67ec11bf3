// CPPreprocessorFilter: the base of both preprocessor trees.
//
// The source tree is the file as written: each directive, text run and macro call is a node, and
// every token (the `#` too) is a leaf, so that the tree prints back as the file. The output tree
// is what running the source tree produced; its leaves are the very token objects of the source
// tree and of macro bodies, so one token may stand in many places. Each token therefore keeps a
// list of the filter nodes that hold it (its owners, not counted), and every filter node keeps
// that list right in addChild, insertChild, replaceChild, removeChildren and its destructor.
// They override the node's virtual child operations; the framework's plain TBPParseTree
// versions know nothing of owners, so never change a filter node's children through those.
//
// An output node points at the source node that produced it through `origin` (not counted);
// getWrittenToken follows that link back to the token the user wrote.
#pragma once

#include "CPPreprocessorToken.h"
#include "CPParseTree.h"
#include "QBMessageCodes.h"

class CPPreprocessor;
class CPPreprocessorMacro;
class CPPreprocessorUnit;

// Groups and calls nest by recursion, in reading and in running; past this depth a construct
// is kept as plain tokens with an error, so that hostile input can't exhaust the stack.
enum { CPPP_MAX_NESTING = 200 };

// The kinds a name can have in a directive or text run: IDENTIFIER, every keyword, and the
// directive words (but not `defined`).
bool cpIsIdentifierLike(int kind);
// __cplusplus to __TIMESTAMP__.
bool cpIsBuiltinKind(int kind);

class CPPreprocessorFilter : public CPParseTree {
public:
    typedef TBPParseNode<CPParseNodeType> Node;
    typedef TBPToken<CPParseNodeType> Token;

    CPPreprocessorFilter() : CPParseTree(CPN_PreprocessorFilter) {}
    ~CPPreprocessorFilter() override;

    // The node interface.
    Node* clone() const override;
    bool isKindOf(CPParseNodeType kind) const override;
    int validate() override;
    int printToString(quernbase::QBString& out, int indent, bool showWhitespace) override;
    void setModified() override;
    bool isPreprocessorNode() const override { return true; }

    // What this source node produces, appended to target (see the file comment of
    // CPPreprocessor.cpp). The default copies leaves and runs the other children.
    virtual int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                           CPPreprocessorMacro* call, int depth);
    virtual CPPreprocessorUnit* getOwningUnit();
    // The token in the written text that stands for child (a leaf or subtree at index).
    virtual Token* getWrittenToken(Node* child, unsigned index);
    // Takes a node without leaves out of the output, and its origin's children with it.
    virtual void pruneIfEmpty();

    // Children, keeping each leaf's owners.
    int addChild(Node* node) { return insertChild(getChildCount(), node); }
    int insertChild(unsigned index, Node* node);
    int insertChild(unsigned index, Node* node, bool after) override {
        return insertChild(after ? index + 1 : index, node);
    }
    int replaceChild(unsigned index, Node* node) override;
    int replaceChildren(unsigned index, unsigned count, Node* node) override;
    int removeChildren(unsigned start, unsigned count);
    int reserveChildren(unsigned n) { return children.setCapacity(n); }
    // Empties leaf slots from start on (into subtrees), then prunes. Nothing inside a define.
    int removeTokens(unsigned start, unsigned count) override;
    bool isInDefine() const;

    CPPreprocessorFilter* getOrigin() const { return origin; }
    void setOrigin(CPPreprocessorFilter* node) { origin = node; }
    // Filter node under a plain node pointer, or null.
    static CPPreprocessorFilter* from(Node* node) {
        return node && node->isTree() ? dynamic_cast<CPPreprocessorFilter*>(node) : nullptr;
    }
    CPPreprocessorFilter* getFilterParent() const { return from(parent); }
    CPPreprocessorFilter* getFilterChild(unsigned i) const { return from(getChild(i)); }

protected:
    CPPreprocessorFilter* origin = nullptr;

    explicit CPPreprocessorFilter(CPParseNodeType kind) : CPParseTree(kind) {}
    // A new empty node of this object's class, for clone.
    virtual CPPreprocessorFilter* makeEmptyCopy() const;
    // The children's output in order: leaves copied, nodes run with childDepth.
    int preprocessChildren(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                           CPPreprocessorMacro* call, int childDepth);
    // Adds a fresh token run with the given origin to target and gives it; target itself when
    // flat. Null when memory runs out.
    static CPPreprocessorFilter* wrapTarget(CPPreprocessorFilter* target, bool flat,
                                            CPPreprocessorFilter* origin, unsigned reserve);
    static bool isCancelled(CPPreprocessor* pp);
    static int firstNegative(int kept, int rc) { return rc < 0 && kept >= 0 ? rc : kept; }

private:
    void ownLeaf(Node* node);
    void disownLeaf(Node* node);
    // Drops this node from the owners of leaves in the range and frees subtrees of it.
    void unhookChildren(unsigned start, unsigned count);
    Token* findWrittenIndex(Node* child, unsigned index, int& found);
};

// Declares the constructors and copy maker of a node class.
#define CP_PREPROCESSOR_NODE(Class, Base, Kind)                                      \
public:                                                                             \
    Class() : Base(Kind) {}                                                         \
                                                                                    \
protected:                                                                          \
    explicit Class(CPParseNodeType kind) : Base(kind) {}                            \
    CPPreprocessorFilter* makeEmptyCopy() const override {                          \
        return new (std::nothrow) Class(this->type);                                \
    }                                                                               \
                                                                                    \
public:

// The node kinds' bases and child patterns: one table for the whole family.
struct CPPreprocessorKindInfo {
    CPParseNodeType kind;
    CPParseNodeType base;  // CPT_NULL for the family's root
    const TBPValidationRule<CPParseNodeType>* rules;  // null: any children
};
const CPPreprocessorKindInfo* cpPreprocessorKindInfo(int kind);
