// Out-of-line members of TBPTypeInfo: records, links, equality, text and dump.
#pragma once

#include "TBPTypeInfo.h"

// Longest reference chain walked; only a damaged type gets near it.
enum { BPTYPE_MAX_CHAIN = 1000, BPTYPE_MAX_COMPARE_DEPTH = 200 };

template <class T, class S>
typename TBPTypeInfo<T, S>::ListLink& TBPTypeInfo<T, S>::ListLink::operator=(const ListLink& other) {
    if (this == &other) return *this;
    delete owned;
    owned = nullptr;
    list = other.list;
    if (other.owned) {
        owned = new (std::nothrow) TBPTypeInfo(*other.owned);
        list = other.list == other.owned ? owned : other.list;
    }
    return *this;
}

// ---- Records ----

template <class T, class S>
int TBPTypeInfo<T, S>::ensureRecord() {
    if (record || holdsTypeDirectly(kind) || holdsSymbolDirectly(kind)) return 0;
    switch (kind) {
    case BPTYPE_Simple: record = new (std::nothrow) SimpleRecord; break;
    case BPTYPE_Array: record = new (std::nothrow) ArrayRecord; break;
    case BPTYPE_Class:
    case BPTYPE_Union:
    case BPTYPE_Namespace:
    case BPTYPE_Enumeration: record = new (std::nothrow) ClassRecord; break;
    case BPTYPE_Typedef: record = new (std::nothrow) TypedefRecord; break;
    case BPTYPE_ArgumentList: record = new (std::nothrow) ArgumentListRecord; break;
    case BPTYPE_Function: record = new (std::nothrow) FunctionRecord; break;
    case BPTYPE_Variable: record = new (std::nothrow) VariableRecord; break;
    case BPTYPE_Statement: record = new (std::nothrow) StatementRecord; break;
    case BPTYPE_TemplateID: record = new (std::nothrow) TemplateIDRecord; break;
    case BPTYPE_TemplateDeclaration: record = new (std::nothrow) TemplateRecord; break;
    case BPTYPE_TemplateParameter: record = new (std::nothrow) ParameterRecord; break;
    case BPTYPE_MemberPointer: record = new (std::nothrow) MemberPointerRecord; break;
    case BPTYPE_Range: record = new (std::nothrow) RangeRecord; break;
    default: return qbmsg::BadArgument;
    }
    return record ? 0 : qbmsg::OutOfMemory;
}

template <class T, class S>
void TBPTypeInfo<T, S>::freeRecord() {
    void* r = record;
    record = nullptr;
    if (!r || holdsTypeDirectly(kind)) return;
    switch (kind) {
    case BPTYPE_Null:
    case BPTYPE_None:
    case BPTYPE_Any: static_cast<Symbol*>(r)->release(); break;
    case BPTYPE_Simple: delete static_cast<SimpleRecord*>(r); break;
    case BPTYPE_Array: delete static_cast<ArrayRecord*>(r); break;
    case BPTYPE_Class:
    case BPTYPE_Union:
    case BPTYPE_Namespace:
    case BPTYPE_Enumeration: delete static_cast<ClassRecord*>(r); break;
    case BPTYPE_Typedef: delete static_cast<TypedefRecord*>(r); break;
    case BPTYPE_ArgumentList: delete static_cast<ArgumentListRecord*>(r); break;
    case BPTYPE_Function: delete static_cast<FunctionRecord*>(r); break;
    case BPTYPE_Variable: delete static_cast<VariableRecord*>(r); break;
    case BPTYPE_Statement: delete static_cast<StatementRecord*>(r); break;
    case BPTYPE_TemplateID: delete static_cast<TemplateIDRecord*>(r); break;
    case BPTYPE_TemplateDeclaration: delete static_cast<TemplateRecord*>(r); break;
    case BPTYPE_TemplateParameter: delete static_cast<ParameterRecord*>(r); break;
    case BPTYPE_MemberPointer: delete static_cast<MemberPointerRecord*>(r); break;
    case BPTYPE_Range: delete static_cast<RangeRecord*>(r); break;
    default: break;
    }
}

