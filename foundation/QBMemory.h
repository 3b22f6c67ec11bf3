// The heap every engine object lives on, and the class-level operators that send objects there.
#pragma once

#include <cstddef>
#include <malloc.h>
#include <new>

namespace quernbase {

// The host's allocator. numBytesAllocated reports the usable size of a block, which may exceed
// the size asked for; array capacity is derived from it.
class QBAllocator {
public:
    static void* allocate(size_t size);
    static void deallocate(void* block);
    // Inline: arrays ask it on every add.
    static size_t numBytesAllocated(const void* block) {
        return block ? malloc_usable_size(const_cast<void*>(block)) : 0;
    }

    // Fault injection for tests: the n-th allocation from now (1 = the next one) fails, and every
    // later one succeeds again. 0 turns it off. Gives what was left of the previous countdown, so
    // 0 after a countdown says that its failure happened.
    static unsigned failAllocationAfter(unsigned n);
    // Blocks allocated and not yet freed: a test sees that a round frees everything it made.
    static size_t liveBlocks();
};

// Base of every heap object in the engine: no state, and new/delete go to QBAllocator.
class QBMemory {
public:
    static void* operator new(size_t size);
    static void* operator new[](size_t size);
    static void operator delete(void* block) noexcept;
    static void operator delete[](void* block) noexcept;
    // The nothrow forms give null instead of throwing, so failed construction leaves null.
    static void* operator new(size_t size, const std::nothrow_t&) noexcept;
    static void* operator new[](size_t size, const std::nothrow_t&) noexcept;
    QBMemory& operator=(const QBMemory&) { return *this; }
};

}  // namespace quernbase

// The same heap with a C interface, for the file access layer.
extern "C" {
void* QBAllocate(size_t size);
void QBDeallocate(void* block);
void* QBReallocate(void* block, size_t size);
size_t QBAllocationSize(const void* block);
}
