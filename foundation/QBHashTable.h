// QBHashTable<K, V>: open hashing with chained nodes, 89 buckets to start.
//
// The rehash rule is deliberately eager: collisions only ever grow across rehashes, so once a
// table has started to rehash it stays ready to do it again. keys() enumerates in bucket order,
// which is the order in which file lists reach the host.
#pragma once

#include <cstring>
#include <new>

#include "QBMemory.h"
#include "QBMessageCodes.h"

namespace quernbase {

template <class K, class V>
class QBHashTable {
public:
    typedef unsigned (*HashFunction)(K key);
    typedef int (*EqualFunction)(K a, K b);  // 0 means equal
    enum { INITIAL_SIZE = 89, ERR_ABSENT = -2 };

    explicit QBHashTable(HashFunction hash, EqualFunction equal = nullptr)
        : buckets(nullptr), itemCount(0), collisions(0), bucketCount(0), equal(equal),
          unused(nullptr), hash(hash) {
        allocateBuckets();
    }
    QBHashTable(const QBHashTable&) = delete;
    QBHashTable& operator=(const QBHashTable&) = delete;
    ~QBHashTable() { clear(true); }

    int count() const { return itemCount; }
    int getCollisions() const { return collisions; }
    int getBucketCount() const { return bucketCount; }

    V* find(const K& key) const {
        Node* n = findNode(key);
        return n ? &n->value : nullptr;
    }
    bool contains(const K& key) const { return findNode(key) != nullptr; }

    int set(const K& key, const V& value) {
        if (!buckets && allocateBuckets() != 0) return qbmsg::OutOfMemory;
        if (collisions > bucketCount / 2 && itemCount > bucketCount) {
            if (int rc = rehash(0)) return rc;
        }
        Node*& head = buckets[bucketOf(key)];
        for (Node* n = head; n; n = n->next) {
            if (!matches(n->key, key)) continue;
            n->value = value;
            n->key = key;  // a QBString key takes the new body
            return 0;
        }
        Node* node = new (std::nothrow) Node{key, value, head};
        if (!node) return qbmsg::OutOfMemory;
        if (head) ++collisions;
        head = node;
        ++itemCount;
        return 0;
    }

    int remove(const K& key) {
        if (itemCount == 0) return 0;
        if (!buckets) return ERR_ABSENT;
        Node** link = &buckets[bucketOf(key)];
        bool chainHadSuccessor = *link && (*link)->next;
        for (; *link; link = &(*link)->next) {
            if (!matches((*link)->key, key)) continue;
            Node* dead = *link;
            *link = dead->next;
            delete dead;
            --itemCount;
            if (chainHadSuccessor) --collisions;
            return 0;
        }
        return ERR_ABSENT;
    }

    // A size of 0 or less means 2 * bucketCount + 1.
    int rehash(int size) {
        if (size <= 0) size = 2 * bucketCount + 1;
        Node** fresh = allocateArray(size);
        if (!fresh) return qbmsg::OutOfMemory;
        for (int b = 0; b < bucketCount; ++b) {
            for (Node* n = buckets[b]; n;) {
                Node* next = n->next;
                Node*& head = fresh[hash(n->key) % unsigned(size)];
                if (head) ++collisions;
                n->next = head;
                head = n;
                n = next;
            }
        }
        QBAllocator::deallocate(buckets);
        buckets = fresh;
        bucketCount = size;
        return 0;
    }

    // Copies of the keys in bucket order, from new[]; the caller deletes with delete[].
    // Null for an empty table or when memory runs out.
    K* keys() const {
        if (itemCount <= 0) return nullptr;
        K* out = new (std::nothrow) K[size_t(itemCount)];
        if (!out) return nullptr;
        int i = 0;
        forEach([&](const K& k, const V&) {
            if (i < itemCount) out[i++] = k;
        });
        return out;
    }

    // Visits entries in bucket order, each chain from head to tail.
    template <class F>
    void forEach(F&& visit) const {
        for (int b = 0; b < bucketCount; ++b)
            for (Node* n = buckets[b]; n; n = n->next) visit(n->key, n->value);
    }

    void clear(bool freeBuckets) {
        for (int b = 0; b < bucketCount; ++b) {
            for (Node* n = buckets[b]; n;) {
                Node* next = n->next;
                delete n;
                n = next;
            }
            buckets[b] = nullptr;
        }
        itemCount = 0;
        collisions = 0;
        if (freeBuckets) {
            QBAllocator::deallocate(buckets);
            buckets = nullptr;
            bucketCount = 0;
        }
    }

private:
    struct Node : QBMemory {
        Node(const K& k, const V& v, Node* n) : key(k), value(v), next(n) {}
        K key;
        V value;
        Node* next;
    };

    Node** buckets;
    int itemCount;
    int collisions;
    int bucketCount;
    EqualFunction equal;
    void (*unused)();  // kept for layout: no instance fills it
    HashFunction hash;

    static Node** allocateArray(int size) {
        size_t bytes = sizeof(Node*) * size_t(size);
        void* mem = QBAllocator::allocate(bytes);
        if (mem) std::memset(mem, 0, bytes);
        return static_cast<Node**>(mem);
    }
    int allocateBuckets() {
        buckets = allocateArray(INITIAL_SIZE);
        bucketCount = buckets ? int(INITIAL_SIZE) : 0;
        return buckets ? 0 : qbmsg::OutOfMemory;
    }
    unsigned bucketOf(const K& key) const { return hash(key) % unsigned(bucketCount); }
    bool matches(const K& stored, const K& key) const {
        return equal ? equal(stored, key) == 0 : stored == key;
    }
    Node* findNode(const K& key) const {
        if (!buckets || itemCount == 0) return nullptr;
        for (Node* n = buckets[bucketOf(key)]; n; n = n->next)
            if (matches(n->key, key)) return n;
        return nullptr;
    }
};

}  // namespace quernbase
