// The generic type model. A type is a tagged value: a kind, a record whose layout depends on
// the kind, and an optional constant value. Types are not interned: every node embeds one, and
// a use shares a declaration's type through a TypeReference link to the type embedded in the
// declaring node.
//
// Ownership: a type owns its record and its value. Sub-types named in a record (element types,
// members, arguments) are shared, never owned, except the argument list a function or template
// makes for itself on its first addArgument. A record's symbol holds a count.
//
// Every accessor of a kind's field first walks TypeReference and TemplateParameterTypeReference
// links to the type they end at; a wrong kind reads as null or 0 and a setter answers BadArgument.
// Links never close into a cycle: setReference refuses one, and the walk is bounded anyway.
#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <new>

#include "BPRefCountObject.h"
#include "QBArray.h"
#include "QBHashTable.h"
#include "QBMessageCodes.h"
#include "QBString.h"
#include "TBPParseTree.h"
#include "TBPValue.h"

enum BPTypeKind {
    BPTYPE_Null = 0,
    BPTYPE_None = 1,
    BPTYPE_Any = 2,
    BPTYPE_TypeReference = 3,
    BPTYPE_Simple = 4,
    BPTYPE_Array = 5,
    BPTYPE_Pointer = 6,
    BPTYPE_Reference = 7,
    BPTYPE_Class = 8,
    BPTYPE_Union = 9,
    BPTYPE_Namespace = 10,
    BPTYPE_Typedef = 11,
    BPTYPE_ArgumentList = 12,
    BPTYPE_Function = 13,
    BPTYPE_Variable = 14,
    BPTYPE_Statement = 15,
    BPTYPE_TemplateID = 16,
    BPTYPE_TemplateDeclaration = 17,
    BPTYPE_TemplateParameter = 18,
    BPTYPE_TemplateParameterTypeReference = 19,
    BPTYPE_MemberPointer = 20,
    BPTYPE_Enumeration = 21,
    BPTYPE_Range = 22,
    BPTYPE_LAST = BPTYPE_Range
};

// Flag word of a variable record.
enum BPVariableFlags { BPVARIABLE_CONST = 0x10000, BPVARIABLE_TEMPLATE = 0x20000 };

template <class T, class S>
class TBPTypeInfo : public quernbase::QBMemory {
public:
    typedef TBPSymbolInfo<T> Symbol;
    typedef TBPParseTree<T> Tree;
    typedef TBPValue<T> Value;
    typedef quernbase::QBArray<TBPTypeInfo*> TypeList;
    typedef quernbase::QBArray<quernbase::QBString> NameList;
    typedef quernbase::QBHashTable<quernbase::QBString, bool> SeenSet;
    enum { MAX_DUMP_INDENT = 200 };

    explicit TBPTypeInfo(uint32_t typeKind = BPTYPE_Null) : kind(typeKind) {}
    TBPTypeInfo(const TBPTypeInfo& other) : kind(BPTYPE_Null) { copyFrom(other); }
    TBPTypeInfo& operator=(const TBPTypeInfo& other) {
        copyFrom(other);
        return *this;
    }
    virtual ~TBPTypeInfo() {
        freeRecord();
        delete value;
    }

    // The virtual interface, in its fixed order.
    virtual bool operator==(const TBPTypeInfo& other) const;
    virtual bool hasFlags() const { return false; }
    virtual int getText(quernbase::QBString& out, const SeenSet& seen, bool normalize,
                        bool noReturn) const;
    virtual int getText(quernbase::QBString& out, bool normalize, bool noReturn) const {
        SeenSet seen(quernbase::QBString::hashString);
        return getText(out, seen, normalize, noReturn);
    }
    virtual int dumpToString(quernbase::QBString& out, int indent, const char* label, bool deep,
                             bool showReferences) const;
    virtual void dump(int indent, const char* label, bool deep, bool showReferences) const {
        quernbase::QBString text("");
        dumpToString(text, indent, label, deep, showReferences);
        std::fputs(text.isNull() ? "" : text.get(), stdout);
    }
    // "<arg, arg>" of a template ID, a template declaration, or a class or function made from one.
    virtual int getTemplateText(quernbase::QBString& out) const;
    // Qualifiers, which the language's type keeps in its flag word; none in the base.
    virtual bool isConst() const { return false; }
    virtual bool isVolatile() const { return false; }

