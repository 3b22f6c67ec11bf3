// QBIterator: an exported value class kept for the host's file layer; the engine uses none.
#pragma once

#include <cstdint>

#include "QBArray.h"
#include "QBMessageCodes.h"

namespace quernbase {

class QBIterator {
public:

    QBIterator() { reset(); }
    void reset() {
        state = 1;
        position = 0;
        subPosition = 0;
    }

    int pushStack();
    int popStack();
    int copyStack(const QBIterator& other);
    void clearStack() { stack.clear(); }
    unsigned stackDepth() const { return stack.count(); }

    uint32_t state;
    int64_t position;
    int64_t subPosition;

private:
    struct Saved {
        uint32_t state;
        int64_t position;
        int64_t subPosition;
    };
    QBArray<Saved> stack;
};

}  // namespace quernbase
