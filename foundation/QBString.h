// QBString: one pointer wide, null differs from empty, bodies shared until written (copy-on-write).
//
// A body holds: data, length (32 bits), a 16-bit sharing count, then the characters inline or,
// for a string linked to an external buffer, that buffer's capacity. Results are int statuses:
// 0 or above for success, OutOfMemory when memory runs out; a failed write leaves the string
// as it was.
#pragma once

#include <cstddef>
#include <cstdint>

#include "QBMemory.h"
#include "QBMessageCodes.h"

namespace quernbase {

// The host's counted string record: an int length followed by that many characters.
struct QBLSTR {
    int length;
    char text[1];
};

template <class T> class QBArray;

class QBString {
public:

    // Construction
    QBString() : body(nullptr) {}
    QBString(const QBString& other);
    QBString(QBString&& other) noexcept : body(other.body) { other.body = nullptr; }
    explicit QBString(const QBString* other);
    explicit QBString(char c);
    explicit QBString(int value);
    QBString(const char* text);
    QBString(const char* text, unsigned length);
    explicit QBString(const QBLSTR* text);
    explicit QBString(size_t capacity);
    ~QBString();

    // Set
    int set(const QBString& other);
    int set(char c);
    int set(const QBLSTR* text);
    int set(const char* text);
    int set(const char* text, unsigned length);
    QBString& operator=(const QBString& other);
    QBString& operator=(QBString&& other) noexcept;
    QBString& operator=(char c) { set(c); return *this; }
    QBString& operator=(const QBLSTR* text) { set(text); return *this; }
    QBString& operator=(const char* text) { set(text); return *this; }

    // Append
    int append(const QBString& other);
    int append(const QBString* other) { return other ? append(*other) : 0; }
    int append(char c) { return append(&c, 1); }
    int append(int value) { return appendNumber(int32_t(value), 10); }
    int append(const QBLSTR* text);
    int append(const char* text);
    int append(const char* text, unsigned length);
    int appendNumber(int32_t value, int radix);
    int appendNumber(uint32_t value, int radix);
    int appendNumber(int64_t value, int radix);
    int appendNumber(uint64_t value, int radix);
    int maybeAppend(char c, bool appendToEmpty);
    int maybeAppendFileSep(bool appendToEmpty = true);
    QBString& operator+=(const QBString& other);
    QBString& operator+=(const char* text) { append(text); return *this; }
    QBString& operator+=(char c) { append(c); return *this; }

    // Prepend and insert
    int prepend(const char* text) { return insert(text, 0u); }
    int prepend(const char* text, unsigned length) { return insert(text, length, 0u); }
    int prepend(const QBString& other) { return insert(other, 0u); }
    int prepend(const QBLSTR* text) { return insert(text, 0u); }
    int prepend(char c) { return insert(c, 0u); }
    int maybePrepend(char c, bool prependToEmpty);
    int insert(const char* text, unsigned position);
    int insert(const char* text, unsigned length, unsigned position);
    int insert(const QBString& other, unsigned position);
    int insert(const QBLSTR* text, unsigned position);
    int insert(char c, unsigned position) { return insert(&c, 1u, position); }

    // Edit
    int remove(unsigned start, unsigned count);
    int replace(unsigned start, unsigned count, const char* text);
    int replace(unsigned start, unsigned count, const QBString& text);
    int replaceAll(char from, char to);
    int replaceAll(const char* from, const char* to, int caseSensitive = 1);
    int replaceAll(const char* from, unsigned fromLength, const char* to, unsigned toLength,
                   int caseSensitive = 1);
    int trim(unsigned n);  // drops the last n characters
    int pad(unsigned n, char fill = ' ');  // extends on the right to n characters
    int surround(const char* left, const char* right);
    int surround(char left, char right);
    int setLength(unsigned n);
    int setLength(unsigned n, char fill);
    int resetLength();
    int nullTerminate();
    // Shares a buffer the caller owns; writes stay in it while they fit.
    int linkToExternalBuffer(char* buffer, unsigned capacity, unsigned length);
    int breakLinkToExternalBuffer();
    int setCapacity(unsigned n) { return cow(n, 0); }

    // Case
    void upcase();
    void lowcase();
    void capitalize();
    QBString toUpcase() const;
    QBString toLowcase() const;
    QBString toCap() const;

    // Strip: side is 'B' (both ends), 'L' (left) or 'R' (right); all: every repeat, else one.
    int strip(char c, char side = 'B', int all = 1);
    int strip(const char* chars, char side = 'B', int all = 1);