    bool operator!=(const TBPTypeInfo& other) const { return !(*this == other); }
    // Copies kind, value and record; arrays are duplicated, sub-types shared, symbols counted.
    int copyFrom(const TBPTypeInfo& other);

    // Kind. getKind follows reference links; getRawKind doesn't.
    uint32_t getRawKind() const { return kind; }
    uint32_t getKind() const { return resolved()->kind; }
    bool isReferenceKind() const { return isLink(kind); }
    // Frees the record and takes the new kind; the value goes unless kept.
    void setKind(uint32_t typeKind, bool keepValue = false);
    // Makes this a TypeReference to target, skipping plain links of target's chain.
    int setReference(TBPTypeInfo* target, bool keepValue = false);
    // The raw link of a reference kind, or null.
    TBPTypeInfo* getReferenceTarget() const { return isLink(kind) ? static_cast<TBPTypeInfo*>(record) : nullptr; }
    // The end of the reference chain; this type when it is no link.
    const TBPTypeInfo* resolved() const;
    TBPTypeInfo* resolved() { return const_cast<TBPTypeInfo*>(static_cast<const TBPTypeInfo*>(this)->resolved()); }

    // Constant value. setValue copies; null frees it.
    Value* getValue() const;
    int setValue(const Value* newValue);

    // Names and scopes.
    Symbol* getSymbol() const;
    int setSymbol(Symbol* symbol);
    quernbase::QBString getName() const;
    Tree* getScopeNode() const;
    Tree* getOwnerScope() const {
        Symbol* symbol = getSymbol();
        return symbol ? symbol->getScope() : nullptr;
    }

    // Simple.
    S getSimpleName() const { const SimpleRecord* r = read<SimpleRecord>({BPTYPE_Simple}); return r ? r->name : S(0); }
    int setSimpleName(S name) { return edit<SimpleRecord>({BPTYPE_Simple}, [&](SimpleRecord& r) { r.name = name; }); }
    Tree* getSimpleScope() const { const SimpleRecord* r = read<SimpleRecord>({BPTYPE_Simple}); return r ? r->scope : nullptr; }
    int setSimpleScope(Tree* scope) { return edit<SimpleRecord>({BPTYPE_Simple}, [&](SimpleRecord& r) { r.scope = scope; }); }

    // Array.
    TBPTypeInfo* getElementType() const { const ArrayRecord* r = read<ArrayRecord>({BPTYPE_Array}); return r ? r->elementType : nullptr; }
    int setElementType(TBPTypeInfo* t) { return edit<ArrayRecord>({BPTYPE_Array}, [&](ArrayRecord& r) { r.elementType = t; }); }
    TBPTypeInfo* getIndexType() const { const ArrayRecord* r = read<ArrayRecord>({BPTYPE_Array}); return r ? r->indexType : nullptr; }
    int setIndexType(TBPTypeInfo* t) { return edit<ArrayRecord>({BPTYPE_Array}, [&](ArrayRecord& r) { r.indexType = t; }); }
    int64_t getStart() const { const ArrayRecord* r = read<ArrayRecord>({BPTYPE_Array}); return r ? r->start : 0; }
    int setStart(int64_t n) { return edit<ArrayRecord>({BPTYPE_Array}, [&](ArrayRecord& r) { r.start = n; }); }
    // 0 is an unknown bound.
    int64_t getSize() const { const ArrayRecord* r = read<ArrayRecord>({BPTYPE_Array}); return r ? r->size : 0; }
    int setSize(int64_t n) { return edit<ArrayRecord>({BPTYPE_Array}, [&](ArrayRecord& r) { r.size = n; }); }

