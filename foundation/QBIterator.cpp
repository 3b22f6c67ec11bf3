#include "QBIterator.h"

namespace quernbase {

int QBIterator::pushStack() {
    return stack.add(Saved{state, position, subPosition}) ? int(qbmsg::OutOfMemory) : 0;
}

int QBIterator::popStack() {
    unsigned n = stack.count();
    if (n == 0) return qbmsg::InvalidArgument;
    const Saved& s = stack[n - 1];
    state = s.state;
    position = s.position;
    subPosition = s.subPosition;
    stack.removeAt(n - 1);
    return 0;
}

int QBIterator::copyStack(const QBIterator& other) {
    stack = other.stack;
    return stack.count() == other.stack.count() ? 0 : int(qbmsg::OutOfMemory);
}

}  // namespace quernbase
