#include "TypeWorld.h"

using quernbase::QBString;

std::string textOf(const BaseType& t, bool normalize, bool noReturn) {
    QBString out("");
    if (t.getText(out, normalize, noReturn) != 0) return "<<failed>>";
    return str(out);
}

TypeWorld::TypeWorld() : unit(new TypeNode(CPN_CompilationUnit)) { unit->addRef(); }

TypeWorld::~TypeWorld() {
    types.clear();
    unit->release();
}

CPTypeInfo& TypeWorld::make(uint32_t kind, uint32_t flags) {
    types.emplace_back(kind);
    types.back().setFlags(flags);
    return types.back();
}

CPTypeInfo& TypeWorld::simple(CPSimpleTypeName name, uint32_t flags) {
    CPTypeInfo& t = make(BPTYPE_Simple, flags);
    t.setSimpleName(name);
    return t;
}

CPTypeInfo& TypeWorld::integer(CPSimpleTypeName name, int64_t number) {
    CPTypeInfo& t = simple(name);
    Value v;
    switch (name) {
    case CPSIMPLE_SignedInt: v.setSignedInteger(int32_t(number)); break;
    case CPSIMPLE_UnsignedInt: v.setUnsignedInteger(uint32_t(number)); break;
    case CPSIMPLE_SignedLong: v.setSignedLong(int32_t(number)); break;
    case CPSIMPLE_UnsignedLong: v.setUnsignedLong(uint32_t(number)); break;
    case CPSIMPLE_SignedLongLong: v.setSignedLongLong(number); break;
    case CPSIMPLE_Char: v.setCharacter(char(number)); break;
    case CPSIMPLE_SignedShort: v.setSignedShort(int16_t(number)); break;
    case CPSIMPLE_Bool: v.setBoolean(number != 0); break;
    default: v.setSignedLongLong(number); break;
    }
    t.setValue(&v);
    return t;
}

CPTypeInfo& TypeWorld::pointer(BaseType& to, uint32_t flags) {
    CPTypeInfo& t = make(BPTYPE_Pointer, flags);
    t.setPointedType(&to);
    return t;
}

CPTypeInfo& TypeWorld::reference(BaseType& to, uint32_t flags) {
    CPTypeInfo& t = make(BPTYPE_Reference, flags);
    t.setPointedType(&to);
    return t;
}

CPTypeInfo& TypeWorld::array(BaseType& element, int64_t size, uint32_t flags) {
    CPTypeInfo& t = make(BPTYPE_Array, flags);
    t.setElementType(&element);
    t.setSize(size);
    return t;
}

CPTypeInfo& TypeWorld::link(BaseType& to, uint32_t flags) {
    CPTypeInfo& t = make(BPTYPE_Null);
    t.setReference(&to);
    t.setFlags(flags);
    return t;
}

CPTypeInfo& TypeWorld::typedefOf(const char* name, BaseType& aliased, uint32_t flags) {
    TypeNode* n = node(CPN_InitDeclarator);
    n->typeInfo.setKind(BPTYPE_Typedef);
    n->typeInfo.setAliasedType(&aliased);
    n->typeInfo.setFlags(flags);
    n->typeInfo.setSymbol(symbol(name, n, unit));
    return n->typeInfo;
}

CPTypeInfo& TypeWorld::stringLiteral(const char* text) {
    CPTypeInfo& t = array(simple(CPSIMPLE_Char), int64_t(std::string(text).size() + 1));
    Value v;
    v.setString(QBString(text));
    t.setValue(&v);
    return t;
}

TypeNode* TypeWorld::node(int type, Tree* parent) {
    TypeNode* n = new TypeNode(type);
    (parent ? parent : unit)->addChild(n);
    return n;
}

Symbol* TypeWorld::symbol(const char* name, Tree* definition, Tree* scope) {
    Symbol* s = new CPSymbolInfo(QBString(name), definition, scope);
    scope->addSymbol(s);
    return s;
}

TypeNode* TypeWorld::declareClass(const char* name, Tree* scope, TypeNode* base) {
    Tree* home = scope ? scope : unit;
    TypeNode* n = node(CPN_ClassSpecifier, home);
    n->typeInfo.setKind(BPTYPE_Class);
    n->typeInfo.setSymbol(symbol(name, n, home));
    if (base) n->typeInfo.addParent(&base->typeInfo);
    return n;
}

TypeNode* TypeWorld::declareEnum(const char* name) {
    TypeNode* n = node(CPN_EnumSpecifier);
    n->typeInfo.setKind(BPTYPE_Enumeration);
    n->typeInfo.setSymbol(symbol(name, n, unit));
    return n;
}

TypeNode* TypeWorld::declareFunction(const char* name, Tree* owner, BaseType* returnType,
                                     std::initializer_list<BaseType*> arguments, uint32_t flags) {
    Tree* home = owner ? owner : unit;
    TypeNode* n = node(CPN_MemberDeclarator, home);
    CPTypeInfo& f = n->typeInfo;
    f.setKind(BPTYPE_Function);
    f.setFlags(flags);
    f.setReturnType(returnType);
    f.setSymbol(symbol(name, n, home));
    for (BaseType* argument : arguments) f.addArgument(QBString(""), argument, nullptr);
    return n;
}