    // Pointer and reference: the target is the record itself.
    TBPTypeInfo* getPointedType() const {
        const TBPTypeInfo* t = resolved();
        return t->kind == BPTYPE_Pointer || t->kind == BPTYPE_Reference ? static_cast<TBPTypeInfo*>(t->record) : nullptr;
    }
    int setPointedType(TBPTypeInfo* target) {
        TBPTypeInfo* t = resolved();
        if (t->kind != BPTYPE_Pointer && t->kind != BPTYPE_Reference) return qbmsg::BadArgument;
        t->record = target;
        return 0;
    }

    // Class, union, enumeration (and namespace members).
    unsigned getParentCount() const { return countOf(&ClassRecord::parents, {BPTYPE_Class}); }
    TBPTypeInfo* getParent(unsigned i) const { return itemOf(&ClassRecord::parents, i, {BPTYPE_Class}); }
    int addParent(TBPTypeInfo* t) { return append(&ClassRecord::parents, t, {BPTYPE_Class}); }
    unsigned getDerivationCount() const { return countOf(&ClassRecord::derivations, {BPTYPE_Class, BPTYPE_Enumeration}); }
    TBPTypeInfo* getDerivation(unsigned i) const { return itemOf(&ClassRecord::derivations, i, {BPTYPE_Class, BPTYPE_Enumeration}); }
    int addDerivation(TBPTypeInfo* t) { return append(&ClassRecord::derivations, t, {BPTYPE_Class, BPTYPE_Enumeration}); }
    unsigned getMemberCount() const { return countOf(&ClassRecord::members, {BPTYPE_Class, BPTYPE_Union, BPTYPE_Namespace, BPTYPE_Enumeration}); }
    TBPTypeInfo* getMember(unsigned i) const { return itemOf(&ClassRecord::members, i, {BPTYPE_Class, BPTYPE_Union, BPTYPE_Namespace, BPTYPE_Enumeration}); }
    int addMember(TBPTypeInfo* t) { return append(&ClassRecord::members, t, {BPTYPE_Class, BPTYPE_Union, BPTYPE_Namespace, BPTYPE_Enumeration}); }
    unsigned getFriendCount() const { return countOf(&ClassRecord::friends, {BPTYPE_Class, BPTYPE_Union}); }
    TBPTypeInfo* getFriend(unsigned i) const { return itemOf(&ClassRecord::friends, i, {BPTYPE_Class, BPTYPE_Union}); }
    int addFriend(TBPTypeInfo* t) { return append(&ClassRecord::friends, t, {BPTYPE_Class, BPTYPE_Union}); }
    // The template a class or function is declared by, or the one a template ID names.
    TBPTypeInfo* getTemplateType() const;
    int setTemplateType(TBPTypeInfo* t);
    // The template ID a class is an instance of.
    TBPTypeInfo* getTemplateID() const { const ClassRecord* r = read<ClassRecord>({BPTYPE_Class, BPTYPE_Union}); return r ? r->templateID : nullptr; }
    int setTemplateID(TBPTypeInfo* t) { return edit<ClassRecord>({BPTYPE_Class, BPTYPE_Union}, [&](ClassRecord& r) { r.templateID = t; }); }

    // Typedef.
    TBPTypeInfo* getAliasedType() const { const TypedefRecord* r = read<TypedefRecord>({BPTYPE_Typedef}); return r ? r->aliasedType : nullptr; }
    int setAliasedType(TBPTypeInfo* t) { return edit<TypedefRecord>({BPTYPE_Typedef}, [&](TypedefRecord& r) { r.aliasedType = t; }); }

    // Arguments: of an argument list itself, of a function or template declaration through
    // its list, and of a template ID.
    TBPTypeInfo* getArguments() const;
    int setArguments(TBPTypeInfo* list);
    unsigned getArgumentCount() const;
    TBPTypeInfo* getArgumentType(unsigned i) const;
    quernbase::QBString getArgumentName(unsigned i) const;
    TBPTypeInfo* getArgumentDefault(unsigned i) const;
    int addArgument(const quernbase::QBString& name, TBPTypeInfo* type, TBPTypeInfo* defaultType);
    TBPTypeInfo* getOwner() const { const ArgumentListRecord* r = read<ArgumentListRecord>({BPTYPE_ArgumentList}); return r ? r->owner : nullptr; }
    int setOwner(TBPTypeInfo* t) { return edit<ArgumentListRecord>({BPTYPE_ArgumentList}, [&](ArgumentListRecord& r) { r.owner = t; }); }

