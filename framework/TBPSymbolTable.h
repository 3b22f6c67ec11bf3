// Symbols and the tables of the scopes that declare them.
//
// A scope node owns a table that maps a name, byte for byte, to every symbol of that name
// declared directly in the scope, in declaration order (overloads share one entry), and lists
// the tables it imports. A symbol ties a name to its definition node, its scope node and every
// node that names it.
//
// The reference graph is kept symmetric: node N is in S's references exactly as often as S is
// in N's side list (the node's attributes). Whoever dies first unhooks itself from the other
// side, so neither a symbol nor a node is ever left pointing at freed memory. A symbol's alias
// is a counted link to the symbol it stands for; a reference added to a symbol lands on every
// symbol of its alias chain, which is why alias chains must never close into a cycle.
#pragma once

#include <cstdio>
#include <new>

#include "BPRefCountObject.h"
#include "QBArray.h"
#include "QBHashTable.h"
#include "QBMessageCodes.h"
#include "QBString.h"
#include "TBPParseTree.h"


template <class T>
class TBPSymbolInfo : public BPRefCountObject {
public:
    typedef TBPParseNode<T> Node;
    typedef TBPParseTree<T> Tree;
    typedef typename Tree::TypeInfo TypeInfo;

    TBPSymbolInfo(const quernbase::QBString& symbolName, Tree* definitionNode, Tree* scopeNode)
        : name(symbolName), definition(definitionNode), scope(scopeNode) {}
    TBPSymbolInfo(const TBPSymbolInfo&) = delete;
    TBPSymbolInfo& operator=(const TBPSymbolInfo&) = delete;
    ~TBPSymbolInfo() override {
        clearReferences();
        BPRefCountObject::assign(alias, static_cast<TBPSymbolInfo*>(nullptr));
    }

    // The virtual interface, in its fixed order.
    virtual TBPSymbolInfo* clone() const {
        TBPSymbolInfo* copy = new (std::nothrow) TBPSymbolInfo(name, definition, scope);
        return copyReferencesInto(copy);
    }
    virtual int getName(quernbase::QBString& out) const { return out.set(name); }
    virtual int getDisplayName(quernbase::QBString& out) const { return getName(out); }

    const quernbase::QBString& getName() const { return name; }
    Tree* getDefinition() const { return definition; }
    void setDefinition(Tree* node) { definition = node; }
    Tree* getScope() const { return scope; }
    void setScope(Tree* node) { scope = node; }
    // The type embedded in the definition node; null without one.
    TypeInfo* getType() const { return definition ? definition->getTypeInfo() : nullptr; }

    TBPSymbolInfo* getAlias() const { return alias; }
    // Takes a count on other and drops the old alias's. A link that would close a cycle is
    // refused with BadArgument, since references travel the whole chain.
    int setAlias(TBPSymbolInfo* other) {
        if (other == this) return 0;
        for (TBPSymbolInfo* s = other; s; s = s->alias)
            if (s == this) return qbmsg::BadArgument;
        BPRefCountObject::assign(alias, other);
        return 0;
    }

    unsigned getReferenceCount() const { return references.count(); }
    Node* getReference(unsigned i) const { return i < references.count() ? references[i] : nullptr; }
    // Records node as a use of this symbol and of everything its alias chain stands for.
    // Entries already made stay when a later step fails.
    int addReference(Node* node);
    // Takes the last occurrence of node out of this symbol and each alias. This symbol leaves
    // the node's side list only with unlink; the caller then owns that entry.
    int removeReference(Node* node, bool unlink);
    // Empties references and takes this symbol out of each node's side list.
    void clearReferences() {
        for (unsigned n = references.count(); n-- > 0;) {
            Node* node = references[n];
            references.removeAt(n);
            if (node) node->removeReferringSymbol(this);
        }
    }
    // For a node that is going away: drops one occurrence of it, leaving its side list alone.
    void forgetReference(const Node* node) { removeLast(node); }

protected:
    quernbase::QBString name;
    Tree* definition;
    Tree* scope;
    quernbase::QBArray<Node*> references;
    TBPSymbolInfo* alias = nullptr;

