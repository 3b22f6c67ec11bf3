// An inner node of the parse tree: ordered children in fixed slots, where an absent optional
// item is a null child that keeps its place, so that a child's index has one meaning in each
// class. The tree counts each child and sets its parent; the text of a tree is the text of its
// leaves in order, which is how a file is written back after an edit.
#pragma once

#include "CPSimpleTypeName.h"
#include "TBPToken.h"

template <class T> class TBPSymbolTable;
template <class T> class TBPSymbolInfo;
template <class T, class S> class TBPTypeInfo;

// One entry of a class's grammar rule list, ended by an entry with type 0 and no sub-list.
// op: ' ' exactly one, '*' any number, '+' one or more, '?' at most one, '|' one of the sub-list.
template <class T>
struct TBPValidationRule {
    int32_t type;
    int32_t op;
    const TBPValidationRule* sublist;
};

template <class T>
class TBPParseTree : public TBPParseNode<T> {
    friend class TBPParseNode<T>;

public:
    typedef TBPParseNode<T> Node;
    typedef TBPToken<T> Token;
    typedef TBPValidationRule<T> Rule;
    typedef TBPTypeInfo<T, CPSimpleTypeName> TypeInfo;
    typedef quernbase::QBArray<TBPSymbolInfo<T>*> SymbolList;

    explicit TBPParseTree(T nodeType) : Node(nodeType) {}
    ~TBPParseTree() override {
        dropChildren();
        delete symbols;
    }

    // The node interface.
    Node* clone() const override { return cloneInto(new (std::nothrow) TBPParseTree(this->type)); }
    bool equals(const Node* other) const override;
    const BPSourcePosition* getPosition() const override {
        Token* first = this->getFirstToken();
        return first ? first->getPosition() : nullptr;
    }
    int printToString(quernbase::QBString& out, int indent, bool showWhitespace) override;
    int appendErrors(quernbase::QBString& out) const override {
        for (Node* child : children)
            if (child)
                if (int rc = child->appendErrors(out)) return rc;
        return this->appendOwnErrors(out);
    }
    int getText(quernbase::QBString& out) const override {
        for (Node* child : children)
            if (child)
                if (int rc = child->getText(out)) return rc;
        return 0;
    }
    bool isToken() const override { return false; }
    bool isTree() const override { return true; }
    void clearErrors(bool recursive) override {
        clearBelow(recursive);
        this->reexamineAncestors();
    }
    int clearChildErrors() override {
        for (Node* child : children)
            if (child) child->clearErrors(false);
        return 0;
    }
    int collectErrors(TBPErrorLog<T>& log) const override {
        for (Node* child : children)
            if (child)
                if (int rc = child->collectErrors(log); rc < 0) return rc;
        return Node::collectErrors(log);
    }

    // Structure. Each stored child is counted and gets this tree as its parent; null is allowed.
    // A child that carries an error passes the flag to this node, not further up.
    int addChild(Node* node) { return insertChild(children.count(), node); }
    int insertChild(unsigned index, Node* node) {
        if (index > children.count()) return Node::ERR_BADINDEX;
        if (int rc = children.insertAt(index, node)) return rc;
        adopt(node);
        return node && node->hasError() ? this->setErrorFlag(false) : 0;
    }
    int setChild(unsigned index, Node* node) {
        if (index >= children.count()) return Node::ERR_BADINDEX;
        Node* old = children[index];
        if (old == node) return 0;
        children[index] = node;
        adopt(node);
        if (old) letGo(old);
        return node && node->hasError() ? this->setErrorFlag(false) : 0;
    }
    // count is clamped to the children that exist.
    int removeChildren(unsigned start, unsigned count) {
        if (start >= children.count()) return Node::ERR_BADINDEX;
        if (count > children.count() - start) count = children.count() - start;
        while (count-- > 0) {
            Node* child = children[start];
            children.removeAt(start);
            if (child) letGo(child);
        }
        return 0;
    }
    // Forgets the cached validation here and on the direct children.
    void clearValidation() {
        this->clearValidated();
        for (Node* child : children)
            if (child) child->clearValidated();
    }
    // The leaf of that file whose range holds seek; with inWhitespace the range starts at the
    // leaf's first whitespace token.
    Token* findTokenAt(const quernbase::QBString& fileName, uint32_t seek, bool inWhitespace) const;

    // Checks this node's children against a rule list; caches the answer in attributes.
    static int validate(Node* node, const Rule* rules);
    using Node::validate;

    // The type embedded in this node. The framework's trees carry none; a language's tree base
    // embeds its own type class, derived from TypeInfo, and answers with it.
    virtual TypeInfo* getTypeInfo() { return nullptr; }

