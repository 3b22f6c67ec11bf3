// A doubly linked list of counted token pointers, and the record of one open mark in a token
// source, which is such a list: every token handed out since the mark was set, in reading order.
// Whole lists move between marks and a source's pushback by splicing, in constant time.
//
// Marks are kept by value in a QBArray, which moves its items bitwise and destroys its free
// slots as zero-filled objects; so these classes have no virtual table and an all-zero object is
// a valid empty one.
#pragma once

#include <cstdint>
#include <new>

#include "BPSourceText.h"
#include "QBMemory.h"
#include "QBMessageCodes.h"
#include "TBPToken.h"

template <class T>
class TBPTokenQueue : public quernbase::QBMemory {
public:
    typedef TBPToken<T> Token;

    TBPTokenQueue() = default;
    TBPTokenQueue(const TBPTokenQueue& other) { appendAll(other); }
    TBPTokenQueue& operator=(const TBPTokenQueue& other) {
        if (this != &other) {
            clear();
            appendAll(other);
        }
        return *this;
    }
    ~TBPTokenQueue() { clear(); }

    bool isEmpty() const { return head == nullptr; }
    uint64_t getCount() const { return count; }
    Token* getHead() const { return head ? head->token : nullptr; }
    Token* getTail() const { return tail ? tail->token : nullptr; }

    // Appends with a count on token. 0 or OutOfMemory.
    int append(Token* token) {
        Link* link = new (std::nothrow) Link(nullptr, tail, token);
        if (!link) return qbmsg::OutOfMemory;
        if (token) token->addRef();
        (tail ? tail->next : head) = link;
        tail = link;
        ++count;
        return 0;
    }
    // Takes the head off; its count passes to the caller.
    Token* popHead() {
        Link* link = head;
        if (!link) return nullptr;
        head = link->next;
        (head ? head->previous : tail) = nullptr;
        --count;
        Token* token = link->token;
        delete link;
        return token;
    }
    // Moves every item to the end of target, leaving this queue empty.
    void moveAllTo(TBPTokenQueue& target) {
        if (!head || &target == this) return;
        if (target.tail) {
            target.tail->next = head;
            head->previous = target.tail;
        } else {
            target.head = head;
        }
        target.tail = tail;
        target.count += count;
        head = tail = nullptr;
        count = 0;
    }
    // Releases every item, deleting those whose count ends.
    void clear() {
        while (Token* token = popHeadOrNull())
            token->release();
    }

private:
    struct Link : quernbase::QBMemory {
        Link(Link* n, Link* p, Token* t) : next(n), previous(p), token(t) {}
        Link* next;
        Link* previous;
        Token* token;
    };

    Link* head = nullptr;
    Link* tail = nullptr;
    uint64_t count = 0;

    Token* popHeadOrNull() {
        while (head) {
            if (Token* token = popHead()) return token;
        }
        return nullptr;
    }
    void appendAll(const TBPTokenQueue& other) {
        for (Link* link = other.head; link; link = link->next)
            if (append(link->token) != 0) return;
    }
};

// One open mark of a token source (see TBPTokenSource::mark). The flag and the two positions
// belong to the record's shape; nothing fills them yet.
template <class T>
struct TBPTransaction : TBPTokenQueue<T> {
    bool flag = false;
    BPSourcePosition start;
    BPSourcePosition end;
};