    // Search: negative when not found.
    int pos(const char* text, unsigned start = 0, int caseSensitive = 1) const;
    int pos(const QBString& text, unsigned start = 0, int caseSensitive = 1) const;
    int cpos(char c, unsigned start = 0) const;
    int cpos(const char* set, unsigned start = 0) const;
    int rcpos(char c) const;
    int countAll(char c) const;
    int countAll(const char* text) const;

    // Compare: the last int is case sensitivity, 1 exact and 0 ignoring case.
    int compare(const QBString& other, int caseSensitive = 1) const;
    int compare(const char* text, int caseSensitive = 1) const;
    bool equalTo(const QBString& other, int caseSensitive = 1) const {
        return compare(other, caseSensitive) == 0;
    }
    bool equalTo(const char* text, int caseSensitive = 1) const {
        return compare(text, caseSensitive) == 0;
    }
    bool equalToIgnoreNull(const QBString& other, int caseSensitive = 1) const;
    bool beginsWith(const QBString& prefix) const { return beginsWith(prefix, 1); }
    bool beginsWith(const QBString& prefix, int caseSensitive) const;
    bool beginsWith(const char* prefix, int caseSensitive = 1) const;
    bool endsWith(const QBString& suffix, int caseSensitive = 1) const;
    bool endsWith(const char* suffix, int caseSensitive = 1) const;

    bool operator==(const QBString& other) const;
    bool operator==(const char* text) const;
    bool operator==(char c) const { return length() == 1 && get()[0] == c; }
    bool operator!=(const QBString& other) const { return !(*this == other); }
    bool operator!=(const char* text) const { return !(*this == text); }
    bool operator!=(char c) const { return !(*this == c); }
    bool operator<(const QBString& other) const { return compare(other, 1) < 0; }

    // Pieces
    QBString sub(unsigned start, unsigned count = 0xFFFFFFFFu) const;
    // The text from start up to the separator; rest gets what follows it (null if none).
    QBString parse(char separator, QBString& rest, unsigned start = 0) const;
    // Appends every piece to the array; empty pieces only when keepEmpty.
    int split(char separator, QBArray<QBString>& pieces, bool keepEmpty = true) const;

    // Access
    bool isNull() const { return body == nullptr; }
    bool isEmpty() const { return !body || body->length == 0; }
    bool isNotEmpty() const { return !isEmpty(); }
    void makeNull();
    int makeEmpty();
    int makeNotNull() { return body ? 0 : makeEmpty(); }
    unsigned length() const { return body ? body->length : 0; }
    unsigned capacity() const;
    bool isUsingExternalBuffer() const;
    const char* get() const { return body ? body->data : nullptr; }
    const char* operator*() const { return get(); }
    char* get_nonconst();
    char charAt(unsigned i) const { return i < length() ? body->data[i] : 0; }
    char operator[](unsigned i) const { return charAt(i); }
    char& operator[](unsigned i);
    char first_char() const { return length() ? body->data[0] : 0; }
    char last_char() const { return length() ? body->data[body->length - 1] : 0; }
    int exportStr(char* buffer, unsigned size) const;
    int export_lstr(QBLSTR* record, unsigned size) const;
    // Leading blanks are skipped when skipBlanks; "0x" is read as hex when allowHex.
    int toInt(bool skipBlanks = true, bool allowHex = false) const;
    int64_t toInt64(bool skipBlanks = true, bool allowHex = false) const;

    // Hashing: equal up to case gives equal hashes.
    unsigned hash() const;
    static unsigned hashString(QBString s) { return s.hash(); }

    bool sameBody(const QBString& other) const { return body == other.body; }

private:
    struct Body {
        char* data;
        uint32_t length;
        uint16_t shares;  // owners of this body; 1 means it may be written in place
    };
    struct ExternalBody : Body {
        uint32_t capacity;
    };

    Body* body;

    static Body* allocBody(unsigned capacity);
    static unsigned inlineCapacity(const Body* b);
    static char* inlineData(Body* b) { return reinterpret_cast<char*>(b + 1); }
    static void releaseBody(Body* b);
    int cow(unsigned newCapacity, unsigned extra);
    int assignText(const char* text, unsigned length);
    int replaceRange(unsigned start, unsigned count, const char* text, unsigned length);
};

inline QBString operator+(const QBString& a, const QBString& b) {
    QBString r(a);
    r += b;
    return r;
}
inline QBString operator+(const QBString& a, const char* b) {
    QBString r(a);
    r += b;
    return r;
}

}  // namespace quernbase