    // Gives copy this symbol's references, entering copy in each side list; on failure the
    // copy is freed (its destructor unhooks what was made) and null returned.
    template <class Symbol>
    Symbol* copyReferencesInto(Symbol* copy) const {
        if (!copy) return nullptr;
        for (Node* node : references) {
            if (copy->references.add(node) != 0 || node->addReferringSymbol(copy) != 0) {
                delete copy;
                return nullptr;
            }
        }
        return copy;
    }

private:
    bool removeLast(const Node* node) {
        for (unsigned i = references.count(); i-- > 0;)
            if (references[i] == node) {
                references.removeAt(i);
                return true;
            }
        return false;
    }
};

template <class T>
int TBPSymbolInfo<T>::addReference(Node* node) {
    if (!node) return 0;
    if (int rc = references.add(node)) return rc;
    int rc = alias ? alias->addReference(node) : 0;
    if (rc >= 0) rc = node->addReferringSymbol(this);
    if (rc < 0) removeLast(node);  // an entry without its side-list twin would dangle
    return rc < 0 ? rc : 0;
}

template <class T>
int TBPSymbolInfo<T>::removeReference(Node* node, bool unlink) {
    if (!node) return 0;
    for (TBPSymbolInfo* s = this; s; s = s->alias)
        if (s->removeLast(node) && (s != this || unlink)) node->removeReferringSymbol(s);
    return 0;
}

template <class T>
class TBPSymbolTable : public quernbase::QBMemory {
public:
    typedef TBPSymbolInfo<T> Symbol;
    typedef TBPParseTree<T> Tree;
    typedef TBPToken<T> Token;
    typedef quernbase::QBArray<Symbol*> SymbolList;
    typedef quernbase::QBHashTable<quernbase::QBString, SymbolList> Map;
    enum { FIRST_BUCKETS = 5 };

    // Null when memory runs out.
    static TBPSymbolTable* create(Tree* owner, int buckets) {
        TBPSymbolTable* table = new (std::nothrow) TBPSymbolTable(owner);
        if (table && table->symbols.rehash(buckets > 0 ? buckets : FIRST_BUCKETS) != 0) {
            delete table;
            return nullptr;
        }
        return table && table->symbols.getBucketCount() > 0 ? table : (delete table, nullptr);
    }
    TBPSymbolTable(const TBPSymbolTable&) = delete;
    TBPSymbolTable& operator=(const TBPSymbolTable&) = delete;
    // Drops the count on every listed symbol; imported tables are not touched.
    virtual ~TBPSymbolTable() {
        symbols.forEach([](const quernbase::QBString&, const SymbolList& list) {
            for (Symbol* symbol : list) symbol->release();
        });
    }

    virtual int dumpToString(quernbase::QBString& out, int indent, bool withReferences) const;
    virtual void dump(int indent, bool withReferences) const {
        quernbase::QBString text("");
        dumpToString(text, indent, withReferences);
        std::fputs(text.isNull() ? "" : text.get(), stdout);
    }

    Tree* getOwner() const { return owner; }
    int getKeyCount() const { return symbols.count(); }
    int getBucketCount() const { return symbols.getBucketCount(); }
    unsigned getImportCount() const { return imports.count(); }
    TBPSymbolTable* getImport(unsigned i) const { return i < imports.count() ? imports[i] : nullptr; }
    // The entry of name, or null for a name without one.
    SymbolList* getEntry(const quernbase::QBString& name) const { return symbols.find(name); }
    template <class F>
    void forEachEntry(F&& visit) const { symbols.forEach(visit); }

    // Appends symbol to its name's entry and takes a count. 0 or OutOfMemory.
    int add(Symbol* symbol);
    int addImport(TBPSymbolTable* table) { return table ? imports.add(table) : 0; }
    // Takes every occurrence out, dropping one count for each; an empty entry loses its key.
    int remove(Symbol* symbol);
    // Appends the symbols of name here and in the imports: see collect. 0 or NameNotFound.
    int collectSymbols(const quernbase::QBString& name, SymbolList& out, bool firstOnly) const {
        Visited visited;
        unsigned before = out.count();
        int rc = collect(name, out, firstOnly, visited);
        if (rc < 0 && rc != qbmsg::NameNotFound) return rc;
        return out.count() > before ? 0 : qbmsg::NameNotFound;
    }
    // Every entry whose first symbol's name begins with prefix, in bucket order.
    int collectWithPrefix(const quernbase::QBString& prefix, SymbolList& out) const;
    // A copy for a cloned tree: cloned symbols, the same imports.
    TBPSymbolTable* clone(Tree* newOwner) const;
    // Aliases each symbol here to the symbol of other with the same name whose definition
    // starts at the same seek position.
    int linkTo(const TBPSymbolTable& other) const;

private:
    // Tables already on the current route of an import walk.
    typedef quernbase::QBArray<const TBPSymbolTable*> Visited;

