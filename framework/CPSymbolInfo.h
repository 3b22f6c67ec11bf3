// The symbol of the C and C++ front end. What it adds is the display name: the bare name
// completed from the symbol's type, so that overloads and template instances can be told
// apart in dumps and lists ("f(int, char*) const", "vector<int>"). The text of each part comes
// from the type's virtual operations, so the language's type class decides how a type reads.
#pragma once

#include "CPParseNodeType.h"
#include "TBPSymbolTable.h"
#include "TBPTypeInfo.h"

class CPSymbolInfo : public TBPSymbolInfo<CPParseNodeType> {
public:
    typedef TBPSymbolInfo<CPParseNodeType> Base;
    typedef Base::Tree Tree;
    typedef Base::TypeInfo TypeInfo;

    CPSymbolInfo(const quernbase::QBString& symbolName, Tree* definitionNode, Tree* scopeNode)
        : Base(symbolName, definitionNode, scopeNode) {}
    ~CPSymbolInfo() override = default;

    Base* clone() const override {
        return copyReferencesInto(new (std::nothrow) CPSymbolInfo(name, definition, scope));
    }
    int getDisplayName(quernbase::QBString& out) const override;
};
