#include <gtest/gtest.h>

#include "QBArray.h"
#include "QBString.h"

using quernbase::QBAllocator;
using quernbase::QBArray;
using quernbase::QBLSTR;
using quernbase::QBString;

TEST(QBStringNullAndEmpty, NullIsNotEmptyUnderEqualityButBothAreEmpty) {
    QBString null, empty("");
    EXPECT_FALSE(null == empty);
    EXPECT_TRUE(null.equalToIgnoreNull(empty));
    EXPECT_TRUE(null.isEmpty());
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_TRUE(null.isNull());
    EXPECT_FALSE(empty.isNull());
    EXPECT_EQ(sizeof(QBString), sizeof(void*));
}

TEST(QBStringNullAndEmpty, CharPointerEquality) {
    QBString null, empty("");
    const char* nothing = nullptr;
    EXPECT_FALSE(empty == nothing);  // lengths agree, pointer test fails
    EXPECT_FALSE(null == "");
    EXPECT_TRUE(null == nothing);
    EXPECT_TRUE(empty == "");  // both non-null with length 0
    EXPECT_TRUE(QBString("abc") == "abc");
    EXPECT_FALSE(QBString("abc") == "abd");
    EXPECT_FALSE(QBString("abc") == "ab");
}

TEST(QBStringNullAndEmpty, ConstructionFromNullTextIsNull) {
    const char* nothing = nullptr;
    EXPECT_TRUE(QBString(nothing).isNull());
    EXPECT_TRUE(QBString(nothing, 3).isNull());
    EXPECT_TRUE(QBString(static_cast<const QBLSTR*>(nullptr)).isNull());
    QBString cap(size_t(40));
    EXPECT_FALSE(cap.isNull());
    EXPECT_EQ(cap.length(), 0u);
    EXPECT_GE(cap.capacity(), 40u);
}

TEST(QBStringNullAndEmpty, MakeFamilies) {
    QBString s;
    EXPECT_EQ(s.makeNotNull(), 0);
    EXPECT_FALSE(s.isNull());
    s = "x";
    s.makeNotNull();
    EXPECT_TRUE(s == "x");
    s.makeEmpty();
    EXPECT_FALSE(s.isNull());
    EXPECT_EQ(s.length(), 0u);
    s.makeNull();
    EXPECT_TRUE(s.isNull());
}

TEST(QBStringCopyOnWrite, WritingThroughOneOwnerLeavesTheOther) {
    QBString a("shared text");
    QBString b(a);
    EXPECT_TRUE(a.sameBody(b));
    b.get_nonconst()[0] = 'S';
    EXPECT_TRUE(a == "shared text");
    EXPECT_TRUE(b == "Shared text");
    EXPECT_FALSE(a.sameBody(b));

    QBString c = a;
    c[1] = 'H';
    EXPECT_TRUE(a == "shared text");
    EXPECT_TRUE(c == "sHared text");

    QBString d = a;
    d.append("!");
    d.upcase();
    EXPECT_TRUE(a == "shared text");
    EXPECT_TRUE(d == "SHARED TEXT!");
}

TEST(QBStringCopyOnWrite, ConstAccessDoesNotUnshare) {
    QBString a("abc");
    const QBString b(a);
    EXPECT_EQ(b[1], 'b');
    EXPECT_EQ(b.get(), a.get());
    EXPECT_EQ(b[10], 0);
    EXPECT_EQ(QBString().get(), nullptr);
}

TEST(QBStringCopyOnWrite, ManySharersStillCopyCorrectly) {
    QBString a("x");
    QBArray<QBString> many;
    for (int i = 0; i < 70000; ++i) ASSERT_EQ(many.add(a), 0);
    for (unsigned i = 0; i < many.count(); i += 9999) EXPECT_TRUE(many[i] == "x");
    many[5].append("y");
    EXPECT_TRUE(a == "x");
}

TEST(QBStringEdit, AppendInsertRemoveReplace) {
    QBString s;
    s.append("abc");
    s.append('d');
    s.append(42);
    EXPECT_TRUE(s == "abcd42");
    s.insert("XY", 2u);
    EXPECT_TRUE(s == "abXYcd42");
    s.remove(2, 2);
    EXPECT_TRUE(s == "abcd42");
    s.replace(1, 2, "---");
    EXPECT_TRUE(s == "a---d42");
    s.prepend('>');
    EXPECT_TRUE(s == ">a---d42");
    s.remove(100, 3);
    EXPECT_TRUE(s == ">a---d42");
    s.append(s);  // appending itself must read the old text
    EXPECT_TRUE(s == ">a---d42>a---d42");
    s.insert(s, 1u);
    EXPECT_TRUE(s == ">>a---d42>a---d42a---d42>a---d42");
}