    // Symbols of the scope this node opens (see TBPSymbolTable.h).
    TBPSymbolTable<T>* getSymbolTable() const { return symbols; }
    // Makes the table with that many buckets unless there is one. 0 or OutOfMemory.
    int reserveSymbols(int buckets);
    // Makes the table on first use; a null symbol only makes it. Takes a count on symbol.
    int addSymbol(TBPSymbolInfo<T>* symbol);
    int addImport(TBPSymbolTable<T>* table);
    // NotInList without a table; a symbol not listed is a success.
    int removeSymbol(TBPSymbolInfo<T>* symbol);
    // Into target's table, which becomes the symbol's scope. BadArgument with a null argument.
    int moveSymbol(TBPSymbolInfo<T>* symbol, TBPParseTree* target);
    // The raw walk: this node's table with its imports, then each parent tree's, up to the
    // first that has the name. NameNotFound if none has.
    int findSymbols(const quernbase::QBString& name, SymbolList& out) const;
    // The nearest non-empty entry of name, without imports; null if none.
    SymbolList* findSymbolList(const quernbase::QBString& name) const;
    // This table only: each entry whose first symbol's name begins with prefix.
    int findSymbolsWithPrefix(const quernbase::QBString& prefix, SymbolList& out) const;
    // Aliases the symbols of this tree (and with recursive, of its subtrees) to those of a
    // structurally equal tree whose definitions start at the same seek positions.
    int linkSymbols(const Node* other, bool recursive);

protected:
    quernbase::QBArray<Node*> children;
    TBPSymbolTable<T>* symbols = nullptr;  // made by the symbol tables on first use

    // Fills copy (a new, empty node of the caller's class) with this node's type, flags and
    // clones of the children. Null, with copy freed, if memory runs out.
    TBPParseTree* cloneInto(TBPParseTree* copy) const;

private:
    void dropChildren() {
        for (unsigned n = children.count(); n-- > 0;) {
            Node* child = children[n];
            children.removeAt(n);
            if (!child) continue;
            if (child->getParent() == this) child->setParent(nullptr);
            child->release();
        }
    }
    const TBPParseTree* parentTree() const {
        Node* p = this->parent;
        return p && p->isTree() ? static_cast<const TBPParseTree*>(p) : nullptr;
    }
    int copySymbolsInto(TBPParseTree* copy) const;
    void adopt(Node* node) {
        if (!node) return;
        node->addRef();
        node->setParent(this);
    }
    // Drops this tree's count; the parent link goes with the last slot that held the child.
    void letGo(Node* child) {
        if (!child) return;
        if (child->getParent() == this && this->indexOfChild(child, false) < 0)
            child->setParent(nullptr);
        child->release();
    }
    void clearBelow(bool recursive) {
        this->clearOwnErrors();
        if (!recursive) return;
        for (Node* child : children) {
            if (!child) continue;
            if (child->isTree()) static_cast<TBPParseTree*>(child)->clearBelow(true);
            else child->clearErrors(true);
        }
    }
    static int matchRule(Node* node, unsigned& index, const Rule& rule);
    static int matchSequence(Node* node, unsigned& index, const Rule* rules);
    static int matchLeaf(Node* node, unsigned& index, const Rule& rule);
    static bool isRequired(int op) { return op == ' ' || op == '+'; }
    static bool repeats(int op) { return op == '*' || op == '+'; }
};

template <class T>
bool TBPParseTree<T>::equals(const Node* other) const {
    if (!other) return children.count() == 0;
    if (other->getType() != this->type || !other->isTree()) return false;
    const TBPParseTree* tree = static_cast<const TBPParseTree*>(other);
    if (tree->children.count() != children.count()) return false;
    for (unsigned i = 0; i < children.count(); ++i) {
        Node* mine = children[i];
        Node* theirs = tree->children[i];
        if (mine == theirs) continue;
        bool same = mine ? mine->equals(theirs) : theirs->equals(mine);
        if (!same) return false;
    }
    return true;
}

template <class T>
TBPParseTree<T>* TBPParseTree<T>::cloneInto(TBPParseTree* copy) const {
    if (!copy) return nullptr;
    copy->type = this->type;
    bool ok = true;
    if (this->attributes) {
        ok = copy->ensureAttributes() != nullptr;
        if (ok) copy->attributes->copyFlagsFrom(*this->attributes);
    }
    for (unsigned i = 0; ok && i < children.count(); ++i) {
        Node* child = children[i] ? children[i]->clone() : nullptr;
        ok = !children[i] || child;
        if (ok && copy->addChild(child) != 0) {
            ok = false;
            delete child;
        }
    }
    if (ok) ok = copySymbolsInto(copy) == 0;
    if (!ok) {
        delete copy;
        return nullptr;
    }
    return copy;
}