    Map symbols;
    quernbase::QBArray<TBPSymbolTable*> imports;
    Tree* owner;

    explicit TBPSymbolTable(Tree* ownerNode) : symbols(quernbase::QBString::hashString), owner(ownerNode) {}

    int collect(const quernbase::QBString& name, SymbolList& out, bool firstOnly,
                Visited& visited) const;
    static int appendAll(const SymbolList& list, SymbolList& out) {
        for (Symbol* symbol : list)
            if (int rc = out.add(symbol)) return rc;
        return 0;
    }
    static bool seekOfDefinition(const Symbol* symbol, uint32_t& seek) {
        Token* first = symbol->getDefinition() ? symbol->getDefinition()->getFirstToken() : nullptr;
        if (first) seek = first->getSeekPosition();
        return first != nullptr;
    }
    static int appendLocation(quernbase::QBString& out, const Token* token);
    // Characters since the last line end, from 1 on every line.
    static uint32_t columnOf(const BPSourcePosition& where) {
        if (where.source.isNull() || !where.cursor) return 0;
        const char* start = where.cursor;
        while (start > where.source->begin && start[-1] != '\n' && start[-1] != '\r') --start;
        return uint32_t(where.cursor - start) + 1;
    }
    static int ownerDisplayName(const Tree* tree, quernbase::QBString& out);
    int dumpSymbol(quernbase::QBString& out, const quernbase::QBString& margin,
                   const Symbol* symbol, bool withReferences) const;
};

template <class T>
int TBPSymbolTable<T>::add(Symbol* symbol) {
    SymbolList* list = symbols.find(symbol->getName());
    if (!list) {
        if (int rc = symbols.set(symbol->getName(), SymbolList())) return rc;
        list = symbols.find(symbol->getName());
    }
    if (int rc = list->add(symbol)) {
        if (list->count() == 0) symbols.remove(symbol->getName());
        return rc;
    }
    symbol->addRef();
    return 0;
}

template <class T>
int TBPSymbolTable<T>::remove(Symbol* symbol) {
    const quernbase::QBString name(symbol->getName());
    SymbolList* list = symbols.find(name);
    if (!list) return 0;
    unsigned removed = 0;
    for (unsigned i = list->count(); i-- > 0;)
        if ((*list)[i] == symbol) {
            list->removeAt(i);
            ++removed;
        }
    if (list->count() == 0) symbols.remove(name);
    while (removed-- > 0) symbol->release();
    return 0;
}

// Each import is searched with its own copy of the visited set, so a sibling branch is not
// hidden by what another branch saw; only the current route is cut, which ends cycles.
template <class T>
int TBPSymbolTable<T>::collect(const quernbase::QBString& name, SymbolList& out, bool firstOnly,
                               Visited& visited) const {
    if (const SymbolList* list = symbols.find(name); list && list->count() > 0) {
        if (int rc = appendAll(*list, out)) return rc;
        if (firstOnly) return 0;
    }
    if (int rc = visited.add(this)) return rc;
    for (TBPSymbolTable* import : imports) {
        if (!import || visited.find(import) >= 0) continue;
        Visited route(visited);
        if (route.count() != visited.count()) return qbmsg::OutOfMemory;
        int rc = import->collect(name, out, firstOnly, route);
        if (rc < 0 && rc != qbmsg::NameNotFound) return rc;
        if (firstOnly && out.count() > 0) return 0;
    }
    return out.count() > 0 ? 0 : qbmsg::NameNotFound;
}

template <class T>
int TBPSymbolTable<T>::collectWithPrefix(const quernbase::QBString& prefix, SymbolList& out) const {
    int rc = 0;
    symbols.forEach([&](const quernbase::QBString&, const SymbolList& list) {
        if (rc == 0 && list.count() > 0 && list[0]->getName().beginsWith(prefix, 1))
            rc = appendAll(list, out);
    });
    return rc;
}

