// The environment as the process sees it. Weak, so that a provider that keeps an environment of
// its own (an editor session does) takes precedence when linked into the same library.
#include <cstdlib>

#include "qbapi.h"

__attribute__((weak)) quernbase::QBString qbpsGetEnv(const char* name) {
    const char* value = name ? std::getenv(name) : nullptr;
    return quernbase::QBString(value);
}
