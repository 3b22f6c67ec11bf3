// QBArray<T>: one pointer, null while it holds nothing. The block behind it holds the compare
// function, the count, then the items; its capacity is not stored but derived from the
// allocator's usable size. Every slot, used or not, is zero-filled or a constructed item, so
// free slots of a QBArray<QBString> hold null strings and items move bitwise when the block grows.
#pragma once

#include <cstdint>
#include <cstring>
#include <new>

#include "QBMemory.h"
#include "QBMessageCodes.h"

namespace quernbase {

template <class T>
class QBArray {
public:
    typedef int (*CompareFunction)(const T& a, const T& b);

    QBArray() : block(nullptr) {}
    explicit QBArray(CompareFunction compare) : block(nullptr) {
        if (compare && reserve(1) == 0) block->compare = compare;
    }
    QBArray(const QBArray& other) : block(nullptr) { *this = other; }
    ~QBArray() { destroyBlock(); }

    QBArray& operator=(const QBArray& other) {
        if (this == &other) return *this;
        if (!other.block) {
            if (block) {
                clearItems();
                block->compare = nullptr;
            }
            return *this;
        }
        if (reserve(other.count() ? other.count() : 1) != 0) return *this;
        for (unsigned i = 0; i < other.count(); ++i) items()[i] = other[i];
        block->count = other.count();
        block->compare = other.block->compare;
        return *this;
    }

    bool isNull() const { return block == nullptr; }
    unsigned count() const { return block ? block->count : 0; }
    unsigned capacity() const { return block ? capacityOf(block) : 0; }
    CompareFunction getCompare() const { return block ? block->compare : nullptr; }
    // Needs a block to live in, so it may allocate; OutOfMemory if that fails.
    int setCompare(CompareFunction compare) {
        if (!block && reserve(1) != 0) return qbmsg::OutOfMemory;
        block->compare = compare;
        return 0;
    }

    const T& operator[](unsigned i) const { return items()[i]; }
    T& operator[](unsigned i) { return items()[i]; }
    T* begin() { return block ? items() : nullptr; }
    T* end() { return block ? items() + block->count : nullptr; }
    const T* begin() const { return block ? items() : nullptr; }
    const T* end() const { return block ? items() + block->count : nullptr; }

    int setCapacity(unsigned n) { return reserve(n); }

    int add(const T& item) {
        T copy(item);  // item may live in this array's block, which may move
        if (int rc = reserve(count() + 1)) return rc;
        items()[block->count++] = copy;
        return 0;
    }

    int insertAt(unsigned index, const T& item) {
        T copy(item);
        if (int rc = reserve(count() + 1)) return rc;
        unsigned n = block->count;
        if (index > n) index = n;
        for (unsigned i = n; i > index; --i) items()[i] = items()[i - 1];
        items()[index] = copy;
        block->count = n + 1;
        return 0;
    }

    // Walks from the end towards the front; an equal item stays in front of the new one.
    int insertSorted(const T& item) {
        T copy(item);
        if (int rc = reserve(count() + 1)) return rc;
        unsigned i = block->count;
        while (i > 0 && sortsBefore(copy, items()[i - 1])) {
            items()[i] = items()[i - 1];
            --i;
        }
        items()[i] = copy;
        ++block->count;
        return 0;
    }

    // With a compare function the key is passed first; without, items must be bitwise the same.
    int find(const T& key) const {
        if (!block) return -1;
        for (unsigned i = 0; i < block->count; ++i) {
            if (block->compare ? block->compare(key, items()[i]) == 0
                               : std::memcmp(static_cast<const void*>(&key),
                                             static_cast<const void*>(&items()[i]),
                                             sizeof(T)) == 0)
                return int(i);
        }
        return -1;
    }

    // The shift is by assignment; the vacated last slot keeps its old value.
    int removeAt(unsigned index) {
        if (!block || index >= block->count) return -1;
        for (unsigned i = index; i + 1 < block->count; ++i) items()[i] = items()[i + 1];
        --block->count;
        return 0;
    }

    // Empties the array, keeping the block and the compare function.
    void clear() { clearItems(); }

private:
    struct Header {
        CompareFunction compare;
        uint32_t count;
    };
    static constexpr size_t itemsOffset() {
        return (sizeof(Header) + alignof(T) - 1) / alignof(T) * alignof(T);
    }

    Header* block;

    T* items() const {
        return reinterpret_cast<T*>(reinterpret_cast<char*>(block) + itemsOffset());
    }
    static unsigned capacityOf(const Header* b) {
        return unsigned((QBAllocator::numBytesAllocated(b) - itemsOffset()) / sizeof(T));
    }

    bool sortsBefore(const T& a, const T& b) const {
        if (block->compare) return block->compare(a, b) < 0;
        // Without compare, items are ordered as unsigned words.
        uintptr_t wa = 0, wb = 0;
        const size_t n = sizeof(T) < sizeof wa ? sizeof(T) : sizeof wa;
        std::memcpy(&wa, static_cast<const void*>(&a), n);
        std::memcpy(&wb, static_cast<const void*>(&b), n);
        return wa < wb;
    }

    int reserve(unsigned n) {
        unsigned cap = capacity();
        if (n <= cap) return 0;
        unsigned cnt = count();
        unsigned newCap = 2 * cnt > n ? 2 * cnt : n + 1;
        size_t bytes = itemsOffset() + size_t(newCap) * sizeof(T);
        void* mem = QBAllocator::allocate(bytes);
        if (!mem) return qbmsg::OutOfMemory;
        std::memset(mem, 0, QBAllocator::numBytesAllocated(mem));
        Header* fresh = static_cast<Header*>(mem);
        if (block) {
            fresh->compare = block->compare;
            fresh->count = block->count;
            std::memcpy(static_cast<void*>(reinterpret_cast<char*>(fresh) + itemsOffset()),
                        static_cast<const void*>(items()), size_t(cap) * sizeof(T));
            QBAllocator::deallocate(block);
        }
        block = fresh;
        return 0;
    }

    void clearItems() {
        if (!block) return;
        for (unsigned i = 0; i < block->count; ++i) items()[i] = T();
        block->count = 0;
    }

    void destroyBlock() {
        if (!block) return;
        unsigned cap = capacityOf(block);
        for (unsigned i = 0; i < cap; ++i) items()[i].~T();
        QBAllocator::deallocate(block);
        block = nullptr;
    }
};

}  // namespace quernbase