    // Function.
    TBPTypeInfo* getReturnType() const { const FunctionRecord* r = read<FunctionRecord>({BPTYPE_Function}); return r ? r->returnType : nullptr; }
    int setReturnType(TBPTypeInfo* t) { return edit<FunctionRecord>({BPTYPE_Function}, [&](FunctionRecord& r) { r.returnType = t; }); }
    // Throw specifications of a function, or exceptions of a statement.
    unsigned getExceptionCount() const;
    TBPTypeInfo* getException(unsigned i) const;
    int addException(TBPTypeInfo* t);
    // Parts of a function (initializers, body, handlers) or inner types of a statement.
    unsigned getBodyTypeCount() const;
    TBPTypeInfo* getBodyType(unsigned i) const;
    int addBodyType(TBPTypeInfo* t);
    void clearBodyTypes();

    // Variable.
    TBPTypeInfo* getVariableType() const { const VariableRecord* r = read<VariableRecord>({BPTYPE_Variable}); return r ? r->variableType : nullptr; }
    int setVariableType(TBPTypeInfo* t) { return edit<VariableRecord>({BPTYPE_Variable}, [&](VariableRecord& r) { r.variableType = t; }); }
    TBPTypeInfo* getInitializerType() const { const VariableRecord* r = read<VariableRecord>({BPTYPE_Variable}); return r ? r->initializerType : nullptr; }
    int setInitializerType(TBPTypeInfo* t) { return edit<VariableRecord>({BPTYPE_Variable}, [&](VariableRecord& r) { r.initializerType = t; }); }
    uint32_t getVariableFlags() const { const VariableRecord* r = read<VariableRecord>({BPTYPE_Variable}); return r ? r->flags : 0; }
    int setVariableFlags(uint32_t f) { return edit<VariableRecord>({BPTYPE_Variable}, [&](VariableRecord& r) { r.flags = f; }); }
    quernbase::QBString getTypeName() const { const VariableRecord* r = read<VariableRecord>({BPTYPE_Variable}); return r ? r->typeName : quernbase::QBString(); }
    int setTypeName(const quernbase::QBString& s) { return edit<VariableRecord>({BPTYPE_Variable}, [&](VariableRecord& r) { r.typeName = s; }); }
    TBPTypeInfo* getTemplateParameter() const { const VariableRecord* r = read<VariableRecord>({BPTYPE_Variable}); return r ? r->templateParameter : nullptr; }
    int setTemplateParameter(TBPTypeInfo* t) { return edit<VariableRecord>({BPTYPE_Variable}, [&](VariableRecord& r) { r.templateParameter = t; }); }

    // Statement.
    quernbase::QBString getStatementName() const { const StatementRecord* r = read<StatementRecord>({BPTYPE_Statement}); return r ? r->name : quernbase::QBString(); }
    int setStatementName(const quernbase::QBString& s) { return edit<StatementRecord>({BPTYPE_Statement}, [&](StatementRecord& r) { r.name = s; }); }
    unsigned getLabelCount() const { return countOf(&StatementRecord::labels, {BPTYPE_Statement}); }
    TBPTypeInfo* getLabel(unsigned i) const { return itemOf(&StatementRecord::labels, i, {BPTYPE_Statement}); }
    int addLabel(TBPTypeInfo* t) { return append(&StatementRecord::labels, t, {BPTYPE_Statement}); }

    // Template ID and template declaration: the tree node they stand for.
    Tree* getNode() const;
    int setNode(Tree* node);

