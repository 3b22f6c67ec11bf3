#include "CPPreprocessorEdits.h"

using quernbase::QBArray;

namespace {

typedef TBPToken<CPParseNodeType> Token;

// The copy that goes into the preprocessor trees: a plain lexer token, never a wrapper, with
// the text and whitespace the old token shows.
CPPreprocessorToken* freshCopy(Token* old) {
    CPPreprocessedToken* wrapper = dynamic_cast<CPPreprocessedToken*>(old);
    if (!wrapper) {
        CPPreprocessorToken* plain = CPPreprocessorToken::from(old);
        if (plain) return static_cast<CPPreprocessorToken*>(plain->clone());
    }
    CPPreprocessorToken* copy = new (std::nothrow)
        CPPreprocessorToken(old->getType(), *old->getPosition(), old->getLength(), old->getFilePosition());
    if (!copy) return nullptr;
    int rc = copy->setSpelling(wrapper ? wrapper->getSpelling() : old->getSpelling());
    unsigned spaces = wrapper ? wrapper->getWhitespaceCount() : old->getWhitespaceCount();
    for (unsigned i = 0; rc == 0 && i < spaces; ++i) {
        Token* ws = wrapper ? wrapper->getWhitespace(i) : old->getWhitespace(i);
        Token* wsCopy = static_cast<Token*>(ws->clone());
        rc = wsCopy ? copy->insertWhitespace(wsCopy, -1) : qbmsg::OutOfMemory;
        if (rc != 0) delete wsCopy;
    }
    if (rc != 0) {
        delete copy;
        return nullptr;
    }
    return copy;
}

// Puts wrapper where old stands in its parent, keeping a filter parent's owners right.
int replaceInParent(Token* old, CPPreprocessedToken* wrapper) {
    TBPParseNode<CPParseNodeType>* parent = old->getParent();
    if (!parent || !parent->isTree()) return 0;
    int at = parent->indexOfChild(old, false);
    if (at < 0) return 0;
    if (CPPreprocessorFilter* filter = CPPreprocessorFilter::from(parent))
        return filter->replaceChild(unsigned(at), wrapper);
    return static_cast<TBPParseTree<CPParseNodeType>*>(parent)->setChild(unsigned(at), wrapper);
}

// Runs edit(owner, index of token) in each owner of token outside a define, last first, each
// marked modified. The owners are taken before the edits change the token's list.
template <class Edit>
int editOwners(CPPreprocessorToken* token, Edit edit) {
    QBArray<CPPreprocessorFilter*> owners;
    for (unsigned i = 0; i < token->getOwnerCount(); ++i) {
        CPPreprocessorFilter* owner = token->getOwner(i);
        if (owner && !owner->isInDefine())
            if (int rc = owners.add(owner)) return rc;
    }
    int rc = 0;
    for (unsigned n = owners.count(); rc == 0 && n-- > 0;) {
        CPPreprocessorFilter* owner = owners[n];
        int at = owner->indexOfChild(token, false);
        if (at < 0) continue;
        owner->setModified();
        rc = edit(owner, unsigned(at));
    }
    return rc;
}

// Inserts the list at index, last item first so that the items keep their order.
int insertList(CPPreprocessorFilter* owner, unsigned index, const QBArray<Token*>& list) {
    for (unsigned i = list.count(); i-- > 0;)
        if (list[i])
            if (int rc = owner->insertChild(index, list[i])) return rc;
    return 0;
}

}  // namespace

// All copies and wrappers are made before anything changes, so that running out of memory
// leaves the list and both trees as they were.
int CPPreprocessorEdits::cloneForEdit(CPPreprocessorFilter* node, TokenList& tokens) {
    struct Made {
        CPPreprocessorToken* fresh;
        CPPreprocessedToken* wrapper;
    };
    QBArray<Made> made;
    int rc = 0;
    for (unsigned i = 0; rc == 0 && i < tokens.count(); ++i) {
        Token* old = tokens[i];
        Made m{old ? freshCopy(old) : nullptr, nullptr};
        if (m.fresh && old->getParent()) m.wrapper = new (std::nothrow) CPPreprocessedToken(m.fresh, node, 0);
        if (m.fresh) m.fresh->addRef();
        if (m.wrapper) m.wrapper->addRef();
        if ((old && !m.fresh) || (m.fresh && old->getParent() && !m.wrapper) || made.add(m) != 0) {
            if (m.fresh) m.fresh->release();
            if (m.wrapper) m.wrapper->release();
            rc = qbmsg::OutOfMemory;
        }
    }
    for (unsigned i = 0; i < made.count(); ++i) {
        if (rc == 0 && made[i].wrapper) {
            made[i].wrapper->setSourceToken(made[i].fresh);
            replaceInParent(tokens[i], made[i].wrapper);
        }
        if (made[i].wrapper) made[i].wrapper->release();
        if (rc != 0 && made[i].fresh) made[i].fresh->release();
        else if (made[i].fresh) tokens[i] = made[i].fresh;
    }
    return rc;
}

void CPPreprocessorEdits::settle(TokenList& list) {
    for (Token*& token : list) {
        if (!token) continue;
        if (token->getRefCount() == 1) {
            token->release();
            token = nullptr;
        } else {
            token->release();
        }
    }
}

int CPPreprocessorEdits::insertNextTo(CPPreprocessorToken* token, TokenList& list, bool after) {
    if (!token) return qbmsg::NothingToWorkOn;
    if (CPPreprocessedToken* wrapper = dynamic_cast<CPPreprocessedToken*>(token))
        token = CPPreprocessorToken::from(wrapper->getWrittenToken());
    if (!token) return qbmsg::NothingToWorkOn;
    token->addRef();  // the edits may let go of the anchor's last holder
    CPPreprocessorFilter* parent = CPPreprocessorFilter::from(token->getParent());
    int rc = parent ? cloneForEdit(parent, list) : 0;
    bool cloned = parent && rc == 0;
    if (rc == 0)
        rc = editOwners(token, [&](CPPreprocessorFilter* owner, unsigned at) {
            return insertList(owner, at + (after ? 1 : 0), list);
        });
    if (cloned) settle(list);
    token->release();
    return rc;
}

int CPPreprocessorEdits::insertBeforeToken(CPPreprocessorToken* token, TokenList& list) {
    return insertNextTo(token, list, false);
}

int CPPreprocessorEdits::insertAfterToken(CPPreprocessorToken* token, TokenList& list) {
    return insertNextTo(token, list, true);
}

int CPPreprocessorEdits::replaceToken(CPPreprocessorFilter* node, unsigned childIndex,
                                      TokenList& list) {
    if (!node || childIndex >= node->getChildCount()) return qbmsg::NothingToWorkOn;
    CPPreprocessorToken* token = CPPreprocessorToken::from(node->getChild(childIndex));
    if (!token) {
        int rc = node->replaceChild(childIndex, nullptr);
        node->pruneIfEmpty();
        return rc;
    }
    token->addRef();
    int rc = cloneForEdit(node, list);
    bool cloned = rc == 0;
    if (rc == 0)
        rc = editOwners(token, [&](CPPreprocessorFilter* owner, unsigned at) {
            int status = owner->replaceChild(at, nullptr);
            if (status == 0) status = insertList(owner, at, list);
            if (owner == node) owner->pruneIfEmpty();
            return status;
        });
    if (cloned) settle(list);
    token->release();
    return rc;
}
