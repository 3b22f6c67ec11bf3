#include "CPPreprocessorFilter.h"

#include "CPPreprocessor.h"
#include "CPPreprocessorNodes.h"

using quernbase::QBString;

bool cpIsIdentifierLike(int kind) {
    unsigned flags = cpTokenFlags(kind);
    return kind == CPT_IDENTIFIER ||
           ((flags & CPTK_KEYWORD) && !(flags & CPTK_BUILTIN) && kind != CPT_kw_defined);
}

bool cpIsBuiltinKind(int kind) { return cpTokenHas(kind, CPTK_BUILTIN); }

CPPreprocessorFilter::~CPPreprocessorFilter() {
    for (Node* child : children) {
        if (!child) continue;
        if (child->isToken()) disownLeaf(child);
        else if (child->getParent() == this) child->setParent(nullptr);
    }
}

void CPPreprocessorFilter::ownLeaf(Node* node) {
    if (CPPreprocessorToken* token = CPPreprocessorToken::from(node)) token->addOwner(this);
}

void CPPreprocessorFilter::disownLeaf(Node* node) {
    if (CPPreprocessorToken* token = CPPreprocessorToken::from(node)) token->removeOwner(this, false);
}

int CPPreprocessorFilter::insertChild(unsigned index, Node* node) {
    if (int rc = TBPParseTree<CPParseNodeType>::insertChild(index, node)) return rc;
    ownLeaf(node);
    return 0;
}

int CPPreprocessorFilter::replaceChild(unsigned index, Node* node) {
    if (index >= getChildCount()) return ERR_BADINDEX;
    Node* old = children[index];
    if (old == node) return 0;
    if (old && old->isToken()) disownLeaf(old);
    if (int rc = setChild(index, node)) return rc;
    ownLeaf(node);
    return 0;
}

void CPPreprocessorFilter::unhookChildren(unsigned start, unsigned count) {
    unsigned end = count > getChildCount() - start ? getChildCount() : start + count;
    for (unsigned i = start; i < end; ++i) {
        Node* child = children[i];
        if (!child) continue;
        if (child->isToken()) disownLeaf(child);
        else if (child->getParent() == this) child->setParent(nullptr);
    }
}

int CPPreprocessorFilter::removeChildren(unsigned start, unsigned count) {
    if (start >= getChildCount()) return ERR_BADINDEX;
    unhookChildren(start, count);
    return TBPParseTree<CPParseNodeType>::removeChildren(start, count);
}

int CPPreprocessorFilter::replaceChildren(unsigned index, unsigned count, Node* node) {
    if (index > getChildCount()) return ERR_BADINDEX;
    if (count) unhookChildren(index, count);
    int rc = CPParseTree::replaceChildren(index, count, node);
    if (rc == 0) ownLeaf(node);
    return rc;
}

TBPParseNode<CPParseNodeType>* CPPreprocessorFilter::clone() const {
    CPPreprocessorFilter* copy = makeEmptyCopy();
    if (!copy) return nullptr;
    if (attributes && copy->ensureAttributes()) copy->attributes->copyFlagsFrom(*attributes);
    for (Node* child : children) {
        Node* cloned = child ? child->clone() : nullptr;
        if ((child && !cloned) || copy->addChild(cloned) != 0) {
            delete cloned;
            delete copy;
            return nullptr;
        }
    }
    return copy;
}

CPPreprocessorFilter* CPPreprocessorFilter::makeEmptyCopy() const {
    return new (std::nothrow) CPPreprocessorFilter(type);
}

bool CPPreprocessorFilter::isKindOf(CPParseNodeType kind) const {
    for (int t = type; t != CPT_NULL;) {
        if (t == kind) return true;
        const CPPreprocessorKindInfo* info = cpPreprocessorKindInfo(t);
        t = info ? info->base : CPT_NULL;
    }
    return false;
}

int CPPreprocessorFilter::validate() {
    const CPPreprocessorKindInfo* info = cpPreprocessorKindInfo(type);
    if (!info || !info->rules) return 0;
    return TBPParseTree<CPParseNodeType>::validate(this, info->rules);
}

int CPPreprocessorFilter::printToString(QBString& out, int indent, bool showWhitespace) {
    QBString margin("");
    if (int rc = margin.pad(unsigned(indent > 0 ? indent : 0))) return rc;
    if (parent) {
        out += margin;
        out += "PARENT=";
        out += parent->getTypeName() ? parent->getTypeName() : "CUSTOM";
        out += "\n";
    }
    if (origin) {
        out += margin;
        out += "PREPROCESSING=";
        out += origin->getTypeName() ? origin->getTypeName() : "CUSTOM";
        out += "\n";
    }
    return TBPParseTree<CPParseNodeType>::printToString(out, indent, showWhitespace);
}

void CPPreprocessorFilter::setModified() {
    if (origin && origin != this) origin->setModified();
    TBPParseTree<CPParseNodeType>::setModified();
}

bool CPPreprocessorFilter::isCancelled(CPPreprocessor* pp) { return pp && pp->isCancelled(); }

CPPreprocessorFilter* CPPreprocessorFilter::wrapTarget(CPPreprocessorFilter* target, bool flat,
                                                       CPPreprocessorFilter* origin,
                                                       unsigned reserve) {
    if (flat) return target;
    CPPreprocessorPPTokens* tokens = new (std::nothrow) CPPreprocessorPPTokens;
    if (!tokens) return nullptr;
    tokens->setOrigin(origin);
    if (reserve) tokens->reserveChildren(reserve);
    if (target->addChild(tokens) != 0) {
        delete tokens;
        return nullptr;
    }
    return tokens;
}

