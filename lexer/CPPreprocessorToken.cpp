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
