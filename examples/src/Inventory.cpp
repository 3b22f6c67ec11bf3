#include "Inventory.h"

namespace shop {

void Inventory::add(const Item& item) { items.push_back(item); }

int Inventory::total() const {
    int sum = 0;
    for (std::vector<Item>::size_type i = 0; i < items.size(); ++i) sum += items[i].count();
    return sum;
}

Item* Inventory::find(const std::string& name) {
    for (std::vector<Item>::size_type i = 0; i < items.size(); ++i)
        if (items[i].name() == name) return &items[i];
    return 0;
}

}  // namespace shop