template <class T, class S>
int TBPTypeInfo<T, S>::copyRecord(const TBPTypeInfo& other) {
    const void* r = other.record;
    if (!r) return 0;
    if (holdsTypeDirectly(kind)) {
        record = const_cast<void*>(r);
        return 0;
    }
    if (holdsSymbolDirectly(kind)) {
        Symbol* symbol = static_cast<Symbol*>(const_cast<void*>(r));
        symbol->addRef();
        record = symbol;
        return 0;
    }
    switch (kind) {
    case BPTYPE_Simple: record = new (std::nothrow) SimpleRecord(*static_cast<const SimpleRecord*>(r)); break;
    case BPTYPE_Array: record = new (std::nothrow) ArrayRecord(*static_cast<const ArrayRecord*>(r)); break;
    case BPTYPE_Class:
    case BPTYPE_Union:
    case BPTYPE_Namespace:
    case BPTYPE_Enumeration: record = new (std::nothrow) ClassRecord(*static_cast<const ClassRecord*>(r)); break;
    case BPTYPE_Typedef: record = new (std::nothrow) TypedefRecord(*static_cast<const TypedefRecord*>(r)); break;
    case BPTYPE_ArgumentList: record = new (std::nothrow) ArgumentListRecord(*static_cast<const ArgumentListRecord*>(r)); break;
    case BPTYPE_Function: record = new (std::nothrow) FunctionRecord(*static_cast<const FunctionRecord*>(r)); break;
    case BPTYPE_Variable: record = new (std::nothrow) VariableRecord(*static_cast<const VariableRecord*>(r)); break;
    case BPTYPE_Statement: record = new (std::nothrow) StatementRecord(*static_cast<const StatementRecord*>(r)); break;
    case BPTYPE_TemplateID: record = new (std::nothrow) TemplateIDRecord(*static_cast<const TemplateIDRecord*>(r)); break;
    case BPTYPE_TemplateDeclaration: record = new (std::nothrow) TemplateRecord(*static_cast<const TemplateRecord*>(r)); break;
    case BPTYPE_TemplateParameter: record = new (std::nothrow) ParameterRecord(*static_cast<const ParameterRecord*>(r)); break;
    case BPTYPE_MemberPointer: record = new (std::nothrow) MemberPointerRecord(*static_cast<const MemberPointerRecord*>(r)); break;
    case BPTYPE_Range: record = new (std::nothrow) RangeRecord(*static_cast<const RangeRecord*>(r)); break;
    default: return 0;
    }
    if (!record) return qbmsg::OutOfMemory;
    // A list made for the source belongs to the copy now.
    if (ListLink* link = listLink(); link && link->owned) link->owned->setOwner(this);
    return 0;
}

template <class T, class S>
int TBPTypeInfo<T, S>::copyFrom(const TBPTypeInfo& other) {
    if (&other == this) return 0;
    setKind(other.kind, false);
    if (int rc = setValue(other.value)) return rc;
    return copyRecord(other);
}

// ---- Kind and links ----

template <class T, class S>
void TBPTypeInfo<T, S>::setKind(uint32_t typeKind, bool keepValue) {
    freeRecord();
    kind = typeKind;
    if (keepValue) return;
    delete value;
    value = nullptr;
}

template <class T, class S>
const TBPTypeInfo<T, S>* TBPTypeInfo<T, S>::resolved() const {
    const TBPTypeInfo* t = this;
    for (int steps = 0; isLink(t->kind) && t->record && steps < BPTYPE_MAX_CHAIN; ++steps)
        t = static_cast<const TBPTypeInfo*>(t->record);
    return t;
}

template <class T, class S>
int TBPTypeInfo<T, S>::setReference(TBPTypeInfo* target, bool keepValue) {
    while (target && target->kind == BPTYPE_TypeReference && target->record && !target->hasFlags() &&
           !target->value && target != this)
        target = static_cast<TBPTypeInfo*>(target->record);
    for (const TBPTypeInfo* t = target; t; t = isLink(t->kind) ? static_cast<const TBPTypeInfo*>(t->record) : nullptr)
        if (t == this) {
            target = nullptr;  // a link back to this type would close a cycle
            break;
        }
    setKind(BPTYPE_TypeReference, keepValue);
    record = target;
    return target ? 0 : qbmsg::BadArgument;
}

