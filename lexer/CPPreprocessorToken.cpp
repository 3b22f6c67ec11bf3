#include "CPPreprocessorToken.h"

void CPPreprocessorToken::removeOwner(CPPreprocessorFilter* node, bool all) {
    if (!node) return;
    bool removed = false;
    do {
        removed = removeOneOwner(node);
    } while (removed && all);
}

// Output trees take and let go of owners first-in-first-out or last-in-first-out: both ends
// are tried before a scan.
bool CPPreprocessorToken::removeOneOwner(CPPreprocessorFilter* node) {
    unsigned n = owners.count();
    if (firstLive < n && owners[firstLive] == node) {
        clearOwnerAt(firstLive);
    } else if (n > firstLive && owners[n - 1] == node) {
        owners.removeAt(n - 1);
        while (owners.count() > firstLive && !owners[owners.count() - 1]) {
            owners.removeAt(owners.count() - 1);
            --deadOwners;
        }
    } else {
        unsigned i = firstLive;
        while (i < n && owners[i] != node) ++i;
        if (i == n) return false;
        clearOwnerAt(i);
    }
    if (deadOwners > 8 && deadOwners * 2 > owners.count()) compactOwners();
    return true;
}

void CPPreprocessorToken::clearOwnerAt(unsigned i) {
    owners[i] = nullptr;
    ++deadOwners;
    while (firstLive < owners.count() && !owners[firstLive]) ++firstLive;
}

void CPPreprocessorToken::compactOwners() {
    unsigned kept = 0;
    for (unsigned i = 0; i < owners.count(); ++i)
        if (owners[i]) owners[kept++] = owners[i];
    while (owners.count() > kept) owners.removeAt(owners.count() - 1);
    deadOwners = 0;
    firstLive = 0;
}

CPPreprocessorFilter* CPPreprocessorToken::getOwner(unsigned i) const {
    for (unsigned k = firstLive; k < owners.count(); ++k) {
        if (!owners[k]) continue;
        if (i-- == 0) return owners[k];
    }
    return nullptr;
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
