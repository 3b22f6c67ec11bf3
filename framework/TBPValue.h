// The constant value a type may carry: what a constant expression evaluates to. A value is a
// kind and two words; the kinds with a payload too big for a word (big numbers, long doubles,
// strings, aggregates, pointed-to values) own a box behind the first word, so copying a value
// copies its boxes and clearing it frees them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

#include "QBArray.h"
#include "QBMemory.h"
#include "QBMessageCodes.h"
#include "QBString.h"

template <class T> class TBPSymbolInfo;

enum BPValueKind {
    BPVALUE_Void = 0,
    BPVALUE_UnsignedInteger = 1,
    BPVALUE_SignedInteger = 2,
    BPVALUE_UnsignedLong = 3,
    BPVALUE_SignedLong = 4,
    BPVALUE_UnsignedLongLong = 5,
    BPVALUE_SignedLongLong = 6,
    BPVALUE_UnsignedShort = 7,
    BPVALUE_SignedShort = 8,
    BPVALUE_BigNumber = 9,
    BPVALUE_Float = 10,
    BPVALUE_Double = 11,
    BPVALUE_LongDouble = 12,
    BPVALUE_Character = 13,
    BPVALUE_WideCharacter = 14,
    BPVALUE_Boolean = 15,
    BPVALUE_String = 16,
    BPVALUE_WideString = 17,
    BPVALUE_Enumeration = 18,
    BPVALUE_Union = 19,
    BPVALUE_Class = 20,
    BPVALUE_Array = 21,
    BPVALUE_Pointer = 22,
    BPVALUE_Reference = 23,
    BPVALUE_FunctionPointer = 24,
    BPVALUE_MemberPointer = 25,
    BPVALUE_Any = 26,
    BPVALUE_LAST = BPVALUE_Any
};

template <class T>
class TBPValue : public quernbase::QBMemory {
public:
    typedef quernbase::QBArray<TBPValue*> ValueList;
    typedef quernbase::QBArray<uint16_t> WideText;

    explicit TBPValue(int valueKind = BPVALUE_Void) : kind(valueKind) { data.bits = 0; }
    TBPValue(const TBPValue& other) : kind(BPVALUE_Void) {
        data.bits = 0;
        copyFrom(other);
    }
    TBPValue& operator=(const TBPValue& other) {
        copyFrom(other);
        return *this;
    }
    ~TBPValue() { clear(); }

    // Makes this an exact copy of other, boxes included. 0 or OutOfMemory (then this is Void).
    int copyFrom(const TBPValue& other);
    // Frees the payload and makes the value Void.
    void clear() { setKind(BPVALUE_Void); }
    // Frees the old payload; the new kind starts with a zero payload.
    void setKind(int valueKind) {
        freePayload();
        kind = valueKind;
        data.bits = 0;
        extra = 0;
    }
    int getKind() const { return kind; }
    bool isNumeric() const { return kind >= BPVALUE_UnsignedInteger && kind <= BPVALUE_SignedShort; }

