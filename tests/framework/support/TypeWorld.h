// A small world of types for the type-layer tests: nodes that embed a CPTypeInfo as the
// grammar's trees do, classes and functions declared with symbols in scope tables, and
// builders for the usual shapes of type. The world owns everything it makes.
#pragma once

#include <deque>
#include <initializer_list>
#include <string>

#include "CPSymbolInfo.h"
#include "CPTypeInfo.h"

typedef CPTypeInfo::Base BaseType;
typedef CPTypeInfo::Tree Tree;
typedef CPTypeInfo::Value Value;
typedef CPTypeInfo::Symbol Symbol;

// An inner node carrying its own type, with the covariant answer the C++ tree base gives.
class TypeNode : public Tree {
public:
    explicit TypeNode(int type) : Tree(CPParseNodeType(type)) {}
    TBPParseNode<CPParseNodeType>* clone() const override {
        TypeNode* copy = new (std::nothrow) TypeNode(this->type);
        if (copy) copy->typeInfo = typeInfo;
        return cloneInto(copy);
    }
    CPTypeInfo* getTypeInfo() override { return &typeInfo; }
    CPTypeInfo typeInfo;
};

class TypeWorld {
public:
    TypeWorld();
    ~TypeWorld();
    TypeWorld(const TypeWorld&) = delete;
    TypeWorld& operator=(const TypeWorld&) = delete;

    TypeNode* root() { return unit; }
    CPTypeInfo& make(uint32_t kind, uint32_t flags = 0);
    CPTypeInfo& simple(CPSimpleTypeName name, uint32_t flags = 0);
    // A simple type with a constant value of the matching kind.
    CPTypeInfo& integer(CPSimpleTypeName name, int64_t value);
    CPTypeInfo& pointer(BaseType& to, uint32_t flags = 0);
    CPTypeInfo& reference(BaseType& to, uint32_t flags = 0);
    CPTypeInfo& array(BaseType& element, int64_t size, uint32_t flags = 0);
    CPTypeInfo& link(BaseType& to, uint32_t flags = 0);
    CPTypeInfo& typedefOf(const char* name, BaseType& aliased, uint32_t flags = 0);
    // A string literal's type: an array of char with the text as value.
    CPTypeInfo& stringLiteral(const char* text);

    // A node of the given type under parent (the unit when null).
    TypeNode* node(int type, Tree* parent = nullptr);
    // A class declared in scope (the unit when null): its node embeds the class type, and a
    // symbol for it sits in scope's table.
    TypeNode* declareClass(const char* name, Tree* scope = nullptr, TypeNode* base = nullptr);
    TypeNode* declareEnum(const char* name);
    // A function declared in owner's table; its node embeds the function type.
    TypeNode* declareFunction(const char* name, Tree* owner, BaseType* returnType,
                              std::initializer_list<BaseType*> arguments, uint32_t flags = 0);
    Symbol* symbol(const char* name, Tree* definition, Tree* scope);

private:
    TypeNode* unit;
    std::deque<CPTypeInfo> types;
};

std::string textOf(const BaseType& t, bool normalize = false, bool noReturn = false);
std::string str(const quernbase::QBString& s);  // FrameworkTestKit.cpp
