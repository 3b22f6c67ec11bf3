#include "QBMemory.h"

#include <cstdlib>
#include <new>

namespace quernbase {

namespace {
unsigned failCountdown = 0;
size_t live = 0;

bool injectedFailure() {
    if (failCountdown == 0) return false;
    return --failCountdown == 0;
}
}  // namespace

void* QBAllocator::allocate(size_t size) {
    if (injectedFailure()) return nullptr;
    void* block = std::malloc(size ? size : 1);
    if (block) ++live;
    return block;
}

void QBAllocator::deallocate(void* block) {
    if (block) --live;
    std::free(block);
}

unsigned QBAllocator::failAllocationAfter(unsigned n) {
    unsigned left = failCountdown;
    failCountdown = n;
    return left;
}

size_t QBAllocator::liveBlocks() { return live; }

void* QBMemory::operator new(size_t size) {
    void* p = QBAllocator::allocate(size);
    if (!p) throw std::bad_alloc();
    return p;
}

void* QBMemory::operator new[](size_t size) { return operator new(size); }

void* QBMemory::operator new(size_t size, const std::nothrow_t&) noexcept {
    return QBAllocator::allocate(size);
}

void* QBMemory::operator new[](size_t size, const std::nothrow_t&) noexcept {
    return QBAllocator::allocate(size);
}

void QBMemory::operator delete(void* block) noexcept { QBAllocator::deallocate(block); }
void QBMemory::operator delete[](void* block) noexcept { QBAllocator::deallocate(block); }

}  // namespace quernbase

extern "C" {
void* QBAllocate(size_t size) { return quernbase::QBAllocator::allocate(size); }
void QBDeallocate(void* block) { quernbase::QBAllocator::deallocate(block); }
void* QBReallocate(void* block, size_t size) {
    if (!block) return QBAllocate(size);
    return std::realloc(block, size ? size : 1);
}
size_t QBAllocationSize(const void* block) {
    return quernbase::QBAllocator::numBytesAllocated(block);
}
}
