#include "CPMacroTable.h"

#include "CPPreprocessorMacros.h"

using quernbase::QBString;

CPMacroEntry::CPMacroEntry(CPPreprocessorDefine* define) : definition(define) {
    if (definition) definition->addRef();
}

CPMacroEntry::~CPMacroEntry() {
    for (Token* token : references) token->release();
    if (definition) definition->release();
}

int CPMacroEntry::addReference(Token* token) {
    if (!token) return 0;
    // A body's call names the macro at every expansion: one entry is enough.
    if (references.count() && references[references.count() - 1] == token) return 0;
    if (int rc = references.add(token)) return rc;
    token->addRef();
    return 0;
}

CPMacroTable::CPMacroTable() : table(QBString::hashString) {}

CPMacroTable::~CPMacroTable() {
    for (CPMacroEntry* entry : owned) delete entry;
}

int CPMacroTable::add(const QBString& name, CPMacroEntry* entry) {
    if (owned.add(entry) != 0) {
        delete entry;
        return -8;
    }
    if (EntryList* list = table.find(name)) return list->add(entry);
    EntryList list;
    if (int rc = list.add(entry)) return rc;
    return table.set(name, list);
}

void CPMacroTable::removeName(const QBString& name) { table.remove(name); }
