#include "QBString.h"

#include <cstring>
#include <new>

#include "QBArray.h"
#include "QBCharType.h"
#include "QBHash.h"

namespace quernbase {

namespace {
const uint16_t kMaxShares = 0xFFFF;

unsigned textLength(const char* text) { return text ? unsigned(std::strlen(text)) : 0; }

int compareBytes(const char* a, unsigned la, const char* b, unsigned lb, int caseSensitive) {
    unsigned n = la < lb ? la : lb;
    if (caseSensitive) {
        int r = n ? std::memcmp(a, b, n) : 0;
        if (r) return r;
    } else {
        const QBCharType& ct = QBCharType::getInstance();
        for (unsigned i = 0; i < n; ++i) {
            int ca = ct.toLower(a[i]), cb = ct.toLower(b[i]);
            if (ca != cb) return ca - cb;
        }
    }
    return la < lb ? -1 : (la > lb ? 1 : 0);
}

bool sameBytes(const char* a, const char* b, unsigned n, int caseSensitive) {
    return compareBytes(a, n, b, n, caseSensitive) == 0;
}
}  // namespace

// ---- bodies ---------------------------------------------------------------------------------

QBString::Body* QBString::allocBody(unsigned capacity) {
    void* mem = QBAllocator::allocate(sizeof(Body) + size_t(capacity) + 1);
    if (!mem) return nullptr;
    Body* b = static_cast<Body*>(mem);
    b->data = inlineData(b);
    b->length = 0;
    b->shares = 1;
    b->data[0] = 0;
    return b;
}

unsigned QBString::inlineCapacity(const Body* b) {
    return unsigned(QBAllocator::numBytesAllocated(b) - sizeof(Body) - 1);
}

void QBString::releaseBody(Body* b) {
    if (b && --b->shares == 0) QBAllocator::deallocate(b);
}

unsigned QBString::capacity() const {
    if (!body) return 0;
    if (isUsingExternalBuffer()) return static_cast<const ExternalBody*>(body)->capacity;
    return inlineCapacity(body);
}

bool QBString::isUsingExternalBuffer() const {
    return body && body->data != reinterpret_cast<const char*>(body + 1);
}

// Makes the body unshared with room for max(newCapacity, length + extra) characters.
int QBString::cow(unsigned newCapacity, unsigned extra) {
    if (!body && newCapacity == 0 && extra == 0) return 0;
    unsigned len = length();
    unsigned need = newCapacity > len + extra ? newCapacity : len + extra;
    if (body && body->shares == 1 && capacity() >= need) return 0;
    // A string that gets longer grows geometrically, whichever member lengthens it (append,
    // insert, setLength); one that is only unshared gets exactly its length.
    unsigned cap = need > len ? need + need / 2 : need;
    Body* fresh = allocBody(cap);
    if (!fresh) return qbmsg::OutOfMemory;
    if (len) std::memcpy(fresh->data, body->data, len);
    fresh->length = len;
    fresh->data[len] = 0;
    releaseBody(body);
    body = fresh;
    return 0;
}

// ---- construction and assignment -------------------------------------------------------------

QBString::QBString(const QBString& other) : body(other.body) {
    if (!body) return;
    if (body->shares < kMaxShares) {
        ++body->shares;
        return;
    }
    body = nullptr;
    assignText(other.get(), other.length());
}

QBString::QBString(const QBString* other) : QBString(other ? *other : QBString()) {}
QBString::QBString(char c) : body(nullptr) { assignText(&c, 1); }
QBString::QBString(int value) : body(nullptr) { appendNumber(int32_t(value), 10); }
QBString::QBString(const char* text) : body(nullptr) {
    if (text) assignText(text, textLength(text));
}
QBString::QBString(const char* text, unsigned length) : body(nullptr) {
    if (text) assignText(text, length);
}
QBString::QBString(const QBLSTR* text) : body(nullptr) { set(text); }
QBString::QBString(size_t capacity) : body(allocBody(unsigned(capacity))) {}
QBString::~QBString() { releaseBody(body); }

QBString& QBString::operator=(const QBString& other) {
    if (body != other.body) set(other);
    return *this;
}

QBString& QBString::operator=(QBString&& other) noexcept {
    if (this != &other) {
        releaseBody(body);
        body = other.body;
        other.body = nullptr;
    }
    return *this;
}

int QBString::set(const QBString& other) {
    if (body == other.body) return 0;
    QBString copy(other);
    if (copy.body == nullptr && other.body) return qbmsg::OutOfMemory;
    *this = static_cast<QBString&&>(copy);
    return 0;
}

// Writes into a fresh body so that a failure leaves the old text, and text may alias the old body.
int QBString::assignText(const char* text, unsigned length) {
    if (body && body->shares == 1 && capacity() >= length && !isUsingExternalBuffer()) {
        std::memmove(body->data, text, length);
    } else {
        Body* fresh = allocBody(length);
        if (!fresh) return qbmsg::OutOfMemory;
        if (length) std::memcpy(fresh->data, text, length);
        releaseBody(body);
        body = fresh;
    }
    body->length = length;
    body->data[length] = 0;
    return 0;
}

int QBString::set(char c) { return assignText(&c, 1); }
int QBString::set(const char* text) {
    if (!text) {
        makeNull();
        return 0;
    }
    return assignText(text, textLength(text));
}
int QBString::set(const char* text, unsigned length) {
    if (!text) {
        makeNull();
        return 0;
    }
    return assignText(text, length);
}
int QBString::set(const QBLSTR* text) {
    if (!text) {
        makeNull();
        return 0;
    }
    return assignText(text->text, text->length > 0 ? unsigned(text->length) : 0);
}

void QBString::makeNull() {
    releaseBody(body);
    body = nullptr;
}

int QBString::makeEmpty() { return assignText("", 0); }

// ---- append, insert, replace --------------------------------------------------------------

int QBString::replaceRange(unsigned start, unsigned count, const char* text, unsigned tlen) {
    unsigned len = length();
    if (start > len) start = len;
    if (count > len - start) count = len - start;
    if (!body && tlen == 0) return makeEmpty();
    unsigned newLen = len - count + tlen;
    if (tlen > count) {
        // text may point into this very body: copy it first if the body will move
        QBString keep;
        if (body && text >= body->data && text < body->data + len + 1) {
            if (keep.assignText(text, tlen)) return qbmsg::OutOfMemory;
            text = keep.get();
        }
        if (int rc = cow(0, tlen - count)) return rc;
        char* d = body->data;
        std::memmove(d + start + tlen, d + start + count, len - start - count);
        std::memcpy(d + start, text, tlen);
    } else {
        if (int rc = cow(0, 0)) return rc;
        char* d = body->data;
        std::memmove(d + start, text, tlen);
        std::memmove(d + start + tlen, d + start + count, len - start - count);
    }
    body->length = newLen;
    body->data[newLen] = 0;
    return 0;
}

int QBString::append(const QBString& other) {
    if (other.isNull()) return 0;
    if (isNull()) return set(other);
    return append(other.get(), other.length());
}
QBString& QBString::operator+=(const QBString& other) {
    append(other);
    return *this;
}
int QBString::append(const char* text) { return text ? append(text, textLength(text)) : 0; }
int QBString::append(const char* text, unsigned length) {
    if (!text) return 0;
    return replaceRange(this->length(), 0, text, length);
}
int QBString::append(const QBLSTR* text) {
    if (!text || text->length <= 0) return text ? makeNotNull() : 0;
    return append(text->text, unsigned(text->length));
}

namespace {
int formatUnsigned(char* end, uint64_t v, int radix) {
    if (radix < 2 || radix > 36) radix = 10;
    char* p = end;
    do {
        unsigned d = unsigned(v % unsigned(radix));
        *--p = char(d < 10 ? '0' + d : 'a' + d - 10);
        v /= unsigned(radix);
    } while (v);
    return int(end - p);
}
}  // namespace

int QBString::appendNumber(uint64_t value, int radix) {
    char buf[72];
    int n = formatUnsigned(buf + sizeof buf, value, radix);
    return append(buf + sizeof buf - n, unsigned(n));
}
int QBString::appendNumber(int64_t value, int radix) {
    char buf[72];
    uint64_t mag = value < 0 ? 0 - uint64_t(value) : uint64_t(value);
    int n = formatUnsigned(buf + sizeof buf, mag, radix);
    if (value < 0) buf[sizeof buf - ++n] = '-';
    return append(buf + sizeof buf - n, unsigned(n));
}
int QBString::appendNumber(int32_t value, int radix) { return appendNumber(int64_t(value), radix); }
int QBString::appendNumber(uint32_t value, int radix) {
    return appendNumber(uint64_t(value), radix);
}

int QBString::maybeAppend(char c, bool appendToEmpty) {
    if (isEmpty()) return appendToEmpty ? append(c) : 0;
    return last_char() == c ? 0 : append(c);
}
int QBString::maybeAppendFileSep(bool appendToEmpty) { return maybeAppend('/', appendToEmpty); }
int QBString::maybePrepend(char c, bool prependToEmpty) {
    if (isEmpty()) return prependToEmpty ? prepend(c) : 0;
    return first_char() == c ? 0 : prepend(c);
}

int QBString::insert(const char* text, unsigned position) {
    return text ? insert(text, textLength(text), position) : 0;
}
int QBString::insert(const char* text, unsigned length, unsigned position) {
    if (!text) return 0;
    return replaceRange(position, 0, text, length);
}
int QBString::insert(const QBString& other, unsigned position) {
    if (other.isNull()) return 0;
    QBString keep(other);  // other may be this string
    return insert(keep.get(), keep.length(), position);
}
int QBString::insert(const QBLSTR* text, unsigned position) {
    if (!text || text->length <= 0) return 0;
    return insert(text->text, unsigned(text->length), position);
}

int QBString::remove(unsigned start, unsigned count) {
    if (start >= length() || count == 0) return 0;
    return replaceRange(start, count, "", 0);
}
int QBString::replace(unsigned start, unsigned count, const char* text) {
    return replaceRange(start, count, text ? text : "", textLength(text));
}
int QBString::replace(unsigned start, unsigned count, const QBString& text) {
    QBString keep(text);
    return replaceRange(start, count, keep.isNull() ? "" : keep.get(), keep.length());
}

int QBString::replaceAll(char from, char to) {
    if (cpos(from) < 0) return 0;
    if (int rc = cow(0, 0)) return rc;
    for (unsigned i = 0; i < body->length; ++i)
        if (body->data[i] == from) body->data[i] = to;
    return 0;
}
int QBString::replaceAll(const char* from, const char* to, int caseSensitive) {
    return replaceAll(from, textLength(from), to, textLength(to), caseSensitive);
}
int QBString::replaceAll(const char* from, unsigned fromLength, const char* to, unsigned toLength,
                         int caseSensitive) {
    if (!from || fromLength == 0 || isEmpty()) return 0;
    QBString result{size_t(length())};
    if (result.isNull()) return qbmsg::OutOfMemory;
    const char* d = get();
    unsigned len = length(), i = 0, done = 0;
    while (i + fromLength <= len) {
        if (sameBytes(d + i, from, fromLength, caseSensitive)) {
            if (result.append(d + done, i - done) || result.append(to ? to : "", toLength))
                return qbmsg::OutOfMemory;
            i += fromLength;
            done = i;
        } else {
            ++i;
        }
    }
    if (done == 0) return 0;
    if (result.append(d + done, len - done)) return qbmsg::OutOfMemory;
    *this = static_cast<QBString&&>(result);
    return 0;
}

int QBString::trim(unsigned n) { return setLength(n >= length() ? 0 : length() - n); }

int QBString::pad(unsigned n, char fill) { return n > length() ? setLength(n, fill) : 0; }

int QBString::surround(const char* left, const char* right) {
    QBString r(left ? left : "");
    if (r.append(*this) || r.append(right)) return qbmsg::OutOfMemory;
    *this = static_cast<QBString&&>(r);
    return 0;
}
int QBString::surround(char left, char right) {
    char l[2] = {left, 0}, r[2] = {right, 0};
    return surround(l, r);
}

int QBString::setLength(unsigned n) {
    if (n <= length()) {
        if (!body || n == body->length) return 0;
        if (int rc = cow(0, 0)) return rc;
        body->length = n;
        body->data[n] = 0;
        return 0;
    }
    return setLength(n, ' ');
}
int QBString::setLength(unsigned n, char fill) {
    unsigned len = length();
    if (n <= len) return setLength(n);
    if (int rc = cow(n, 0)) return rc;
    std::memset(body->data + len, fill, n - len);
    body->length = n;
    body->data[n] = 0;
    return 0;
}
int QBString::resetLength() {
    if (!body) return 0;
    unsigned cap = capacity();
    const char* end = static_cast<const char*>(std::memchr(body->data, 0, size_t(cap) + 1));
    body->length = end ? unsigned(end - body->data) : cap;
    body->data[body->length] = 0;
    return 0;
}
int QBString::nullTerminate() {
    if (!body) return 0;
    if (int rc = cow(0, 0)) return rc;
    body->data[body->length] = 0;
    return 0;
}

int QBString::linkToExternalBuffer(char* buffer, unsigned capacity, unsigned length) {
    if (!buffer || capacity == 0) return -1;
    void* mem = QBAllocator::allocate(sizeof(ExternalBody));
    if (!mem) return qbmsg::OutOfMemory;
    ExternalBody* b = static_cast<ExternalBody*>(mem);
    b->data = buffer;
    b->capacity = capacity - 1;  // room for the terminator
    b->length = length < capacity ? length : capacity - 1;
    b->shares = 1;
    b->data[b->length] = 0;
    releaseBody(body);
    body = b;
    return 0;
}
int QBString::breakLinkToExternalBuffer() {
    if (!isUsingExternalBuffer()) return 0;
    QBString copy;
    if (copy.assignText(get(), length())) return qbmsg::OutOfMemory;
    *this = static_cast<QBString&&>(copy);
    return 0;
}

char* QBString::get_nonconst() {
    if (cow(0, 0)) return nullptr;
    return body ? body->data : nullptr;
}

char& QBString::operator[](unsigned i) {
    static char sink;
    char* d = get_nonconst();
    if (!d || i > length()) return sink = 0;
    return d[i];
}

// ---- case and strip -------------------------------------------------------------------------

void QBString::upcase() {
    if (isEmpty() || cow(0, 0)) return;
    const QBCharType& ct = QBCharType::getInstance();
    for (unsigned i = 0; i < body->length; ++i) body->data[i] = char(ct.toUpper(body->data[i]));
}
void QBString::lowcase() {
    if (isEmpty() || cow(0, 0)) return;
    const QBCharType& ct = QBCharType::getInstance();
    for (unsigned i = 0; i < body->length; ++i) body->data[i] = char(ct.toLower(body->data[i]));
}
void QBString::capitalize() {
    if (isEmpty() || cow(0, 0)) return;
    const QBCharType& ct = QBCharType::getInstance();
    bool start = true;
    for (unsigned i = 0; i < body->length; ++i) {
        char c = body->data[i];
        body->data[i] = char(start ? ct.toUpper(c) : ct.toLower(c));
        start = !ct.isAlNum(c);
    }
}
QBString QBString::toUpcase() const {
    QBString r(*this);
    r.upcase();
    return r;
}
QBString QBString::toLowcase() const {
    QBString r(*this);
    r.lowcase();
    return r;
}
QBString QBString::toCap() const {
    QBString r(*this);
    r.capitalize();
    return r;
}

int QBString::strip(char c, char side, int all) {
    char set[2] = {c, 0};
    return strip(set, side, all);
}
int QBString::strip(const char* chars, char side, int all) {
    if (isEmpty() || !chars) return 0;
    const char* d = get();
    unsigned b = 0, e = length();
    bool left = side == 'B' || side == 'L', right = side == 'B' || side == 'R' || side == 'T';
    while (left && b < e && std::strchr(chars, d[b]) && d[b]) {
        ++b;
        if (!all) break;
    }
    while (right && e > b && std::strchr(chars, d[e - 1]) && d[e - 1]) {
        --e;
        if (!all) break;
    }
    if (b == 0 && e == length()) return 0;
    return replaceRange(0, length(), d + b, e - b);  // shrinking: d stays valid
}

// ---- search and compare ---------------------------------------------------------------------

int QBString::pos(const char* text, unsigned start, int caseSensitive) const {
    unsigned tl = textLength(text), len = length();
    if (!text || start > len || tl > len - start) return -1;
    for (unsigned i = start; i + tl <= len; ++i)
        if (sameBytes(get() + i, text, tl, caseSensitive)) return int(i);
    return -1;
}
int QBString::pos(const QBString& text, unsigned start, int caseSensitive) const {
    if (text.isNull()) return -1;
    unsigned tl = text.length(), len = length();
    if (start > len || tl > len - start) return -1;
    for (unsigned i = start; i + tl <= len; ++i)
        if (sameBytes(get() + i, text.get(), tl, caseSensitive)) return int(i);
    return -1;
}
int QBString::cpos(char c, unsigned start) const {
    for (unsigned i = start; i < length(); ++i)
        if (body->data[i] == c) return int(i);
    return qbmsg::NotInList;
}
int QBString::cpos(const char* set, unsigned start) const {
    if (!set) return qbmsg::NotInList;
    for (unsigned i = start; i < length(); ++i)
        if (body->data[i] && std::strchr(set, body->data[i])) return int(i);
    return qbmsg::NotInList;
}
int QBString::rcpos(char c) const {
    for (unsigned i = length(); i-- > 0;)
        if (body->data[i] == c) return int(i);
    return qbmsg::NotInList;
}
int QBString::countAll(char c) const {
    int n = 0;
    for (unsigned i = 0; i < length(); ++i) n += body->data[i] == c;
    return n;
}
int QBString::countAll(const char* text) const {
    unsigned tl = textLength(text);
    if (tl == 0) return 0;
    int n = 0;
    for (int at = pos(text, 0); at >= 0; at = pos(text, unsigned(at) + tl)) ++n;
    return n;
}

int QBString::compare(const QBString& other, int caseSensitive) const {
    if (body == other.body) return 0;
    return compareBytes(get(), length(), other.get(), other.length(), caseSensitive);
}
int QBString::compare(const char* text, int caseSensitive) const {
    return compareBytes(get(), length(), text, textLength(text), caseSensitive);
}
bool QBString::equalToIgnoreNull(const QBString& other, int caseSensitive) const {
    if (isEmpty() && other.isEmpty()) return true;
    return compare(other, caseSensitive) == 0;
}
bool QBString::beginsWith(const QBString& prefix, int caseSensitive) const {
    return prefix.length() <= length() &&
           sameBytes(get(), prefix.get(), prefix.length(), caseSensitive);
}
bool QBString::beginsWith(const char* prefix, int caseSensitive) const {
    unsigned pl = textLength(prefix);
    return pl <= length() && sameBytes(get(), prefix, pl, caseSensitive);
}
bool QBString::endsWith(const QBString& suffix, int caseSensitive) const {
    unsigned sl = suffix.length();
    return sl <= length() && sameBytes(get() + length() - sl, suffix.get(), sl, caseSensitive);
}
bool QBString::endsWith(const char* suffix, int caseSensitive) const {
    unsigned sl = textLength(suffix);
    return sl <= length() && sameBytes(get() + length() - sl, suffix, sl, caseSensitive);
}

bool QBString::operator==(const QBString& other) const {
    if (body == other.body) return true;
    if (!body || !other.body || body->length != other.body->length) return false;
    return std::memcmp(body->data, other.body->data, body->length) == 0;
}

// A null pointer and an empty text both count as length 0; then the pointers decide when
// either side is null, so the null string equals neither "" nor a non-null empty string.
bool QBString::operator==(const char* text) const {
    if (length() != textLength(text)) return false;
    if (get() == text) return true;
    if (!get() || !text) return false;
    return std::memcmp(get(), text, length()) == 0;
}

// ---- pieces, export, numbers, hash ----------------------------------------------------------

QBString QBString::sub(unsigned start, unsigned count) const {
    unsigned len = length();
    if (isNull() || start > len) return QBString();
    if (count > len - start) count = len - start;
    return QBString(get() + start, count);
}

QBString QBString::parse(char separator, QBString& rest, unsigned start) const {
    // rest may be this very string: take the piece before touching it
    int at = cpos(separator, start);
    QBString piece = at < 0 ? sub(start) : sub(start, unsigned(at) - start);
    if (at < 0)
        rest.makeNull();
    else
        rest = sub(unsigned(at) + 1);
    return piece;
}

int QBString::split(char separator, QBArray<QBString>& pieces, bool keepEmpty) const {
    if (isNull()) return 0;
    unsigned start = 0, len = length();
    while (start <= len) {
        int at = cpos(separator, start);
        unsigned end = at < 0 ? len : unsigned(at);
        if (keepEmpty || end > start) {
            if (pieces.add(sub(start, end - start))) return qbmsg::OutOfMemory;
        }
        start = end + 1;
    }
    return 0;
}

int QBString::exportStr(char* buffer, unsigned size) const {
    if (!buffer || size == 0) return 0;
    unsigned n = length() < size - 1 ? length() : size - 1;
    if (n) std::memcpy(buffer, get(), n);
    buffer[n] = 0;
    return int(n);
}
int QBString::export_lstr(QBLSTR* record, unsigned size) const {
    if (!record) return 0;
    unsigned n = length() < size ? length() : size;
    if (n) std::memcpy(record->text, get(), n);
    record->length = int(n);
    return int(n);
}

int64_t QBString::toInt64(bool skipBlanks, bool allowHex) const {
    const QBCharType& ct = QBCharType::getInstance();
    unsigned i = 0, len = length();
    const char* d = get();
    while (skipBlanks && i < len && ct.isSpace(d[i])) ++i;
    bool neg = false;
    if (i < len && (d[i] == '-' || d[i] == '+')) neg = d[i++] == '-';
    int radix = 10;
    if (allowHex && i + 1 < len && d[i] == '0' && (d[i + 1] == 'x' || d[i + 1] == 'X')) {
        radix = 16;
        i += 2;
    }
    uint64_t v = 0;
    for (; i < len; ++i) {
        int c = ct.toLower(d[i]);
        int digit = ct.isDigit(d[i]) ? c - '0' : (radix == 16 && ct.isHexDigit(d[i]) ? c - 'a' + 10 : -1);
        if (digit < 0) break;
        v = v * unsigned(radix) + unsigned(digit);
    }
    return neg ? int64_t(0 - v) : int64_t(v);
}
int QBString::toInt(bool skipBlanks, bool allowHex) const {
    return int(toInt64(skipBlanks, allowHex));
}

unsigned QBString::hash() const { return body ? QBHashBStringI(body->data, body->length) : 0; }

}  // namespace quernbase