    // Typed reads: the payload when the kind matches, else 0.
    uint32_t getUnsignedInteger() const { return is(BPVALUE_UnsignedInteger) ? uint32_t(data.bits) : 0; }
    int32_t getSignedInteger() const { return is(BPVALUE_SignedInteger) ? int32_t(data.bits) : 0; }
    uint32_t getUnsignedLong() const { return is(BPVALUE_UnsignedLong) ? uint32_t(data.bits) : 0; }
    int32_t getSignedLong() const { return is(BPVALUE_SignedLong) ? int32_t(data.bits) : 0; }
    uint64_t getUnsignedLongLong() const { return is(BPVALUE_UnsignedLongLong) ? data.bits : 0; }
    int64_t getSignedLongLong() const { return is(BPVALUE_SignedLongLong) ? int64_t(data.bits) : 0; }
    uint16_t getUnsignedShort() const { return is(BPVALUE_UnsignedShort) ? uint16_t(data.bits) : 0; }
    int16_t getSignedShort() const { return is(BPVALUE_SignedShort) ? int16_t(data.bits) : 0; }
    float getFloat() const { return is(BPVALUE_Float) ? data.f : 0.0f; }
    double getDouble() const { return is(BPVALUE_Double) ? data.d : 0.0; }
    double getLongDouble() const { return is(BPVALUE_LongDouble) && data.boxedDouble ? data.boxedDouble->number : 0.0; }
    char getCharacter() const { return is(BPVALUE_Character) ? char(data.bits) : 0; }
    uint16_t getWideCharacter() const { return is(BPVALUE_WideCharacter) ? uint16_t(data.bits) : 0; }
    bool getBoolean() const { return is(BPVALUE_Boolean) && (data.bits & 0xFF) != 0; }
    int64_t getEnumeration() const { return is(BPVALUE_Enumeration) ? int64_t(data.bits) : 0; }
    int32_t getMemberPointer() const { return is(BPVALUE_MemberPointer) ? int32_t(data.bits) : 0; }
    // Null strings when the kind differs or nothing is stored.
    quernbase::QBString getBigNumber() const { return is(BPVALUE_BigNumber) ? textOf() : quernbase::QBString(); }
    quernbase::QBString getString() const { return is(BPVALUE_String) ? textOf() : quernbase::QBString(); }
    const WideText* getWideString() const { return is(BPVALUE_WideString) ? data.wide : nullptr; }
    TBPSymbolInfo<T>* getFunctionPointer() const { return is(BPVALUE_FunctionPointer) ? data.symbol : nullptr; }
    // Union: the active member's value and its index.
    const TBPValue* getUnionValue() const { return is(BPVALUE_Union) ? data.value : nullptr; }
    int64_t getUnionIndex() const { return is(BPVALUE_Union) ? extra : 0; }
    // Pointer: an owned pointed-to value, or else a plain address.
    const TBPValue* getPointedValue() const { return is(BPVALUE_Pointer) && extra ? data.value : nullptr; }
    uint64_t getPointerAddress() const { return is(BPVALUE_Pointer) && !extra ? data.bits : 0; }
    const TBPValue* getReferredValue() const { return is(BPVALUE_Reference) ? data.value : nullptr; }
    // Class and array items.
    unsigned getItemCount() const { return hasItems() && data.items ? data.items->count() : 0; }
    const TBPValue* getItem(unsigned i) const {
        return i < getItemCount() ? (*data.items)[i] : nullptr;
    }

    // Setters make the value that kind, freeing what it held. 0 or OutOfMemory.
    void setUnsignedInteger(uint32_t v) { setBits(BPVALUE_UnsignedInteger, v); }
    void setSignedInteger(int32_t v) { setBits(BPVALUE_SignedInteger, uint32_t(v)); }
    void setUnsignedLong(uint32_t v) { setBits(BPVALUE_UnsignedLong, v); }
    void setSignedLong(int32_t v) { setBits(BPVALUE_SignedLong, uint32_t(v)); }
    void setUnsignedLongLong(uint64_t v) { setBits(BPVALUE_UnsignedLongLong, v); }
    void setSignedLongLong(int64_t v) { setBits(BPVALUE_SignedLongLong, uint64_t(v)); }
    void setUnsignedShort(uint16_t v) { setBits(BPVALUE_UnsignedShort, v); }
    void setSignedShort(int16_t v) { setBits(BPVALUE_SignedShort, uint16_t(v)); }
    void setFloat(float v) { setKind(BPVALUE_Float); data.f = v; }
    void setDouble(double v) { setKind(BPVALUE_Double); data.d = v; }
    int setLongDouble(double v);
    void setCharacter(char v) { setBits(BPVALUE_Character, uint8_t(v)); }
    void setWideCharacter(uint16_t v) { setBits(BPVALUE_WideCharacter, v); }
    void setBoolean(bool v) { setBits(BPVALUE_Boolean, v ? 1 : 0); }
    void setEnumeration(int64_t v) { setBits(BPVALUE_Enumeration, uint64_t(v)); }
    void setMemberPointer(int32_t v) { setBits(BPVALUE_MemberPointer, uint32_t(v)); }
    void setFunctionPointer(TBPSymbolInfo<T>* symbol) {
        setKind(BPVALUE_FunctionPointer);
        data.symbol = symbol;
    }
    int setBigNumber(const quernbase::QBString& digits) { return setText(BPVALUE_BigNumber, digits); }
    int setString(const quernbase::QBString& text) { return setText(BPVALUE_String, text); }
    int setWideString(const uint16_t* units, unsigned count);
    void setPointerAddress(uint64_t address) { setBits(BPVALUE_Pointer, address); }
    // Owning forms take a copy of the given value.
    int setPointedValue(const TBPValue& pointed) { return setBoxed(BPVALUE_Pointer, pointed, 1); }
    int setReferredValue(const TBPValue& referred) { return setBoxed(BPVALUE_Reference, referred, 0); }
    int setUnionValue(const TBPValue& member, int64_t index) {
        return setBoxed(BPVALUE_Union, member, index);
    }
    // Makes an empty class or array value; addItem appends a copy.
    int makeAggregate(int aggregateKind);
    int addItem(const TBPValue& item);

