#include "BPSourceCache.h"

using quernbase::QBString;

BPSourceCache::BPSourceCache() : table(QBString::hashString) {}

BPSourceCache::~BPSourceCache() = default;

BPSourceHandle* BPSourceCache::find(const QBString& name) const { return table.find(name); }

BPSourceHandle BPSourceCache::getSource(const QBString& name, int kind, int& status) {
    if (BPSourceHandle* stored = table.find(name)) {
        status = 0;
        return *stored;
    }
    BPSourceHandle handle;
    status = handle.makePrivate();
    if (status < 0) return BPSourceHandle();
    if (kind != 0) handle->kind = kind;
    status = handle.load(name);
    if (status < 0) return BPSourceHandle();
    status = table.set(name, handle);
    if (status < 0) return BPSourceHandle();
    return *table.find(name);
}

int BPSourceCache::set(const QBString& name, const BPSourceHandle& handle) {
    return table.set(name, handle);
}
