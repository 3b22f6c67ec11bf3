#include <cstdio>

#include "Inventory.h"
extern "C" {
#include "geometry.h"
}

int main() {
    shop::Inventory stock;
    stock.add(shop::Item("bolt", 40));
    stock.add(shop::Item("nut", 55));
    if (shop::Item* nut = stock.find("nut")) nut->take(5);
    Point origin = {0, 0}, corner = {3, 4};
    std::printf("%d items, corner at %.1f, circle %.2f\n", stock.total(),
                distance(origin, corner), circleArea(1.0));
    return 0;
}