    // The value as source text: digits, true/false, 'c', L'x', the string's text, "%f" for
    // floating kinds, "(null)" for a missing box, "void".
    int toText(quernbase::QBString& out) const;
    // One line per value (and per item of an aggregate), at most to indent 200.
    int dumpToString(quernbase::QBString& out, int indent, const char* label) const;
    void dump(int indent, const char* label) const {
        quernbase::QBString text("");
        dumpToString(text, indent, label);
        std::fputs(text.isNull() ? "" : text.get(), stdout);
    }
    static const char* kindName(int valueKind);

private:
    struct BoxedText : quernbase::QBMemory {
        quernbase::QBString text;
    };
    struct BoxedDouble : quernbase::QBMemory {
        double number;
    };
    struct BoxedWide : quernbase::QBMemory, WideText {};
    struct BoxedItems : quernbase::QBMemory, ValueList {};

    int32_t kind;
    union Payload {
        uint64_t bits;
        float f;
        double d;
        BoxedText* text;
        BoxedDouble* boxedDouble;
        WideText* wide;
        ValueList* items;
        TBPValue* value;
        TBPSymbolInfo<T>* symbol;
    } data;
    int64_t extra = 0;

    bool is(int k) const { return kind == k; }
    bool hasItems() const { return kind == BPVALUE_Class || kind == BPVALUE_Array; }
    bool ownsValue() const {
        return kind == BPVALUE_Union || kind == BPVALUE_Reference || (kind == BPVALUE_Pointer && extra);
    }
    void setBits(int k, uint64_t bits) {
        setKind(k);
        data.bits = bits;
    }
    quernbase::QBString textOf() const { return data.text ? data.text->text : quernbase::QBString(); }
    int setText(int k, const quernbase::QBString& text);
    int setBoxed(int k, const TBPValue& inner, int64_t extraWord);
    void freePayload();
    int appendPayload(quernbase::QBString& out) const;
};

template <class T>
void TBPValue<T>::freePayload() {
    switch (kind) {
    case BPVALUE_BigNumber:
    case BPVALUE_String: delete data.text; break;
    case BPVALUE_LongDouble: delete data.boxedDouble; break;
    case BPVALUE_WideString: delete static_cast<BoxedWide*>(data.wide); break;
    case BPVALUE_Class:
    case BPVALUE_Array:
        if (data.items)
            for (TBPValue* item : *data.items) delete item;
        delete static_cast<BoxedItems*>(data.items);
        break;
    default:
        if (ownsValue()) delete data.value;
    }
    data.bits = 0;
}