template <class T, class S>
typename TBPTypeInfo<T, S>::Value* TBPTypeInfo<T, S>::getValue() const {
    const TBPTypeInfo* t = this;
    for (int steps = 0; t && steps < BPTYPE_MAX_CHAIN; ++steps) {
        if (t->value) return t->value;
        t = isLink(t->kind) ? static_cast<const TBPTypeInfo*>(t->record) : nullptr;
    }
    return nullptr;
}

template <class T, class S>
int TBPTypeInfo<T, S>::setValue(const Value* newValue) {
    if (newValue == value) return 0;
    Value* copy = nullptr;
    if (newValue) {
        copy = new (std::nothrow) Value;
        if (!copy || copy->copyFrom(*newValue) != 0) {
            delete copy;
            return qbmsg::OutOfMemory;
        }
    }
    delete value;
    value = copy;
    return 0;
}

// ---- Names and scopes ----

template <class T, class S>
typename TBPTypeInfo<T, S>::Symbol* TBPTypeInfo<T, S>::getSymbol() const {
    const TBPTypeInfo* t = resolved();
    const void* r = t->record;
    if (!r || isLink(t->kind)) return nullptr;
    switch (t->kind) {
    case BPTYPE_Null:
    case BPTYPE_None:
    case BPTYPE_Any: return static_cast<Symbol*>(const_cast<void*>(r));
    case BPTYPE_Class:
    case BPTYPE_Union:
    case BPTYPE_Namespace:
    case BPTYPE_Enumeration: return static_cast<const ClassRecord*>(r)->symbol.symbol;
    case BPTYPE_Typedef: return static_cast<const TypedefRecord*>(r)->symbol.symbol;
    case BPTYPE_Function: return static_cast<const FunctionRecord*>(r)->symbol.symbol;
    case BPTYPE_Variable: return static_cast<const VariableRecord*>(r)->symbol.symbol;
    case BPTYPE_TemplateDeclaration: return static_cast<const TemplateRecord*>(r)->symbol.symbol;
    case BPTYPE_TemplateParameter: return static_cast<const ParameterRecord*>(r)->symbol.symbol;
    case BPTYPE_Range: return static_cast<const RangeRecord*>(r)->symbol.symbol;
    case BPTYPE_TemplateID: {
        const TBPTypeInfo* named = static_cast<const TemplateIDRecord*>(r)->templateType;
        return named && named != t ? named->getSymbol() : nullptr;
    }
    default: return nullptr;
    }
}

template <class T, class S>
int TBPTypeInfo<T, S>::setSymbol(Symbol* symbol) {
    TBPTypeInfo* t = resolved();
    if (holdsSymbolDirectly(t->kind)) {
        if (symbol) symbol->addRef();
        if (t->record) static_cast<Symbol*>(t->record)->release();
        t->record = symbol;
        return 0;
    }
    auto setLink = [&](SymbolLink& link) { link.set(symbol); };
    switch (t->kind) {
    case BPTYPE_Class:
    case BPTYPE_Union:
    case BPTYPE_Namespace:
    case BPTYPE_Enumeration: return edit<ClassRecord>({int(t->kind)}, [&](ClassRecord& r) { setLink(r.symbol); });
    case BPTYPE_Typedef: return edit<TypedefRecord>({BPTYPE_Typedef}, [&](TypedefRecord& r) { setLink(r.symbol); });
    case BPTYPE_Function: return edit<FunctionRecord>({BPTYPE_Function}, [&](FunctionRecord& r) { setLink(r.symbol); });
    case BPTYPE_Variable: return edit<VariableRecord>({BPTYPE_Variable}, [&](VariableRecord& r) { setLink(r.symbol); });
    case BPTYPE_TemplateDeclaration: return edit<TemplateRecord>({BPTYPE_TemplateDeclaration}, [&](TemplateRecord& r) { setLink(r.symbol); });
    case BPTYPE_TemplateParameter: return edit<ParameterRecord>({BPTYPE_TemplateParameter}, [&](ParameterRecord& r) { setLink(r.symbol); });
    case BPTYPE_Range: return edit<RangeRecord>({BPTYPE_Range}, [&](RangeRecord& r) { setLink(r.symbol); });
    default: return qbmsg::BadArgument;
    }
}

