// A small stock list of named items.
#pragma once

#include <string>
#include <vector>

namespace shop {

class Item {
public:
    Item(const std::string& name, int count) : name_(name), count_(count) {}
    const std::string& name() const { return name_; }
    int count() const { return count_; }
    void take(int n) { count_ -= n; }

private:
    std::string name_;
    int count_;
};

class Inventory {
public:
    void add(const Item& item);
    int total() const;
    Item* find(const std::string& name);

private:
    std::vector<Item> items;
};

}  // namespace shop
