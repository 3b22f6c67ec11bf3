// CPTypeInfo: the type of the C and C++ front end. It adds the attribute word to the generic
// type (storage class, cv, access, and the marks that analysis leaves on expressions) and holds
// all the type arithmetic analysis needs: normalisation, implicit conversions and their ranks,
// the usual arithmetic conversions with the constant values that ride along, and the text of a
// type as a refactoring writes it back into source.
//
// Every node of the tree embeds one by value, so the class is complete here; the operations
// are out of line in CPTypeInfo*.cpp. No operation logs a diagnostic: they answer 0, -1 for a
// conversion that doesn't exist, BadArgument for a wrong kind or a broken reference chain,
// NoSimpleConversion for a narrowing that only an explicit conversion may make, and the caller
// reports.
//
// Sub-types in records are shared and may be plain framework types (an argument list made by
// addArgument is one); the flag word of a sub-type is read through flagsOf, never by a cast.
#pragma once

#include "CPParseNodeType.h"
#include "CPSimpleTypeName.h"
#include "CPTypeInfoFlags.h"
#include "TBPTypeInfo.h"

class CPTypeInfo : public TBPTypeInfo<CPParseNodeType, CPSimpleTypeName> {
public:
    typedef TBPTypeInfo<CPParseNodeType, CPSimpleTypeName> Base;
    typedef Base::Tree Tree;
    typedef Base::Value Value;
    typedef Base::Symbol Symbol;
    typedef Base::SeenSet SeenSet;
    enum { ERR_NOCONVERSION = -1, RANK_EXACT = 10 };

    explicit CPTypeInfo(uint32_t typeKind = BPTYPE_Null) : Base(typeKind) {}
    CPTypeInfo(const CPTypeInfo& other) : Base(other), flags(other.flags) {}
    CPTypeInfo& operator=(const CPTypeInfo& other) {
        Base::operator=(other);
        flags = other.flags;
        return *this;
    }
    ~CPTypeInfo() override = default;
    // Copies any type; the flag word comes along when other has one.
    int assign(const Base& other);

    // The virtual interface, in its fixed order.
    bool operator==(const Base& other) const override;
    bool hasFlags() const override { return (flags & CPTYPE_AllFlags) != 0; }
    int getText(quernbase::QBString& out, const SeenSet& seen, bool normalize,
                bool noReturn) const override;
    using Base::getText;
    int dumpToString(quernbase::QBString& out, int indent, const char* label, bool deep,
                     bool showReferences) const override;
    using Base::dump;
    int getTemplateText(quernbase::QBString& out) const override;
    // This type becomes source, resolved through its reference links.
    virtual int copyResolved(const Base& source);
    bool isConst() const override { return hasFlag(CPTYPE_Const); }
    bool isVolatile() const override { return hasFlag(CPTYPE_Volatile); }

    // ---- The attribute word ----
    uint32_t getFlags() const { return flags; }
    void setFlags(uint32_t f) { flags = f & CPTYPE_AllFlags; }
    void addFlags(uint32_t f) { flags |= f & CPTYPE_AllFlags; }
    void clearFlags(uint32_t f) { flags &= ~f; }
    void setFlag(uint32_t bit, bool on) { on ? addFlags(bit) : clearFlags(bit); }
    // The flags of this type and of every link of its reference chain.
    uint32_t getChainFlags() const;
    // A bit set here or on any link of the chain.
    bool hasFlag(uint32_t bit) const { return (getChainFlags() & bit) != 0; }
    // The word of any type: its own flags, 0 for a type that has none.
    static uint32_t flagsOf(const Base* t);
    // The print name of one bit ("LValue", "Const"); null for anything else.
    static const char* flagName(uint32_t bit);