TEST(QBStringEdit, AppendToNullRules) {
    QBString s;
    s += QBString();
    EXPECT_TRUE(s.isNull());
    QBString e("");
    s += e;
    EXPECT_TRUE(s.sameBody(e));
    EXPECT_TRUE((QBString("ab") + "cd") == "abcd");
}

TEST(QBStringEdit, Numbers) {
    QBString s;
    s.appendNumber(int32_t(-2147483647 - 1), 10);
    s.append(' ');
    s.appendNumber(uint64_t(18446744073709551615ull), 10);
    s.append(' ');
    s.appendNumber(int64_t(-5), 10);
    s.append(' ');
    s.appendNumber(uint32_t(255), 16);
    EXPECT_TRUE(s == "-2147483648 18446744073709551615 -5 ff") << s.get();
    EXPECT_EQ(QBString("  -123x").toInt(), -123);
    EXPECT_EQ(QBString("0x1F").toInt(true, true), 31);
    EXPECT_EQ(QBString(7).toInt(), 7);
}

TEST(QBStringEdit, MaybeAppendAndPrepend) {
    QBString s;
    s.maybeAppend('/', false);
    EXPECT_TRUE(s.isEmpty());
    s.maybeAppend('/', true);
    EXPECT_TRUE(s == "/");
    s = "dir";
    s.maybeAppendFileSep();
    s.maybeAppendFileSep();
    EXPECT_TRUE(s == "dir/");
    s.maybePrepend('/', true);
    s.maybePrepend('/', true);
    EXPECT_TRUE(s == "/dir/");
}

TEST(QBStringEdit, ReplaceAllStripCaseAndLength) {
    QBString s("a.b.c");
    s.replaceAll('.', '/');
    EXPECT_TRUE(s == "a/b/c");
    s.replaceAll("/", "::");
    EXPECT_TRUE(s == "a::b::c");
    s.replaceAll("A::", "x", 0);
    EXPECT_TRUE(s == "xb::c");
    QBString t("  padded\t ");
    t.strip(" \t", 'B');
    EXPECT_TRUE(t == "padded");
    t.strip('p', 'L');
    EXPECT_TRUE(t == "added");
    t.pad(7, '.');
    EXPECT_TRUE(t == "added..");
    t.trim(2);
    EXPECT_TRUE(t == "added");
    t.surround('[', ']');
    EXPECT_TRUE(t == "[added]");
    t.setLength(3);
    EXPECT_TRUE(t == "[ad");
    t.setLength(5, '*');
    EXPECT_TRUE(t == "[ad**");
    EXPECT_TRUE(QBString("hello world").toCap() == "Hello World");
    EXPECT_TRUE(QBString("MiXed").toLowcase() == "mixed");
    EXPECT_TRUE(QBString("MiXed").toUpcase() == "MIXED");
}

TEST(QBStringEdit, ResetLengthAfterCalleeWrote) {
    QBString s(size_t(16));
    char* p = s.get_nonconst();
    std::strcpy(p, "written");
    s.resetLength();
    EXPECT_EQ(s.length(), 7u);
    EXPECT_TRUE(s == "written");
}

TEST(QBStringEdit, ExternalBufferIsWrittenInPlaceUntilItOverflows) {
    char buffer[8] = "abc";
    QBString s;
    ASSERT_EQ(s.linkToExternalBuffer(buffer, sizeof buffer, 3), 0);
    EXPECT_TRUE(s.isUsingExternalBuffer());
    EXPECT_EQ(s.capacity(), 7u);
    s.append("de");
    EXPECT_STREQ(buffer, "abcde");
    s.append("fghij");  // does not fit: moves out
    EXPECT_FALSE(s.isUsingExternalBuffer());
    EXPECT_STREQ(buffer, "abcde");
    EXPECT_TRUE(s == "abcdefghij");
    char other[4] = "xy";
    s.linkToExternalBuffer(other, sizeof other, 2);
    s.breakLinkToExternalBuffer();
    EXPECT_FALSE(s.isUsingExternalBuffer());
    EXPECT_TRUE(s == "xy");
}

TEST(QBStringCompare, CaseFlagsAndPrefixes) {
    QBString s("File.CPP");
    EXPECT_TRUE(s.endsWith(".cpp", 0));
    EXPECT_FALSE(s.endsWith(".cpp", 1));
    EXPECT_TRUE(s.beginsWith(QBString("File")));
    EXPECT_FALSE(s.beginsWith(QBString("file")));
    EXPECT_TRUE(s.beginsWith("file", 0));
    EXPECT_LT(QBString("abc").compare("abd"), 0);
    EXPECT_GT(QBString("abcd").compare("abc"), 0);
    EXPECT_EQ(QBString("ABC").compare("abc", 0), 0);
    EXPECT_TRUE(QBString("a") < QBString("b"));
    EXPECT_TRUE(QBString("x") == 'x');
    EXPECT_FALSE(QBString("xx") == 'x');
    EXPECT_TRUE(QBString().equalToIgnoreNull(QBString()));
    EXPECT_FALSE(QBString("a").equalToIgnoreNull(QBString("A")));
    EXPECT_TRUE(QBString("a").equalToIgnoreNull(QBString("A"), 0));
}