    // Template declaration.
    TBPTypeInfo* getDeclaredType() const { const TemplateRecord* r = read<TemplateRecord>({BPTYPE_TemplateDeclaration}); return r ? r->declaredType : nullptr; }
    int setDeclaredType(TBPTypeInfo* t) { return edit<TemplateRecord>({BPTYPE_TemplateDeclaration}, [&](TemplateRecord& r) { r.declaredType = t; }); }
    TBPTypeInfo* getParentTemplate() const { const TemplateRecord* r = read<TemplateRecord>({BPTYPE_TemplateDeclaration}); return r ? r->parentTemplate : nullptr; }
    int setParentTemplate(TBPTypeInfo* t) { return edit<TemplateRecord>({BPTYPE_TemplateDeclaration}, [&](TemplateRecord& r) { r.parentTemplate = t; }); }
    TBPTypeInfo* getSpecializationOf() const { const TemplateRecord* r = read<TemplateRecord>({BPTYPE_TemplateDeclaration}); return r ? r->specializationOf : nullptr; }
    int setSpecializationOf(TBPTypeInfo* t) { return edit<TemplateRecord>({BPTYPE_TemplateDeclaration}, [&](TemplateRecord& r) { r.specializationOf = t; }); }

    // Template parameter.
    TBPTypeInfo* getDeclaration() const { const ParameterRecord* r = read<ParameterRecord>({BPTYPE_TemplateParameter}); return r ? r->declaration : nullptr; }
    int setDeclaration(TBPTypeInfo* t) { return edit<ParameterRecord>({BPTYPE_TemplateParameter}, [&](ParameterRecord& r) { r.declaration = t; }); }
    TBPTypeInfo* getParameterType() const { const ParameterRecord* r = read<ParameterRecord>({BPTYPE_TemplateParameter}); return r ? r->parameterType : nullptr; }
    int setParameterType(TBPTypeInfo* t) { return edit<ParameterRecord>({BPTYPE_TemplateParameter}, [&](ParameterRecord& r) { r.parameterType = t; }); }
    TBPTypeInfo* getDefaultType() const { const ParameterRecord* r = read<ParameterRecord>({BPTYPE_TemplateParameter}); return r ? r->defaultType : nullptr; }
    int setDefaultType(TBPTypeInfo* t) { return edit<ParameterRecord>({BPTYPE_TemplateParameter}, [&](ParameterRecord& r) { r.defaultType = t; }); }
    int getPosition() const { const ParameterRecord* r = read<ParameterRecord>({BPTYPE_TemplateParameter}); return r ? r->position : 0; }
    int setPosition(int n) { return edit<ParameterRecord>({BPTYPE_TemplateParameter}, [&](ParameterRecord& r) { r.position = n; }); }
    quernbase::QBString getNormalizedName() const { const ParameterRecord* r = read<ParameterRecord>({BPTYPE_TemplateParameter}); return r ? r->normalizedName : quernbase::QBString(); }
    int setNormalizedName(const quernbase::QBString& s) { return edit<ParameterRecord>({BPTYPE_TemplateParameter}, [&](ParameterRecord& r) { r.normalizedName = s; }); }

    // Member pointer.
    TBPTypeInfo* getClassType() const { const MemberPointerRecord* r = read<MemberPointerRecord>({BPTYPE_MemberPointer}); return r ? r->classType : nullptr; }
    int setClassType(TBPTypeInfo* t) { return edit<MemberPointerRecord>({BPTYPE_MemberPointer}, [&](MemberPointerRecord& r) { r.classType = t; }); }
    TBPTypeInfo* getMemberType() const { const MemberPointerRecord* r = read<MemberPointerRecord>({BPTYPE_MemberPointer}); return r ? r->memberType : nullptr; }
    int setMemberType(TBPTypeInfo* t) { return edit<MemberPointerRecord>({BPTYPE_MemberPointer}, [&](MemberPointerRecord& r) { r.memberType = t; }); }

    // Range.
    int64_t getLower() const { const RangeRecord* r = read<RangeRecord>({BPTYPE_Range}); return r ? r->lower : 0; }
    int setLower(int64_t n) { return edit<RangeRecord>({BPTYPE_Range}, [&](RangeRecord& r) { r.lower = n; }); }
    int64_t getUpper() const { const RangeRecord* r = read<RangeRecord>({BPTYPE_Range}); return r ? r->upper : 0; }
    int setUpper(int64_t n) { return edit<RangeRecord>({BPTYPE_Range}, [&](RangeRecord& r) { r.upper = n; }); }