template <class T>
TBPSymbolTable<T>* TBPSymbolTable<T>::clone(Tree* newOwner) const {
    TBPSymbolTable* copy = create(newOwner, 2 * symbols.count() + FIRST_BUCKETS);
    int rc = copy ? 0 : qbmsg::OutOfMemory;
    symbols.forEach([&](const quernbase::QBString&, const SymbolList& list) {
        for (unsigned i = 0; rc == 0 && i < list.count(); ++i) {
            Symbol* symbolCopy = list[i]->clone();
            rc = symbolCopy ? copy->add(symbolCopy) : qbmsg::OutOfMemory;
            if (symbolCopy && rc != 0) delete symbolCopy;
        }
    });
    for (unsigned i = 0; rc == 0 && i < imports.count(); ++i) rc = copy->addImport(imports[i]);
    if (rc == 0) return copy;
    delete copy;
    return nullptr;
}

template <class T>
int TBPSymbolTable<T>::linkTo(const TBPSymbolTable& other) const {
    int rc = 0;
    symbols.forEach([&](const quernbase::QBString& key, const SymbolList& list) {
        const SymbolList* theirs = other.symbols.find(key);
        if (rc != 0 || !theirs || list.count() == 0) return;
        for (Symbol* symbol : list) {
            uint32_t seek = 0, theirSeek = 0;
            if (!seekOfDefinition(symbol, seek)) continue;
            for (Symbol* candidate : *theirs) {
                if (!seekOfDefinition(candidate, theirSeek) || theirSeek != seek) continue;
                symbol->setAlias(candidate);
                break;
            }
        }
    });
    return rc;
}

// file(line,column):@seek:
template <class T>
int TBPSymbolTable<T>::appendLocation(quernbase::QBString& out, const Token* token) {
    out += token->getFileName();
    out += "(";
    out.appendNumber(token->getLine(), 10);
    out += ",";
    out.appendNumber(columnOf(*token->getPosition()), 10);
    out += "):@";
    out.appendNumber(token->getSeekPosition(), 10);
    return out.append(":");
}

// The name an import line shows: the display name of the symbol the scope's type names,
// else the node's type name.
template <class T>
int TBPSymbolTable<T>::ownerDisplayName(const Tree* tree, quernbase::QBString& out) {
    typename Tree::TypeInfo* type = const_cast<Tree*>(tree)->getTypeInfo();
    if (Symbol* symbol = type ? type->getSymbol() : nullptr) return symbol->getDisplayName(out);
    const char* typeName = tree->getTypeName();
    return out.set(typeName ? typeName : "CUSTOM");
}

template <class T>
int TBPSymbolTable<T>::dumpSymbol(quernbase::QBString& out, const quernbase::QBString& margin,
                                  const Symbol* symbol, bool withReferences) const {
    quernbase::QBString display("");
    if (int rc = symbol->getDisplayName(display)) return rc;
    out += margin;
    out += display;
    out += "\n";
    if (!withReferences) return 0;
    Token* first = symbol->getDefinition() ? symbol->getDefinition()->getFirstToken() : nullptr;
    if (first) {
        out += margin;
        out += "  ";
        appendLocation(out, first);
        out += " definition of '";
        out += symbol->getName();
        out += "'\n";
    }
    for (unsigned i = 0; i < symbol->getReferenceCount(); ++i) {
        TBPParseNode<T>* node = symbol->getReference(i);
        out += margin;
        out += "  ";
        if (Token* token = node->getFirstToken()) {
            appendLocation(out, token);
            out += " reference to '";
            out += symbol->getName();
            out += "'";
        } else {
            const char* typeName = node->getTypeName();
            out += typeName ? typeName : "CUSTOM";
        }
        if (int rc = out.append("\n")) return rc;
    }
    return 0;
}

