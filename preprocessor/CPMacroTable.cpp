#include "CPMacroTable.h"

#include "CPPreprocessorMacros.h"

using quernbase::QBString;

namespace {
const int MACRO_BUCKETS = 89;
}

CPMacroTable::~CPMacroTable() {
    delete table;
    for (CPPreprocessorDefine* define : defines) define->release();
}

int CPMacroTable::add(CPPreprocessorDefine* define) {
    Token* name = define ? define->getNameToken() : nullptr;
    if (!name) return 0;
    if (!table && !(table = Table::create(nullptr, MACRO_BUCKETS))) return qbmsg::OutOfMemory;
    if (defines.add(define) != 0) return qbmsg::OutOfMemory;
    define->addRef();
    CPSymbolInfo* symbol = new (std::nothrow) CPSymbolInfo(name->getSpellingConst(), define, nullptr);
    if (!symbol) return qbmsg::OutOfMemory;
    symbol->addRef();
    int rc = addReference(symbol, name);
    if (rc == 0) rc = table->add(symbol);
    symbol->release();
    return rc < 0 ? qbmsg::OutOfMemory : 0;
}

void CPMacroTable::removeName(const QBString& name) {
    const EntryList* entries = find(name);
    if (!entries) return;
    EntryList doomed;
    for (Symbol* symbol : *entries)
        if (doomed.add(symbol) != 0) return;
    for (Symbol* symbol : doomed) table->remove(symbol);
}

CPPreprocessorDefine* CPMacroTable::definitionOf(const Symbol* symbol) {
    Symbol::Tree* node = symbol ? symbol->getDefinition() : nullptr;
    return node && node->getType() == CPN_PreprocessorDefine ? static_cast<CPPreprocessorDefine*>(node)
                                                             : nullptr;
}

int CPMacroTable::addReference(Symbol* symbol, Token* token) {
    if (!symbol || !token) return 0;
    unsigned n = symbol->getReferenceCount();
    if (n && symbol->getReference(n - 1) == token) return 0;
    return symbol->addReference(token);
}