    static const char* kindName(uint32_t typeKind);

protected:
    // Records live on the engine's heap and copy field by field.
    struct RecordBase : quernbase::QBMemory {
        RecordBase() = default;
        RecordBase(const RecordBase&) : quernbase::QBMemory() {}
        RecordBase& operator=(const RecordBase&) = default;
    };
    // A counted symbol field.
    struct SymbolLink {
        Symbol* symbol = nullptr;
        SymbolLink() = default;
        SymbolLink(const SymbolLink& other) { set(other.symbol); }
        SymbolLink& operator=(const SymbolLink& other) {
            set(other.symbol);
            return *this;
        }
        ~SymbolLink() { set(nullptr); }
        void set(Symbol* s) { BPRefCountObject::assign(symbol, s); }
    };
    // An argument list a function or template either shares or made for itself.
    struct ListLink {
        TBPTypeInfo* list = nullptr;
        TBPTypeInfo* owned = nullptr;
        ListLink() = default;
        ListLink(const ListLink& other) { *this = other; }
        ListLink& operator=(const ListLink& other);
        ~ListLink() { delete owned; }
    };
    struct SimpleRecord : RecordBase {
        S name = S(0);
        Tree* scope = nullptr;
    };
    struct ArrayRecord : RecordBase {
        TBPTypeInfo* elementType = nullptr;
        TBPTypeInfo* indexType = nullptr;
        int64_t start = 0;
        int64_t size = 0;
    };
    // Class, union, enumeration and namespace: each uses what it has.
    struct ClassRecord : RecordBase {
        SymbolLink symbol;
        TypeList parents, derivations, members, friends;
        TBPTypeInfo* templateType = nullptr;
        TBPTypeInfo* templateID = nullptr;
    };
    struct TypedefRecord : RecordBase {
        SymbolLink symbol;
        TBPTypeInfo* aliasedType = nullptr;
    };
    struct ArgumentListRecord : RecordBase {
        NameList names;
        TypeList types;
        TypeList defaults;
        TBPTypeInfo* owner = nullptr;
    };
    struct FunctionRecord : RecordBase {
        TBPTypeInfo* returnType = nullptr;
        TBPTypeInfo* templateType = nullptr;
        SymbolLink symbol;
        ListLink arguments;
        TypeList exceptions;
        TypeList bodyTypes;
    };
    struct VariableRecord : RecordBase {
        SymbolLink symbol;
        TBPTypeInfo* variableType = nullptr;
        TBPTypeInfo* initializerType = nullptr;
        uint32_t flags = 0;
        quernbase::QBString typeName;
        TBPTypeInfo* templateParameter = nullptr;
    };
    struct StatementRecord : RecordBase {
        quernbase::QBString name;
        TypeList labels, innerTypes, exceptions;
    };
    struct TemplateIDRecord : RecordBase {
        TBPTypeInfo* templateType = nullptr;
        TypeList arguments;
        NameList argumentNames;
        Tree* node = nullptr;
    };
    struct TemplateRecord : RecordBase {
        SymbolLink symbol;
        TBPTypeInfo* declaredType = nullptr;
        TBPTypeInfo* parentTemplate = nullptr;
        TBPTypeInfo* specializationOf = nullptr;
        Tree* node = nullptr;
        ListLink parameters;
    };
    struct ParameterRecord : RecordBase {
        SymbolLink symbol;
        TBPTypeInfo* declaration = nullptr;
        TBPTypeInfo* parameterType = nullptr;
        TBPTypeInfo* defaultType = nullptr;
        int32_t position = 0;
        quernbase::QBString normalizedName;
    };
    struct MemberPointerRecord : RecordBase {
        TBPTypeInfo* classType = nullptr;
        TBPTypeInfo* memberType = nullptr;
    };
    struct RangeRecord : RecordBase {
        SymbolLink symbol;
        int64_t lower = 0;
        int64_t upper = 0;
    };