template <class T, class S>
quernbase::QBString TBPTypeInfo<T, S>::getName() const {
    if (Symbol* symbol = getSymbol()) return symbol->getName();
    const TBPTypeInfo* t = resolved();
    switch (t->kind) {
    case BPTYPE_Statement: return t->getStatementName();
    case BPTYPE_TemplateID: {
        const TBPTypeInfo* named = t->getTemplateType();
        return named && named != t ? named->getName() : quernbase::QBString();
    }
    case BPTYPE_TemplateParameter: {
        const TBPTypeInfo* declaration = t->getDeclaration();
        return declaration && declaration != t ? declaration->getName() : quernbase::QBString();
    }
    default: return quernbase::QBString();
    }
}

template <class T, class S>
typename TBPTypeInfo<T, S>::Tree* TBPTypeInfo<T, S>::getScopeNode() const {
    Symbol* symbol = getSymbol();
    if (symbol && symbol->getDefinition()) return symbol->getDefinition();
    if (isLink(kind)) {
        const TBPTypeInfo* target = getReferenceTarget();
        return target && target->resolved() != this ? target->getScopeNode() : nullptr;
    }
    if (kind == BPTYPE_Simple) return getSimpleScope();
    if (kind == BPTYPE_TemplateDeclaration) return getNode();
    return nullptr;
}

// ---- Fields shared by several kinds ----

template <class T, class S>
TBPTypeInfo<T, S>* TBPTypeInfo<T, S>::getTemplateType() const {
    const TBPTypeInfo* t = resolved();
    if (!t->record) return nullptr;
    switch (t->kind) {
    case BPTYPE_Class:
    case BPTYPE_Union: return static_cast<const ClassRecord*>(t->record)->templateType;
    case BPTYPE_Function: return static_cast<const FunctionRecord*>(t->record)->templateType;
    case BPTYPE_TemplateID: return static_cast<const TemplateIDRecord*>(t->record)->templateType;
    default: return nullptr;
    }
}

template <class T, class S>
int TBPTypeInfo<T, S>::setTemplateType(TBPTypeInfo* type) {
    switch (getKind()) {
    case BPTYPE_Class:
    case BPTYPE_Union: return edit<ClassRecord>({BPTYPE_Class, BPTYPE_Union}, [&](ClassRecord& r) { r.templateType = type; });
    case BPTYPE_Function: return edit<FunctionRecord>({BPTYPE_Function}, [&](FunctionRecord& r) { r.templateType = type; });
    case BPTYPE_TemplateID: return edit<TemplateIDRecord>({BPTYPE_TemplateID}, [&](TemplateIDRecord& r) { r.templateType = type; });
    default: return qbmsg::BadArgument;
    }
}

template <class T, class S>
typename TBPTypeInfo<T, S>::Tree* TBPTypeInfo<T, S>::getNode() const {
    if (const TemplateIDRecord* r = read<TemplateIDRecord>({BPTYPE_TemplateID})) return r->node;
    if (const TemplateRecord* r = read<TemplateRecord>({BPTYPE_TemplateDeclaration})) return r->node;
    return nullptr;
}

template <class T, class S>
int TBPTypeInfo<T, S>::setNode(Tree* node) {
    if (getKind() == BPTYPE_TemplateID)
        return edit<TemplateIDRecord>({BPTYPE_TemplateID}, [&](TemplateIDRecord& r) { r.node = node; });
    return edit<TemplateRecord>({BPTYPE_TemplateDeclaration}, [&](TemplateRecord& r) { r.node = node; });
}

template <class T, class S>
unsigned TBPTypeInfo<T, S>::getExceptionCount() const {
    return getKind() == BPTYPE_Function ? countOf(&FunctionRecord::exceptions, {BPTYPE_Function})
                                        : countOf(&StatementRecord::exceptions, {BPTYPE_Statement});
}