template <class T>
int TBPParseTree<T>::printToString(quernbase::QBString& out, int indent, bool showWhitespace) {
    quernbase::QBString margin("");
    if (int rc = margin.pad(unsigned(indent > 0 ? indent : 0))) return rc;
    const char* name = this->getTypeName();
    out += margin;
    out += "[";
    out += name ? name : "CUSTOM";
    if (this->hasError()) out += "     ***ERRORS***";
    else if (validate() != 0) out += "     ***INVALID***";
    if (symbols) {
        out += "\n";
        out += margin;
        out += " Symbols:\n";
        if (int rc = symbols->dumpToString(out, indent + 3, true)) return rc;
    }
    out += "\n";
    for (Node* child : children) {
        if (child) {
            if (int rc = child->printToString(out, indent + 2, showWhitespace)) return rc;
        } else {
            out += margin;
            out += "  (null)\n";
        }
    }
    out += margin;
    return out.append("]\n");
}

template <class T>
TBPToken<T>* TBPParseTree<T>::findTokenAt(const quernbase::QBString& fileName, uint32_t seek,
                                          bool inWhitespace) const {
    for (Node* child : children) {
        if (!child) continue;
        if (child->isTree()) {
            if (Token* found = static_cast<TBPParseTree*>(child)->findTokenAt(fileName, seek,
                                                                               inWhitespace))
                return found;
            continue;
        }
        Token* token = static_cast<Token*>(child);
        if (token->getFileName() != fileName) continue;
        uint32_t begin = token->getSeekPosition();
        uint32_t end = begin + token->getLength();
        if (inWhitespace && token->getWhitespaceCount() > 0)
            begin = token->getWhitespaceConst(0)->getSeekPosition();
        if (seek >= begin && (seek < end || seek == begin)) return token;
    }
    return nullptr;
}

// Validation: the rule list is matched against the children from index 0, and all of them
// must be used. A token matches by type alone; an inner node must also validate by its own
// rules. A null child stands for an absent optional item.
template <class T>
int TBPParseTree<T>::validate(Node* node, const Rule* rules) {
    if (!node) return -1;
    if (node->isValidated()) return node->hasError() || !node->isValid() ? -1 : 0;
    unsigned index = 0;
    int rc = rules ? matchSequence(node, index, rules) : 0;
    bool valid = rc >= 0 && index == node->getChildCount();
    node->setValidated(valid);
    return valid ? 0 : -1;
}

template <class T>
int TBPParseTree<T>::matchSequence(Node* node, unsigned& index, const Rule* rules) {
    for (const Rule* rule = rules; rule->type != 0 || rule->sublist; ++rule)
        if (int rc = matchRule(node, index, *rule)) return rc;
    return 0;
}

template <class T>
int TBPParseTree<T>::matchRule(Node* node, unsigned& index, const Rule& rule) {
    if (!rule.sublist) return matchLeaf(node, index, rule);
    if (rule.op == '|') {
        for (const Rule* choice = rule.sublist; choice->type != 0 || choice->sublist; ++choice) {
            unsigned at = index;
            if (matchRule(node, at, *choice) == 0) {
                index = at;
                return 0;
            }
        }
        return -1;
    }
    bool matched = false;
    do {
        unsigned at = index;
        if (matchSequence(node, at, rule.sublist) != 0) break;
        bool progressed = at != index;
        index = at;
        matched = true;
        if (!progressed) break;
    } while (repeats(rule.op));
    return matched || !isRequired(rule.op) ? 0 : -1;
}

template <class T>
int TBPParseTree<T>::matchLeaf(Node* node, unsigned& index, const Rule& rule) {
    bool matched = false;
    for (;;) {
        Node* child = node->getChild(index);
        if (!child) {
            if (isRequired(rule.op) && !matched) return -1;
            if (index < node->getChildCount()) ++index;  // an absent item keeps its slot
            return 0;
        }
        bool fits = child->getType() == rule.type || child->isKindOf(T(rule.type));
        if (fits && child->isTree()) fits = child->validate() == 0;
        if (!fits) return isRequired(rule.op) && !matched ? -1 : 0;
        ++index;
        matched = true;
        if (!repeats(rule.op)) return 0;
    }
}

#include "TBPSymbolTable.h"
#include "TBPTypeInfo.h"
