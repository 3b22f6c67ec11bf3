// One source text per file name for a whole transaction, so that every parser of it reads a
// header once. Names are compared byte for byte, as they were given.
#pragma once

#include "BPRefCountObject.h"
#include "BPSourceText.h"
#include "QBHashTable.h"

class BPSourceCache : public BPRefCountObject {
public:
    BPSourceCache();
    ~BPSourceCache() override;

    // The stored handle, or null.
    BPSourceHandle* find(const quernbase::QBString& name) const;
    // The stored handle; otherwise reads the file, stores it under name and returns it. status is
    // 0 for a stored entry, the read's status otherwise; a failed read stores nothing and gives
    // a null handle. kind 0 keeps the new record's default kind.
    BPSourceHandle getSource(const quernbase::QBString& name, int kind, int& status);
    int set(const quernbase::QBString& name, const BPSourceHandle& handle);
    // Copies of the names in bucket order, from new[]; null for none (see QBHashTable::keys).
    quernbase::QBString* keys() const { return table.keys(); }
    int count() const { return table.count(); }

private:
    quernbase::QBHashTable<quernbase::QBString, BPSourceHandle> table;
};
