// Intrusive, non-atomic reference count. Holders take and drop references by explicit calls;
// there is no smart pointer class in the engine.
#pragma once

#include "QBMemory.h"

class BPRefCountObject : public quernbase::QBMemory {
public:
    BPRefCountObject() = default;
    BPRefCountObject(const BPRefCountObject&) : refCount(0) {}
    BPRefCountObject& operator=(const BPRefCountObject&) { return *this; }
    virtual ~BPRefCountObject() = default;

    void addRef() { ++refCount; }
    // Deletes the object when the last reference goes.
    void release() {
        if (refCount-- == 1) delete this;
    }
    int getRefCount() const { return refCount; }

    // Replaces a stored reference: the old value is released, the new one taken if not null.
    template <class T>
    static void assign(T*& slot, T* value) {
        if (slot == value) return;
        if (value) value->addRef();
        T* old = slot;
        slot = value;
        if (old) old->release();
    }

protected:
    int refCount = 0;
};
