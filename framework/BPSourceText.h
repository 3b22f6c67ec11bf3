// The characters the front end reads. A BPSourceText is one text with its file name and the
// numbers that turn a pointer into a line and a seek position. Tokens point into the text and
// never copy it; they keep it alive through a counted BPSourceHandle, so a text outlives the
// lexer that read it for as long as any token of it exists.
#pragma once

#include <cstdint>

#include "QBMemory.h"
#include "QBString.h"

struct BPSourceText : quernbase::QBMemory {
    enum Kind { MAIN_FILE = 0, INCLUDED_FILE = 1, TEXT = 3 };

    int32_t refCount = 1;
    int32_t kind = MAIN_FILE;
    bool includeOnce = false;
    bool isSystem = false;
    quernbase::QBString fileName;
    quernbase::QBString text;  // always null-terminated; a NUL inside is a character
    const char* begin = nullptr;
    const char* end = nullptr;  // at the terminator
    uint32_t length = 0;
    uint32_t firstLine = 1;
    uint32_t seekBase = 0;

    bool isFile() const { return kind == MAIN_FILE || kind == INCLUDED_FILE; }
};

// One counted pointer to a BPSourceText: copying takes a count, destruction drops one.
class BPSourceHandle {
public:
    // Reads a whole file into out; a negative status on failure. Substitutable so that tests
    // and tools can read without the host.
    typedef int (*ReadFileFunction)(const quernbase::QBString& name, quernbase::QBString& out);

    BPSourceHandle() : record(nullptr) {}
    BPSourceHandle(const BPSourceHandle& other) : record(other.record) { retain(); }
    ~BPSourceHandle() { drop(); }
    // Inline: positions are copied for every token, nearly always within one source.
    BPSourceHandle& operator=(const BPSourceHandle& other) {
        return record == other.record ? *this : assignOther(other);
    }

    bool isNull() const { return record == nullptr; }
    BPSourceText* get() const { return record; }
    BPSourceText* operator->() const { return record; }
    int getRefCount() const { return record ? record->refCount : 0; }
    void reset();

    // Equal when the same record, or when kind, name, text, first line and seek base agree.
    bool operator==(const BPSourceHandle& other) const;
    bool operator!=(const BPSourceHandle& other) const { return !(*this == other); }

    // Gives this handle a record of its own: a new empty one if null, a copy (sharing the
    // text's body) if the record is shared. 0 or OutOfMemory.
    int makePrivate();
    // Reads a file into this handle's (private) record. InvalidArgument for an empty name; a
    // failed read gives its status and leaves the text as it was.
    int load(const quernbase::QBString& name);
    // Replaces the text of this handle's (private) record. 0 or OutOfMemory.
    int setText(const quernbase::QBString& text);
    // A new record of kind TEXT: a macro body or generated fragment that reports lines and
    // seek positions of the place it came from. A null handle if memory runs out.
    static BPSourceHandle makeTextSource(const quernbase::QBString& text, uint32_t firstLine,
                                         uint32_t seekBase);

    // The reader used by load; null restores the host's. Returns the previous one.
    static ReadFileFunction setReadFileFunction(ReadFileFunction reader);

private:
    BPSourceText* record;

    void retain() {
        if (record) ++record->refCount;
    }
    void drop();
    BPSourceHandle& assignOther(const BPSourceHandle& other);
    int adoptText(const quernbase::QBString& text);
};

// A place in a source: the text, a pointer to a character of it, and the line ends passed.
struct BPSourcePosition {
    BPSourceHandle source;
    const char* cursor = nullptr;
    uint32_t line = 0;

    void clear() {
        source.reset();
        cursor = nullptr;
        line = 0;
    }
    bool atTextStart() const { return !source.isNull() && cursor == source->begin; }
    bool atEnd() const { return source.isNull() || !cursor || cursor >= source->end; }
    // The source's first line plus the line ends passed.
    uint32_t getLine() const;
    // 0 with no cursor; else the offset in the text plus the source's seek base.
    uint32_t getSeekPosition() const;
    // 1-based. Tabs count as one character unless tabSize is given.
    uint32_t getColumn(int tabSize) const;
    // True if only blanks, tabs and vertical tabs stand between the cursor and the line start.
    bool isFirstOnLine() const;
    quernbase::QBString getFileName() const;
};