template <class T, class S>
TBPTypeInfo<T, S>* TBPTypeInfo<T, S>::getException(unsigned i) const {
    return getKind() == BPTYPE_Function ? itemOf(&FunctionRecord::exceptions, i, {BPTYPE_Function})
                                        : itemOf(&StatementRecord::exceptions, i, {BPTYPE_Statement});
}

template <class T, class S>
int TBPTypeInfo<T, S>::addException(TBPTypeInfo* t) {
    return getKind() == BPTYPE_Function ? append(&FunctionRecord::exceptions, t, {BPTYPE_Function})
                                        : append(&StatementRecord::exceptions, t, {BPTYPE_Statement});
}

template <class T, class S>
unsigned TBPTypeInfo<T, S>::getBodyTypeCount() const {
    return getKind() == BPTYPE_Function ? countOf(&FunctionRecord::bodyTypes, {BPTYPE_Function})
                                        : countOf(&StatementRecord::innerTypes, {BPTYPE_Statement});
}

template <class T, class S>
TBPTypeInfo<T, S>* TBPTypeInfo<T, S>::getBodyType(unsigned i) const {
    return getKind() == BPTYPE_Function ? itemOf(&FunctionRecord::bodyTypes, i, {BPTYPE_Function})
                                        : itemOf(&StatementRecord::innerTypes, i, {BPTYPE_Statement});
}

template <class T, class S>
int TBPTypeInfo<T, S>::addBodyType(TBPTypeInfo* t) {
    return getKind() == BPTYPE_Function ? append(&FunctionRecord::bodyTypes, t, {BPTYPE_Function})
                                        : append(&StatementRecord::innerTypes, t, {BPTYPE_Statement});
}

template <class T, class S>
void TBPTypeInfo<T, S>::clearBodyTypes() {
    edit<FunctionRecord>({BPTYPE_Function}, [](FunctionRecord& r) { r.bodyTypes.clear(); });
    edit<StatementRecord>({BPTYPE_Statement}, [](StatementRecord& r) { r.innerTypes.clear(); });
}

// ---- Arguments ----

template <class T, class S>
typename TBPTypeInfo<T, S>::ListLink* TBPTypeInfo<T, S>::listLink() {
    TBPTypeInfo* t = resolved();
    if (!t->record) return nullptr;
    if (t->kind == BPTYPE_Function) return &static_cast<FunctionRecord*>(t->record)->arguments;
    if (t->kind == BPTYPE_TemplateDeclaration) return &static_cast<TemplateRecord*>(t->record)->parameters;
    return nullptr;
}

template <class T, class S>
TBPTypeInfo<T, S>* TBPTypeInfo<T, S>::getArguments() const {
    ListLink* link = const_cast<TBPTypeInfo*>(this)->listLink();
    return link ? link->list : nullptr;
}

template <class T, class S>
int TBPTypeInfo<T, S>::setArguments(TBPTypeInfo* list) {
    uint32_t k = getKind();
    if (k != BPTYPE_Function && k != BPTYPE_TemplateDeclaration) return qbmsg::BadArgument;
    if (int rc = resolved()->ensureRecord()) return rc;
    ListLink* link = listLink();
    if (link->owned && link->owned != list) {
        delete link->owned;
        link->owned = nullptr;
    }
    link->list = list;
    return 0;
}

// The argument list record behind this type: its own, or its function's or template's.
template <class T, class S>
const typename TBPTypeInfo<T, S>::ArgumentListRecord* TBPTypeInfo<T, S>::argumentList() const {
    const TBPTypeInfo* t = resolved();
    if (t->kind != BPTYPE_ArgumentList) t = t->getArguments() ? t->getArguments()->resolved() : nullptr;
    return t && t->kind == BPTYPE_ArgumentList ? static_cast<const ArgumentListRecord*>(t->record) : nullptr;
}

template <class T, class S>
unsigned TBPTypeInfo<T, S>::getArgumentCount() const {
    if (const TemplateIDRecord* id = read<TemplateIDRecord>({BPTYPE_TemplateID})) return id->arguments.count();
    const ArgumentListRecord* list = argumentList();
    return list ? list->types.count() : 0;
}