    uint32_t kind;
    Value* value = nullptr;
    void* record = nullptr;

    static bool isLink(uint32_t k) { return k == BPTYPE_TypeReference || k == BPTYPE_TemplateParameterTypeReference; }
    static bool holdsTypeDirectly(uint32_t k) { return isLink(k) || k == BPTYPE_Pointer || k == BPTYPE_Reference; }
    static bool holdsSymbolDirectly(uint32_t k) { return k <= BPTYPE_Any; }
    static bool isClassLike(uint32_t k) {
        return k == BPTYPE_Class || k == BPTYPE_Union || k == BPTYPE_Namespace || k == BPTYPE_Enumeration;
    }
    static bool oneOf(uint32_t k, std::initializer_list<int> kinds) {
        for (int candidate : kinds)
            if (uint32_t(candidate) == k) return true;
        return false;
    }

    // The record of the resolved type when its kind is one of kinds, else null.
    template <class R>
    const R* read(std::initializer_list<int> kinds) const {
        const TBPTypeInfo* t = resolved();
        return oneOf(t->kind, kinds) ? static_cast<const R*>(t->record) : nullptr;
    }
    // Runs change on the resolved type's record, made on demand. 0, OutOfMemory or BadArgument.
    template <class R, class F>
    int edit(std::initializer_list<int> kinds, F&& change) {
        TBPTypeInfo* t = resolved();
        if (!oneOf(t->kind, kinds)) return qbmsg::BadArgument;
        if (int rc = t->ensureRecord()) return rc;
        change(*static_cast<R*>(t->record));
        return 0;
    }
    template <class R>
    unsigned countOf(TypeList R::*field, std::initializer_list<int> kinds) const {
        const R* r = read<R>(kinds);
        return r ? (r->*field).count() : 0;
    }
    template <class R>
    TBPTypeInfo* itemOf(TypeList R::*field, unsigned i, std::initializer_list<int> kinds) const {
        const R* r = read<R>(kinds);
        return r && i < (r->*field).count() ? (r->*field)[i] : nullptr;
    }
    template <class R>
    int append(TypeList R::*field, TBPTypeInfo* t, std::initializer_list<int> kinds) {
        int rc = 0;
        int status = edit<R>(kinds, [&](R& r) { rc = (r.*field).add(t); });
        return status ? status : rc;
    }

    int ensureRecord();
    void freeRecord();
    int copyRecord(const TBPTypeInfo& other);
    const ArgumentListRecord* argumentList() const;
    ListLink* listLink();

    // Equality of two shared sub-types: both null, or both present and equal.
    static bool sameType(const TBPTypeInfo* a, const TBPTypeInfo* b);
    static bool sameTypes(const TypeList& a, const TypeList& b);
    bool equalRecords(const TBPTypeInfo& other) const;
    bool equalClasses(const TBPTypeInfo& other) const;

    // Text helpers.
    static int appendText(quernbase::QBString& out, const TBPTypeInfo* t, const SeenSet& seen,
                          bool normalize, bool noReturn);
    static int appendJoined(quernbase::QBString& out, const TypeList& types, const SeenSet& seen,
                            bool normalize);
    int appendPointerText(quernbase::QBString& out, const SeenSet& seen, bool normalize,
                          bool noReturn) const;
    int appendNamed(quernbase::QBString& out, const char* unnamed, const SeenSet& seen) const;

    // Dump helpers.
    static int dumpChild(quernbase::QBString& out, const TBPTypeInfo* t, int indent,
                         const char* label, bool deep, bool showReferences);
    static int dumpList(quernbase::QBString& out, const TypeList& types, int indent,
                        const char* label, bool deep, bool showReferences);
    int dumpHeader(quernbase::QBString& out, bool showReferences) const;
    int dumpChildren(quernbase::QBString& out, int indent, bool deep, bool showReferences) const;
};

#include "TBPTypeInfoImpl.h"
