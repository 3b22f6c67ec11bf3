#include "QBHash.h"

#include <cstdint>

#include "QBCharType.h"

namespace quernbase {

unsigned QBHashPointer(const void* p) {
    // Objects are aligned, so the low bits carry nothing; fold the high bits in.
    uintptr_t v = reinterpret_cast<uintptr_t>(p);
    v ^= v >> 33;
    v *= 0xff51afd7ed558ccdULL;
    v ^= v >> 29;
    return unsigned(v);
}

unsigned QBHashBStringI(const char* text, unsigned length) {
    const QBCharType& ct = QBCharType::getInstance();
    uint32_t h = 2166136261u;  // FNV-1a over the lower-cased bytes
    for (unsigned i = 0; i < length; ++i) {
        h ^= uint8_t(ct.toLowerAscii(text[i]));
        h *= 16777619u;
    }
    return h;
}

}  // namespace quernbase