template <class T, class S>
TBPTypeInfo<T, S>* TBPTypeInfo<T, S>::getArgumentType(unsigned i) const {
    if (const TemplateIDRecord* id = read<TemplateIDRecord>({BPTYPE_TemplateID}))
        return i < id->arguments.count() ? id->arguments[i] : nullptr;
    const ArgumentListRecord* list = argumentList();
    return list && i < list->types.count() ? list->types[i] : nullptr;
}

template <class T, class S>
quernbase::QBString TBPTypeInfo<T, S>::getArgumentName(unsigned i) const {
    const NameList* names = nullptr;
    if (const TemplateIDRecord* id = read<TemplateIDRecord>({BPTYPE_TemplateID})) names = &id->argumentNames;
    else if (const ArgumentListRecord* list = argumentList()) names = &list->names;
    return names && i < names->count() ? (*names)[i] : quernbase::QBString();
}

template <class T, class S>
TBPTypeInfo<T, S>* TBPTypeInfo<T, S>::getArgumentDefault(unsigned i) const {
    const ArgumentListRecord* list = argumentList();
    return list && i < list->defaults.count() ? list->defaults[i] : nullptr;
}

template <class T, class S>
int TBPTypeInfo<T, S>::addArgument(const quernbase::QBString& name, TBPTypeInfo* type,
                                   TBPTypeInfo* defaultType) {
    TBPTypeInfo* t = resolved();
    if (t->kind == BPTYPE_TemplateID) {
        int rc = 0;
        int status = edit<TemplateIDRecord>({BPTYPE_TemplateID}, [&](TemplateIDRecord& r) {
            rc = r.arguments.add(type);
            if (rc == 0 && (rc = r.argumentNames.add(name)) != 0) r.arguments.removeAt(r.arguments.count() - 1);
        });
        return status ? status : rc;
    }
    if (t->kind == BPTYPE_Function || t->kind == BPTYPE_TemplateDeclaration) {
        if (int rc = t->ensureRecord()) return rc;
        ListLink* link = t->listLink();
        if (!link->list) {
            link->owned = new (std::nothrow) TBPTypeInfo(BPTYPE_ArgumentList);
            if (!link->owned) return qbmsg::OutOfMemory;
            link->list = link->owned;
            link->owned->setOwner(t);
        }
        return link->list == t ? qbmsg::BadArgument : link->list->addArgument(name, type, defaultType);
    }
    int rc = 0;
    int status = edit<ArgumentListRecord>({BPTYPE_ArgumentList}, [&](ArgumentListRecord& r) {
        unsigned n = r.types.count();
        rc = r.names.add(name);
        if (rc == 0) rc = r.types.add(type);
        if (rc == 0) rc = r.defaults.add(defaultType);
        if (rc == 0) return;
        // all three lists keep one entry per argument
        while (r.names.count() > n) r.names.removeAt(n);
        while (r.types.count() > n) r.types.removeAt(n);
    });
    return status ? status : rc;
}

template <class T, class S>
const char* TBPTypeInfo<T, S>::kindName(uint32_t typeKind) {
    static const char* const names[] = {
        "BPTYPE_Null", "BPTYPE_None", "BPTYPE_Any", "BPTYPE_TypeReference", "BPTYPE_Simple",
        "BPTYPE_Array", "BPTYPE_Pointer", "BPTYPE_Reference", "BPTYPE_Class", "BPTYPE_Union",
        "BPTYPE_Namespace", "BPTYPE_Typedef", "BPTYPE_ArgumentList", "BPTYPE_Function",
        "BPTYPE_Variable", "BPTYPE_Statement", "BPTYPE_TemplateID",
        "BPTYPE_TemplateDeclaration", "BPTYPE_TemplateParameter",
        "BPTYPE_TemplateParameterTypeReference", "BPTYPE_MemberPointer", "BPTYPE_Enumeration",
        "BPTYPE_Range"};
    return typeKind <= BPTYPE_LAST ? names[typeKind] : nullptr;
}

#include "TBPTypeInfoText.h"
