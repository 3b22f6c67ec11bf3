// The preprocessor's record of every #define seen: a name maps to its definitions in the order
// of their arrival, each with the tokens that name it (its references). Several definitions of a
// name live side by side; the lookup chooses among them by argument count.
//
// Kept behind this small interface so that the store can become the framework's symbol table
// without touching the macro code.
#pragma once

#include "CPParseNodeType.h"
#include "QBArray.h"
#include "QBHashTable.h"
#include "QBString.h"
#include "TBPToken.h"

class CPPreprocessorDefine;

struct CPMacroEntry : quernbase::QBMemory {
    typedef TBPToken<CPParseNodeType> Token;

    explicit CPMacroEntry(CPPreprocessorDefine* define);
    ~CPMacroEntry();
    CPMacroEntry(const CPMacroEntry&) = delete;
    CPMacroEntry& operator=(const CPMacroEntry&) = delete;

    CPPreprocessorDefine* getDefinition() const { return definition; }
    // Counts token; a repeat of the last one is not kept again.
    int addReference(Token* token);
    unsigned getReferenceCount() const { return references.count(); }
    Token* getReference(unsigned i) const { return references[i]; }

private:
    CPPreprocessorDefine* definition;  // counted
    quernbase::QBArray<Token*> references;  // counted
};

class CPMacroTable {
public:
    typedef quernbase::QBArray<CPMacroEntry*> EntryList;

    CPMacroTable();
    ~CPMacroTable();
    CPMacroTable(const CPMacroTable&) = delete;
    CPMacroTable& operator=(const CPMacroTable&) = delete;

    // The entries of name, oldest first, or null.
    const EntryList* find(const quernbase::QBString& name) const { return table.find(name); }
    // Appends entry (which the table then owns) to name's list. 0 or -8 (entry deleted).
    int add(const quernbase::QBString& name, CPMacroEntry* entry);
    // Forgets name and every entry of it.
    void removeName(const quernbase::QBString& name);
    int count() const { return table.count(); }

private:
    quernbase::QBHashTable<quernbase::QBString, EntryList> table;
    EntryList owned;  // every entry ever added, for destruction
};