TEST(QBStringSearch, PosCposCount) {
    QBString s("one two one");
    EXPECT_EQ(s.pos("one"), 0);
    EXPECT_EQ(s.pos("one", 1), 8);
    EXPECT_LT(s.pos("three"), 0);
    EXPECT_EQ(s.pos("TWO", 0, 0), 4);
    EXPECT_EQ(s.cpos('t'), 4);
    EXPECT_EQ(s.cpos('z'), -3022);
    EXPECT_EQ(s.cpos("wn", 2), 5);
    EXPECT_EQ(s.countAll('o'), 3);
    EXPECT_EQ(s.countAll("one"), 2);
}

TEST(QBStringPieces, SubParseSplit) {
    QBString s("a;b;;c");
    EXPECT_TRUE(s.sub(2, 1) == "b");
    EXPECT_TRUE(s.sub(4) == ";c");
    EXPECT_TRUE(s.sub(99).isNull());
    QBString rest;
    EXPECT_TRUE(s.parse(';', rest) == "a");
    EXPECT_TRUE(rest == "b;;c");
    EXPECT_TRUE(rest.parse('#', rest) == "b;;c");
    EXPECT_TRUE(rest.isNull());
    QBArray<QBString> all, nonEmpty;
    s.split(';', all, true);
    s.split(';', nonEmpty, false);
    ASSERT_EQ(all.count(), 4u);
    EXPECT_TRUE(all[2] == "");
    ASSERT_EQ(nonEmpty.count(), 3u);
    EXPECT_TRUE(nonEmpty[2] == "c");
}

TEST(QBStringAccess, ExportTruncatesAndTerminates) {
    QBString s("abcdef");
    char buf[4];
    EXPECT_EQ(s.exportStr(buf, sizeof buf), 3);
    EXPECT_STREQ(buf, "abc");
    alignas(int) char raw[sizeof(int) + 8];
    QBLSTR* l = reinterpret_cast<QBLSTR*>(raw);
    EXPECT_EQ(s.export_lstr(l, 4), 4);
    EXPECT_EQ(l->length, 4);
    EXPECT_TRUE(QBString(l) == "abcd");
    EXPECT_EQ(s.first_char(), 'a');
    EXPECT_EQ(s.last_char(), 'f');
    EXPECT_EQ(QBString("").first_char(), 0);
}

TEST(QBStringHash, CaseInsensitiveAndNullIsZero) {
    EXPECT_EQ(QBString().hash(), 0u);
    EXPECT_EQ(QBString("Name").hash(), QBString("nAME").hash());
    EXPECT_NE(QBString("name").hash(), QBString("game").hash());
    EXPECT_EQ(QBString::hashString(QBString("x")), QBString("X").hash());
}

TEST(QBStringOutOfMemory, FailedWritesLeaveTheStringAsItWas) {
    QBString s("keep");
    QBString shared(s);
    QBAllocator::failAllocationAfter(1);
    EXPECT_EQ(shared.append(" more text that needs a bigger body"), -8);
    EXPECT_TRUE(shared == "keep");
    EXPECT_TRUE(shared.sameBody(s));
    QBAllocator::failAllocationAfter(1);
    EXPECT_EQ(shared.set("another"), -8);
    EXPECT_TRUE(shared == "keep");
    QBAllocator::failAllocationAfter(1);
    EXPECT_EQ(shared.get_nonconst(), nullptr);
    EXPECT_TRUE(s == "keep");
    QBAllocator::failAllocationAfter(0);
}

TEST(QBStringGrowth, LengtheningByAnyMemberGrowsGeometrically) {
    // Lengthening by one character at a time must not copy the text each time: count the moves
    // of the body by watching its address.
    QBString s("");
    int moves = 0;
    const char* last = s.get();
    for (unsigned n = 1; n <= 20000; ++n) {
        ASSERT_EQ(s.setLength(n, ' '), 0);
        if (s.get() != last) ++moves;
        last = s.get();
    }
    EXPECT_LT(moves, 40);
    QBString shared(s);
    ASSERT_EQ(shared.setLength(20000), 0);  // same length: stays shared
    EXPECT_TRUE(shared.sameBody(s));
}
