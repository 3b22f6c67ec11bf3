// The preprocessor's record of every #define seen: a symbol table whose name maps to a
// CPSymbolInfo per definition, in the order of their arrival. A macro's symbol has the
// CPPreprocessorDefine as its definition and, as references, every token that names it (the
// define's own name, each call, #ifdef, defined and #undef), which is what a rename of the
// macro walks. Several definitions of a name live side by side; the lookup chooses among them
// by argument count.
//
// The table keeps a count on each define it lists: a define from a -D option belongs to no
// tree, and a source tree may be dropped from the parse cache while its macros stay live.
#pragma once

#include "CPParseNodeType.h"
#include "CPSymbolInfo.h"
#include "QBArray.h"
#include "QBString.h"
#include "TBPSymbolTable.h"
#include "TBPToken.h"

class CPPreprocessorDefine;

class CPMacroTable {
public:
    typedef TBPSymbolInfo<CPParseNodeType> Symbol;
    typedef TBPSymbolTable<CPParseNodeType> Table;
    typedef Table::SymbolList EntryList;
    typedef TBPToken<CPParseNodeType> Token;

    CPMacroTable() = default;
    ~CPMacroTable();
    CPMacroTable(const CPMacroTable&) = delete;
    CPMacroTable& operator=(const CPMacroTable&) = delete;

    // The entries of name, oldest first, or null.
    const EntryList* find(const quernbase::QBString& name) const {
        return table ? table->getEntry(name) : nullptr;
    }
    // Makes the symbol of define (named by its name token, which joins its references) and
    // appends it to the name's entries. 0 or OutOfMemory.
    int add(CPPreprocessorDefine* define);
    // Forgets name and every entry of it.
    void removeName(const quernbase::QBString& name);
    int count() const { return table ? table->getKeyCount() : 0; }
    const Table* getTable() const { return table; }

    static CPPreprocessorDefine* definitionOf(const Symbol* symbol);
    // Records token as naming the macro; a repeat of the last one isn't kept again, since a
    // body's call names the macro at every expansion.
    static int addReference(Symbol* symbol, Token* token);

private:
    Table* table = nullptr;
    quernbase::QBArray<CPPreprocessorDefine*> defines;  // counted
};
