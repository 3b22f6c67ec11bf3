#include "CPPreprocessorToken.h"

void CPPreprocessorToken::removeOwner(CPPreprocessorFilter* node, bool all) {
    for (unsigned i = 0; i < owners.count();) {
        if (owners[i] != node) {
            ++i;
            continue;
        }
        owners.removeAt(i);
        if (!all) return;
    }
}

TBPParseNode<CPParseNodeType>* CPPreprocessorToken::clone() const {
    CPPreprocessorToken* copy = new (std::nothrow)
        CPPreprocessorToken(type, *getPosition(), getLength(), getFilePosition());
    if (!copy || copyInto(copy) != 0) {
        delete copy;
        return nullptr;
    }
    return copy;
}