template <class T>
int TBPValue<T>::copyFrom(const TBPValue& other) {
    if (&other == this) return 0;
    switch (other.kind) {
    case BPVALUE_BigNumber:
    case BPVALUE_String:
        if (!other.data.text) break;
        return setText(other.kind, other.data.text->text);
    case BPVALUE_LongDouble:
        if (!other.data.boxedDouble) break;
        return setLongDouble(other.data.boxedDouble->number);
    case BPVALUE_WideString:
        if (!other.data.wide) break;
        return setWideString(other.data.wide->begin(), other.data.wide->count());
    case BPVALUE_Class:
    case BPVALUE_Array: {
        if (int rc = makeAggregate(other.kind)) return rc;
        for (unsigned i = 0; i < other.getItemCount(); ++i)
            if (int rc = addItem(*other.getItem(i))) {
                clear();
                return rc;
            }
        return 0;
    }
    default:
        if (other.ownsValue() && other.data.value)
            return setBoxed(other.kind, *other.data.value, other.extra);
    }
    setKind(other.kind);
    if (!other.ownsValue()) {
        data.bits = other.data.bits;
        extra = other.extra;
    }
    return 0;
}

template <class T>
int TBPValue<T>::setText(int k, const quernbase::QBString& text) {
    BoxedText* box = new (std::nothrow) BoxedText;
    if (!box) return qbmsg::OutOfMemory;
    box->text = text;
    setKind(k);
    data.text = box;
    return 0;
}

template <class T>
int TBPValue<T>::setLongDouble(double v) {
    BoxedDouble* box = new (std::nothrow) BoxedDouble;
    if (!box) return qbmsg::OutOfMemory;
    box->number = v;
    setKind(BPVALUE_LongDouble);
    data.boxedDouble = box;
    return 0;
}

template <class T>
int TBPValue<T>::setWideString(const uint16_t* units, unsigned count) {
    BoxedWide* box = new (std::nothrow) BoxedWide;
    if (!box) return qbmsg::OutOfMemory;
    for (unsigned i = 0; i < count; ++i)
        if (box->add(units[i]) != 0) {
            delete box;
            return qbmsg::OutOfMemory;
        }
    setKind(BPVALUE_WideString);
    data.wide = box;
    return 0;
}

template <class T>
int TBPValue<T>::setBoxed(int k, const TBPValue& inner, int64_t extraWord) {
    TBPValue* box = new (std::nothrow) TBPValue;
    if (!box) return qbmsg::OutOfMemory;
    if (int rc = box->copyFrom(inner)) {
        delete box;
        return rc;
    }
    setKind(k);
    data.value = box;
    extra = extraWord;
    return 0;
}

template <class T>
int TBPValue<T>::makeAggregate(int aggregateKind) {
    if (aggregateKind != BPVALUE_Class && aggregateKind != BPVALUE_Array) return qbmsg::BadArgument;
    BoxedItems* box = new (std::nothrow) BoxedItems;
    if (!box) return qbmsg::OutOfMemory;
    setKind(aggregateKind);
    data.items = box;
    return 0;
}

template <class T>
int TBPValue<T>::addItem(const TBPValue& item) {
    if (!hasItems() || !data.items) return qbmsg::BadArgument;
    TBPValue* copy = new (std::nothrow) TBPValue;
    if (!copy) return qbmsg::OutOfMemory;
    int rc = copy->copyFrom(item);
    if (rc == 0) rc = data.items->add(copy);
    if (rc != 0) delete copy;
    return rc;
}

template <class T>
int TBPValue<T>::toText(quernbase::QBString& out) const {
    switch (kind) {
    case BPVALUE_Void: return out.append("void");
    case BPVALUE_UnsignedInteger:
    case BPVALUE_UnsignedLong:
    case BPVALUE_UnsignedShort:
    case BPVALUE_UnsignedLongLong: return out.appendNumber(uint64_t(data.bits), 10);
    case BPVALUE_SignedInteger:
    case BPVALUE_SignedLong: return out.appendNumber(int64_t(int32_t(data.bits)), 10);
    case BPVALUE_SignedShort: return out.appendNumber(int64_t(int16_t(data.bits)), 10);
    case BPVALUE_SignedLongLong:
    case BPVALUE_Enumeration: return out.appendNumber(int64_t(data.bits), 10);
    case BPVALUE_MemberPointer: return out.appendNumber(int32_t(data.bits), 10);
    case BPVALUE_Character: {
        const char quoted[] = {'\'', char(data.bits), '\''};
        return out.append(quoted, 3);
    }
    case BPVALUE_WideCharacter: {
        if (int rc = out.append("L'")) return rc;
        if (int rc = out.append(char(data.bits & 0xFF))) return rc;
        return out.append('\'');
    }
    case BPVALUE_Boolean: return out.append(getBoolean() ? "true" : "false");
    case BPVALUE_BigNumber:
    case BPVALUE_String: return data.text ? out.append(data.text->text) : out.append("(null)");
    case BPVALUE_Float:
    case BPVALUE_Double:
    case BPVALUE_LongDouble: {
        char buffer[64];
        double number = kind == BPVALUE_Float ? double(data.f) : kind == BPVALUE_Double ? data.d
                                                                                       : getLongDouble();
        if (kind == BPVALUE_LongDouble && !data.boxedDouble) return out.append("(null)");
        std::snprintf(buffer, sizeof buffer, "%f", number);
        return out.append(buffer);
    }
    case BPVALUE_Pointer:
        if (!extra) return out.appendNumber(uint64_t(data.bits), 10);
        return data.value ? data.value->toText(out) : out.append("(null)");
    case BPVALUE_Reference:
    case BPVALUE_Union: return data.value ? data.value->toText(out) : out.append("(null)");
    default: return 0;
    }
}

