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
    unsigned getOwnerCount() const { return owners.count(); }
    CPPreprocessorFilter* getOwner(unsigned i) const { return i < owners.count() ? owners[i] : nullptr; }
    // The file this token belongs to: asked of the parent, then of each owner in order. Defined
    // with the node family it walks (preprocessor layer).
    virtual CPPreprocessorUnit* getOwningUnit();

    // The token under a lexer token, if it is one.
    static CPPreprocessorToken* from(Node* node) {
        return node && node->isToken() ? dynamic_cast<CPPreprocessorToken*>(node) : nullptr;
    }

private:
    quernbase::QBArray<CPPreprocessorFilter*> owners;
};