int CPPreprocessorFilter::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                                     CPPreprocessorMacro* call, int) {
    if (getChildCount() == 0) return 0;
    CPPreprocessorFilter* into = wrapTarget(target, flat, this, getChildCount());
    if (!into) return qbmsg::OutOfMemory;
    int rc = preprocessChildren(pp, into, flat, call, 0);
    if (hasError()) into->setErrorFlag(false);
    return rc;
}

int CPPreprocessorFilter::preprocessChildren(CPPreprocessor* pp, CPPreprocessorFilter* target,
                                             bool flat, CPPreprocessorMacro* call,
                                             int childDepth) {
    int kept = 0;
    for (Node* child : children) {
        if (!child) continue;
        int rc;
        if (child->isToken()) rc = target->addChild(child);
        else if (CPPreprocessorFilter* node = from(child))
            rc = node->preprocess(pp, target, flat, call, childDepth);
        else rc = 0;
        if (rc == qbmsg::Cancelled) return rc;
        if (rc < 0) kept = rc;
    }
    return kept;
}

CPPreprocessorUnit* CPPreprocessorFilter::getOwningUnit() {
    if (origin && origin != this)
        if (CPPreprocessorUnit* unit = origin->getOwningUnit()) return unit;
    CPPreprocessorFilter* up = getFilterParent();
    return up ? up->getOwningUnit() : nullptr;
}

bool CPPreprocessorFilter::isInDefine() const {
    for (const Node* node = this; node; node = node->getParent()) {
        int t = node->getType();
        if (t >= CPN_PreprocessorDefine && t <= CPN_PreprocessorDefineConcat) return true;
    }
    return false;
}

namespace {

// Whether node stands in the subtree of root, by walking down: a shared token's parent pointer
// names only the last node that took it.
bool holds(const TBPParseNode<CPParseNodeType>* root, const TBPParseNode<CPParseNodeType>* node) {
    if (root == node) return true;
    for (unsigned i = 0; i < root->getChildCount(); ++i) {
        const TBPParseNode<CPParseNodeType>* child = root->getChild(i);
        if (child && holds(child, node)) return true;
    }
    return false;
}

int indexHolding(const TBPParseNode<CPParseNodeType>* root,
                 const TBPParseNode<CPParseNodeType>* node) {
    for (unsigned i = 0; i < root->getChildCount(); ++i) {
        const TBPParseNode<CPParseNodeType>* child = root->getChild(i);
        if (child && holds(child, node)) return int(i);
    }
    return -1;
}

// A file or a branch holds lines: its first leaf is often a directive's `#`, which produces
// nothing, so its first product stands for itself rather than for that leaf.
bool holdsLines(const TBPParseNode<CPParseNodeType>* node) {
    int t = node ? node->getType() : CPT_NULL;
    return t == CPN_PreprocessorUnit || t == CPN_PreprocessorIfBody || t == CPN_PreprocessorIfGroup;
}

}  // namespace

// The first token a node produces maps to the place of the node's own first product, so the
// first token of an expansion leads to the macro's name at the call site; every later token
// of a node is its own written token (a body token in the #define, or an argument's token).
TBPToken<CPParseNodeType>* CPPreprocessorFilter::getWrittenToken(Node* child, unsigned index) {
    if (isInDefine() || !child) return nullptr;
    int i = int(index);
    if (getChild(index) != child) {
        // Only whether child comes first matters below. A subtree's parent link is reliable,
        // so a deep search (slow on a large file) is left for shared tokens.
        if (child->isTree() && child->getParent() == this)
            i = getChild(0) == child ? 0 : 1;
        else
            i = indexHolding(this, child);
    }
    if (i < 0) return nullptr;
    Token* firstOfChild = child->getFirstToken();
    if (i > 0 || holdsLines(this) || holdsLines(origin)) return firstOfChild;
    if (origin && origin != this) {
        if (Token* first = origin->getFirstToken())
            if (Token* written = origin->getWrittenToken(first, 0)) return written;
    }
    if (CPPreprocessorFilter* up = getFilterParent()) return up->getWrittenToken(this, 0);
    // The first node of a file: nothing stands before it to speak for it.
    return origin ? nullptr : firstOfChild;
}

void CPPreprocessorFilter::pruneIfEmpty() {
    if (getFirstToken()) return;
    CPPreprocessorFilter* up = getFilterParent();
    if (up && up->getType() != CPN_PreprocessorUnit) up->pruneIfEmpty();
    if (origin && origin != this && origin->getChildCount() > 0) {
        CPPreprocessorFilter* source = origin;
        source->removeChildren(0, source->getChildCount());
        source->pruneIfEmpty();
    }
}

int CPPreprocessorFilter::removeTokens(unsigned start, unsigned count) {
    if (isInDefine() || !getFirstToken()) return 0;
    if (start >= getChildCount()) return 0;
    if (count > getChildCount() - start) count = getChildCount() - start;
    for (unsigned i = start + count; i-- > start;) {
        Node* child = children[i];
        if (!child) continue;
        if (CPPreprocessorFilter* node = from(child)) {
            node->removeTokens(0, node->getChildCount());
        } else if (child->isToken()) {
            if (int rc = replaceChild(i, nullptr)) return rc;
            setModified();
        }
    }
    pruneIfEmpty();
    return 0;
}