template <class T>
int TBPSymbolTable<T>::dumpToString(quernbase::QBString& out, int indent, bool withReferences) const {
    quernbase::QBString margin("");
    if (int rc = margin.pad(unsigned(indent > 0 ? indent : 0))) return rc;
    int rc = 0;
    symbols.forEach([&](const quernbase::QBString&, const SymbolList& list) {
        for (unsigned i = 0; rc == 0 && i < list.count(); ++i)
            rc = dumpSymbol(out, margin, list[i], withReferences);
    });
    for (unsigned i = 0; rc == 0 && i < imports.count(); ++i) {
        if (!imports[i] || !imports[i]->owner) continue;
        quernbase::QBString display("");
        rc = ownerDisplayName(imports[i]->owner, display);
        out += margin;
        out += "imports ";
        out += display;
        if (rc == 0) rc = out.append("\n");
    }
    return rc;
}

// The tree's symbol operations, which live here because they need the complete table.

template <class T>
int TBPParseTree<T>::reserveSymbols(int buckets) {
    if (symbols) return 0;
    symbols = TBPSymbolTable<T>::create(this, buckets);
    return symbols ? 0 : qbmsg::OutOfMemory;
}

template <class T>
int TBPParseTree<T>::addSymbol(TBPSymbolInfo<T>* symbol) {
    if (int rc = reserveSymbols(TBPSymbolTable<T>::FIRST_BUCKETS)) return rc;
    return symbol ? symbols->add(symbol) : 0;
}

template <class T>
int TBPParseTree<T>::addImport(TBPSymbolTable<T>* table) {
    if (!table) return 0;
    if (int rc = reserveSymbols(TBPSymbolTable<T>::FIRST_BUCKETS)) return rc;
    return symbols->addImport(table);
}

template <class T>
int TBPParseTree<T>::removeSymbol(TBPSymbolInfo<T>* symbol) {
    if (!symbols) return qbmsg::NotInList;
    return symbol ? symbols->remove(symbol) : qbmsg::BadArgument;
}

template <class T>
int TBPParseTree<T>::moveSymbol(TBPSymbolInfo<T>* symbol, TBPParseTree* target) {
    if (!symbol || !target) return qbmsg::BadArgument;
    symbol->addRef();
    int rc = removeSymbol(symbol);
    if (rc == 0) rc = target->addSymbol(symbol);
    if (rc == 0) symbol->setScope(target);
    symbol->release();
    return rc;
}

template <class T>
int TBPParseTree<T>::findSymbols(const quernbase::QBString& name, SymbolList& out) const {
    for (const TBPParseTree* tree = this; tree; tree = tree->parentTree()) {
        if (!tree->symbols) continue;
        int rc = tree->symbols->collectSymbols(name, out, false);
        if (rc != qbmsg::NameNotFound) return rc;
    }
    return qbmsg::NameNotFound;
}

template <class T>
typename TBPParseTree<T>::SymbolList* TBPParseTree<T>::findSymbolList(
    const quernbase::QBString& name) const {
    for (const TBPParseTree* tree = this; tree; tree = tree->parentTree()) {
        SymbolList* list = tree->symbols ? tree->symbols->getEntry(name) : nullptr;
        if (list && list->count() > 0) return list;
    }
    return nullptr;
}

template <class T>
int TBPParseTree<T>::findSymbolsWithPrefix(const quernbase::QBString& prefix, SymbolList& out) const {
    return symbols ? symbols->collectWithPrefix(prefix, out) : 0;
}

template <class T>
int TBPParseTree<T>::linkSymbols(const Node* other, bool recursive) {
    if (!other || other->getType() != this->type || !other->isTree()) return 0;
    const TBPParseTree* tree = static_cast<const TBPParseTree*>(other);
    if (symbols && tree->symbols)
        if (int rc = symbols->linkTo(*tree->symbols)) return rc;
    if (!recursive) return 0;
    unsigned n = children.count() < tree->children.count() ? children.count() : tree->children.count();
    for (unsigned i = 0; i < n; ++i) {
        Node* mine = children[i];
        if (!mine || !mine->isTree()) continue;
        Node* theirs = tree->children[i];
        if (int rc = static_cast<TBPParseTree*>(mine)->linkSymbols(
                theirs && theirs->isTree() ? theirs : nullptr, true);
            rc < 0)
            return rc;
    }
    return 0;
}

template <class T>
int TBPParseTree<T>::copySymbolsInto(TBPParseTree* copy) const {
    if (!symbols) return 0;
    copy->symbols = symbols->clone(copy);
    if (!copy->symbols) return qbmsg::OutOfMemory;
    return copy->linkSymbols(this, false);
}
