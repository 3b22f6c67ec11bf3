#include "QBMutex.h"

#include <cerrno>

int QBMUTEX::init() {
    if (initialized) return 0;
    pthread_mutexattr_t attr;
    pthread_mutexattr_init(&attr);
    pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
    int rc = pthread_mutex_init(&section, &attr);
    pthread_mutexattr_destroy(&attr);
    if (rc != 0) return -1;
    initialized = true;
    return 0;
}

void QBMUTEX::release() {
    if (!initialized) return;
    pthread_mutex_destroy(&section);
    initialized = false;
}

int QBMUTEX::lock() {
    if (int rc = init()) return rc;
    return pthread_mutex_lock(&section) == 0 ? 0 : -1;
}

int QBMUTEX::trylock() {
    if (int rc = init()) return rc;
    int rc = pthread_mutex_trylock(&section);
    return rc == 0 ? 0 : (rc == EBUSY ? 1 : -1);
}

void QBMUTEX::unlock() {
    if (initialized) pthread_mutex_unlock(&section);
}

int QBMUTEX::lockMultiple(QBMUTEX** mutexes, int count) {
    for (int i = 0; i < count; ++i) {
        if (mutexes[i]->lock() != 0) {
            unlockAll(mutexes, i);
            return -1;
        }
    }
    return 0;
}

void QBMUTEX::unlockAll(QBMUTEX** mutexes, int count) {
    for (int i = count; i-- > 0;) mutexes[i]->unlock();
}
