// The token the C and C++ lexer makes: a plain token that also knows every preprocessor node
// holding it as a leaf, since macro bodies and arguments put the same token object into each
// expansion. The owners are not counted: a node takes itself out when it dies.
#pragma once

#include "CPParseNodeType.h"
#include "QBArray.h"
#include "TBPToken.h"

class CPPreprocessorFilter;
class CPPreprocessorUnit;

class CPPreprocessorToken : public TBPToken<CPParseNodeType> {
public:
    typedef TBPToken<CPParseNodeType> Token;

    CPPreprocessorToken(CPParseNodeType type, const BPSourcePosition& position, uint32_t length,
                        const BPSourcePosition& filePosition)
        : Token(type, position, length, filePosition) {}

    // A copy has the text, place and (cloned) whitespace, never the owners: it stands nowhere yet.
    Node* clone() const override;

    int addOwner(CPPreprocessorFilter* node) { return owners.add(node); }
    // Removes the first entry that is node, or every one when all is set.
    void removeOwner(CPPreprocessorFilter* node, bool all);
    unsigned getOwnerCount() const { return owners.count() - deadOwners; }
    // The i-th owner in order, or null.
    CPPreprocessorFilter* getOwner(unsigned i) const;
    // The file this token belongs to: asked of the parent, then of each owner in order. Defined
    // with the node family it walks (preprocessor layer).
    virtual CPPreprocessorUnit* getOwningUnit();

    // The token under a lexer token, if it is one.
    static CPPreprocessorToken* from(Node* node) {
        return node && node->isToken() ? dynamic_cast<CPPreprocessorToken*>(node) : nullptr;
    }

private:
    // A token of a macro body stands in every expansion, tens of thousands for nested macros,
    // and an output tree lets go of its owners in the order it took them. So a removal only
    // clears its slot; firstLive skips the cleared front, and the list is compacted, in order,
    // once most of it is dead.
    quernbase::QBArray<CPPreprocessorFilter*> owners;
    unsigned deadOwners = 0;
    unsigned firstLive = 0;

    bool removeOneOwner(CPPreprocessorFilter* node);
    void clearOwnerAt(unsigned i);
    void compactOwners();
};
