#include "Inventory.h"

namespace shop {

void Inventory::add(const Item& item) { items.push_back(item); }

int Inventory::total() const {
    int sum = 0;
    for (const Item& item : items) sum += item.count();
    return sum;
}

Item* Inventory::find(const std::string& name) {
    for (Item& item : items)
        if (item.name() == name) return &item;
    return nullptr;
}

}  // namespace shop