template <class T>
const char* TBPValue<T>::kindName(int valueKind) {
    static const char* const names[] = {
        "BPVALUE_Void", "BPVALUE_UnsignedInteger", "BPVALUE_SignedInteger",
        "BPVALUE_UnsignedLong", "BPVALUE_SignedLong", "BPVALUE_UnsignedLongLong",
        "BPVALUE_SignedLongLong", "BPVALUE_UnsignedShort", "BPVALUE_SignedShort",
        "BPVALUE_BigNumber", "BPVALUE_Float", "BPVALUE_Double", "BPVALUE_LongDouble",
        "BPVALUE_Character", "BPVALUE_WideCharacter", "BPVALUE_Boolean", "BPVALUE_String",
        "BPVALUE_WideString", "BPVALUE_Enumeration", "BPVALUE_Union", "BPVALUE_Class",
        "BPVALUE_Array", "BPVALUE_Pointer", "BPVALUE_Reference", "BPVALUE_FunctionPointer",
        "BPVALUE_MemberPointer", "BPVALUE_Any"};
    return valueKind >= 0 && valueKind <= BPVALUE_LAST ? names[valueKind] : nullptr;
}

// The payload as the dump shows it: quoted characters and strings, \u escapes for wide ones.
template <class T>
int TBPValue<T>::appendPayload(quernbase::QBString& out) const {
    switch (kind) {
    case BPVALUE_WideCharacter: {
        char buffer[16];
        std::snprintf(buffer, sizeof buffer, "L'\\u%04X'", unsigned(data.bits & 0xFFFF));
        return out.append(buffer);
    }
    case BPVALUE_String:
        if (!data.text) return out.append("(null)");
        if (int rc = out.append('"')) return rc;
        if (int rc = out.append(data.text->text)) return rc;
        return out.append('"');
    case BPVALUE_WideString:
        return out.append(data.wide ? "L\"...\"" : "(null)");
    case BPVALUE_FunctionPointer:
        return out.append(data.symbol ? "function" : "(null)");
    case BPVALUE_Void:
    case BPVALUE_Any: return 0;
    default: return toText(out);
    }
}

template <class T>
int TBPValue<T>::dumpToString(quernbase::QBString& out, int indent, const char* label) const {
    if (indent > 200) return 0;
    if (int rc = out.pad(out.length() + unsigned(indent > 0 ? indent : 0))) return rc;
    if (label && *label) {
        out += label;
        out += "=";
    }
    const char* name = kindName(kind);
    if (!name) return out.append("***ERROR***\n");
    out += name;
    out += ":";
    if (kind != BPVALUE_Void && kind != BPVALUE_Any && !hasItems()) {
        out += " ";
        if (int rc = appendPayload(out)) return rc;
    }
    if (int rc = out.append('\n')) return rc;
    for (unsigned i = 0; i < getItemCount(); ++i)
        if (int rc = getItem(i)->dumpToString(out, indent + 2, nullptr)) return rc;
    return 0;
}
