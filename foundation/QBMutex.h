// QBMUTEX: a recursive lock for the file access layer. The engine itself takes none.
#pragma once

#include <pthread.h>

class QBMUTEX {
public:
    QBMUTEX() : initialized(false) {}
    ~QBMUTEX() { release(); }
    QBMUTEX(const QBMUTEX&) = delete;
    QBMUTEX& operator=(const QBMUTEX&) = delete;

    int init();
    void release();
    int lock();  // initializes on first use
    int trylock();  // 0 when taken, 1 when busy
    void unlock();  // nothing if never initialized
    pthread_mutex_t* getHandle() { return &section; }
    bool isInitialized() const { return initialized; }

    // Takes all, or none: on failure the ones taken are let go again.
    static int lockMultiple(QBMUTEX** mutexes, int count);
    static void unlockAll(QBMUTEX** mutexes, int count);

private:
    pthread_mutex_t section;
    bool initialized;
};