    bool isLValue() const;  // also through typedef links
    bool isAuto() const { return hasFlag(CPTYPE_Auto); }
    bool isRegister() const { return hasFlag(CPTYPE_Register); }
    bool isRestrict() const { return hasFlag(CPTYPE_Restrict); }
    bool isStatic() const { return hasFlag(CPTYPE_Static); }
    bool isExtern() const { return hasFlag(CPTYPE_Extern); }
    bool isExport() const { return hasFlag(CPTYPE_Export); }
    bool isMutable() const { return hasFlag(CPTYPE_Mutable); }
    bool isInline() const { return hasFlag(CPTYPE_Inline); }
    bool isVirtual() const { return hasFlag(CPTYPE_Virtual); }
    bool isAbstract() const { return hasFlag(CPTYPE_Abstract); }
    bool isExplicit() const { return hasFlag(CPTYPE_Explicit); }
    bool isPrivate() const { return hasFlag(CPTYPE_Private); }
    bool isProtected() const { return hasFlag(CPTYPE_Protected); }
    bool isPublic() const { return hasFlag(CPTYPE_Public); }
    bool isFriend() const { return hasFlag(CPTYPE_Friend); }
    bool isTypedef() const { return hasFlag(CPTYPE_Typedef); }
    // This type only: an assignment marks the expression node, not what it refers to.
    bool isAssignedTo() const { return (flags & CPTYPE_AssignedTo) != 0; }
    bool isNoImplicitConversion() const { return hasFlag(CPTYPE_NoImplicitConversion); }
    bool isFunctionCalled() const { return hasFlag(CPTYPE_FunctionCalled); }
    bool isTemplateNotInstantiated() const { return hasFlag(CPTYPE_TemplateNotInstantiated); }
    // Marks this type; with followReferences the end of its chain as well.
    void setFunctionCalled(bool value, bool followReferences);

    // ---- Type operations (CPTypeInfo.cpp). 0, or BadArgument for a wrong kind or dead end ----
    // Replaces this type by the end of its chain, through typedefs when asked; the flags of
    // every link are OR-ed in and this type's value stays.
    int resolve(bool followTypedefs);
    int stripVariable();
    int stripTypedef();
    int normalize();
    // A callable becomes what a call of it gives: the return type, or a constructor's class.
    int toFunctionType();
    int arrayToPointer();

    bool isCallable() const;
    bool isFunctionPointer() const;
    bool isFunctionReference() const;
    bool isMemberFunctionPointer() const;
    bool isMemberFunction() const;
    bool isConstructor() const;
    bool isNullPointerConstant() const;
    bool isStringType() const;
    bool containsAny(bool deep) const;
    static bool containsAny(const Base* t, bool deep);
    // derived is base or has it among its bases, private and protected ones included; out
    // (may be null) gets the type of the class found.
    static bool isDerivedFrom(const Base* derived, const Base* base, CPTypeInfo* out);
    // The class a template ID stands for (through its template declaration), or null.
    static const Base* classOfTemplateID(const Base* id);
    static bool isLinkKind(uint32_t k) { return isLink(k); }

    // ---- Conversions (CPTypeInfoConvert.cpp, CPTypeInfoImplicit.cpp) ----
    // Tests and performs the conversion of type to the simple type name, value included.
    // 0, -1, or NoSimpleConversion for a narrowing that needs explicitly.
    static int convertSimple(CPTypeInfo& type, CPSimpleTypeName name, Tree* node, bool explicitly);
    // Brings both operands to their common arithmetic type. 0 or -1.
    static int usualArithmetic(CPTypeInfo& left, CPTypeInfo& right, Tree* leftNode, Tree* rightNode);
    // -1 for no match, else 10 and more; higher is better.
    static int conversionRank(const Base* target, const Base* source, uint32_t flags);
    // The string rule: 10 when a character array constant may initialise target, else -1.
    static int simpleRank(const Base* target, const Base* source, uint32_t flags);
    static bool canConvert(const Base* source, const Base* target, Tree* node, uint32_t flags);
    // The conversion function of classType's class (or its bases) that best gives target;
    // classType becomes its return type. 0 with *found set, or -1.
    static int findConversionFunction(CPTypeInfo& classType, const Base* target, Tree* node,
                                      uint32_t flags, Symbol** found);
    static int pointerConversion(const Base* target, const Base* source, Tree* node, uint32_t flags);
    static bool userConversion(const Base* source, const Base* target, Tree* node, uint32_t flags);
    static bool compatibleFunctionPointers(const Base* target, const Base* source, bool strict);

    // ---- Text (CPTypeInfoText.cpp) ----
    // The mangled form of __FUNCDNAME__.
    int getDecoratedName(quernbase::QBString& out) const;
    static const char* simpleTypeText(CPSimpleTypeName name);
    // What wchar_t means where node is: the simple type a configuration header gave
    // __wchar_t, else wchar_t itself.
    static CPSimpleTypeName getWideCharType(const Tree* node);

protected:
    uint32_t flags = 0;

    int appendBody(quernbase::QBString& out, const SeenSet& seen, bool normalize, bool noReturn) const;
    int appendOwnerScope(quernbase::QBString& out) const;
    int appendFunctionText(quernbase::QBString& out, const SeenSet& seen, bool normalize,
                           bool noReturn) const;
    int appendFunctionPointer(quernbase::QBString& out, const Base& function, const SeenSet& seen,
                              bool normalize) const;
    // Makes this a link to target with the value it showed before, own or along its chain.
    int relinkKeepingValue(Base* target);
};
