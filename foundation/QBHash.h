// Hash functions for the hash table instances.
#pragma once

namespace quernbase {

unsigned QBHashPointer(const void* p);
// Case-insensitive: names that differ only by case land in the same bucket.
unsigned QBHashBStringI(const char* text, unsigned length);

}  // namespace quernbase
