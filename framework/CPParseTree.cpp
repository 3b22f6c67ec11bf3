#include "CPParseTree.h"

using quernbase::QBArray;
using quernbase::QBString;


int CPParseTree::analyze(CPParseTree*, unsigned) { return 0; }

int CPParseTree::noteWrittenPlace(CPToken* leaf) {
    CPToken* written = leaf ? leaf->getWrittenToken() : nullptr;
    if (!written || written == leaf) return 0;
    const BPSourcePosition* here = leaf->getPosition();
    const BPSourcePosition* there = written->getPosition();
    if (!there || there->source.isNull()) return 0;
    if (here && here->source.get() == there->source.get() && here->cursor == there->cursor) return 0;
    return logWarning(there, qbmsg::InMacroExpansion);
}

CPSymbolInfo* CPParseTree::findSymbol(const QBString&, CPParseTree*, unsigned,
                                      QBArray<CPParseTree*>*, int, int*, CPParseTree**) {
    return nullptr;
}

int CPParseTree::findMembersWithPrefix(const QBString&, QBArray<CPSymbolInfo*>&) { return 0; }

CPSymbolInfo* CPParseTree::findSymbolByPath(const QBString&) { return nullptr; }

CPSymbolInfo* CPParseTree::findSymbolAtPosition(const QBString&, const QBString&, uint32_t,
                                                uint32_t) {
    return nullptr;
}

CPSymbolInfo* CPParseTree::findSymbolInFile(const QBString&, const QBString&, uint32_t) {
    return nullptr;
}

int CPParseTree::recover(CPTokenSource& source) {
    for (;;) {
        CPParseNodeType t = source.currentType();
        if (t == CPT_EOF || t == CPT_EOS) {
            logErrorAtSource(source, qbmsg::UnexpectedEndOfFile);
            return -1;
        }
        if (isSyncToken(t)) return 0;
        addChild(source.currentToken());
        source.nextToken();
    }
}

int CPParseTree::recoverTo(CPTokenSource& source, CPParseNodeType stopType, bool keep) {
    for (;;) {
        CPParseNodeType t = source.currentType();
        if (t == stopType) {
            if (keep) {
                addChild(source.currentToken());
                source.nextToken();
            }
            return 0;
        }
        if (t == CPT_EOF || t == CPT_EOS) {
            logErrorAtSource(source, qbmsg::UnexpectedEndOfFile);
            return -1;
        }
        addChild(source.currentToken());
        source.nextToken();
    }
}

int CPParseTree::getDeclaredName(QBString& out) const {
    CPParseNode* node = getDeclaredNameNode();
    if (!node) return out.makeEmpty();
    return node->getTextString(out);
}

int CPParseTree::replaceChildren(unsigned index, unsigned count, CPParseNode* node) {
    if (index > getChildCount()) return ERR_BADINDEX;
    if (node) node->addRef();  // held while the old children go
    int rc = count ? removeChildren(index, count) : 0;
    if (rc == 0) rc = TBPParseTree<CPParseNodeType>::insertChild(index, node);
    if (node) node->release();
    return rc;
}

int CPParseTree::insertBeside(CPParseNode* node, bool after) {
    CPParseNode* p = getParent();
    if (!p || !p->isTree()) return qbmsg::BadArgument;
    CPParseTree* tree = static_cast<CPParseTree*>(p);
    int at = tree->indexOfChild(this, false);
    return at < 0 ? ERR_BADINDEX : tree->insertChild(unsigned(at), node, after);
}

namespace {

const CPParseNodeType kSyncTokens[] = {
    CPT_EOF,         CPT_kw_break,     CPT_kw_case,   CPT_kw_catch,    CPT_kw_class,
    CPT_kw_continue, CPT_kw_default,   CPT_kw_do,     CPT_kw_else,     CPT_kw_enum,
    CPT_kw_extern,   CPT_kw_for,       CPT_kw_friend, CPT_kw_goto,     CPT_kw_if,
    CPT_kw_inline,   CPT_kw_namespace, CPT_kw_private, CPT_kw_protected, CPT_kw_public,
    CPT_kw_struct,   CPT_kw_switch,    CPT_kw_try,    CPT_kw_typedef,  CPT_kw_union,
    CPT_kw_using,    CPT_kw_while,     CPT_LEFT_BRACE, CPT_RIGHT_BRACE, CPT_SEMICOLON,
    CPT_NULL};

}  // namespace

bool cpIsSyncToken(CPParseNodeType t) {
    for (const CPParseNodeType* p = kSyncTokens; *p != CPT_NULL; ++p)
        if (*p == t) return true;
    return t == CPT_EOS;
}

bool CPParseTree::isSyncToken(CPParseNodeType t) const { return cpIsSyncToken(t); }
