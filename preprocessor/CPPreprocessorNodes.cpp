#include "CPPreprocessorNodes.h"

#include "CPPreprocessor.h"

using quernbase::QBString;

namespace {

bool isNameToken(const TBPParseNode<CPParseNodeType>* node) {
    return node && node->isToken() &&
           (cpIsIdentifierLike(node->getType()) || cpIsBuiltinKind(node->getType()));
}

}  // namespace

// ---- Files and branches ---------------------------------------------------------------------

// A file always gets a run of its own in the output, so that the output mirrors the files. Line
// ends are dropped; only the main file's EOF reaches the output.
int CPPreprocessorUnit::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                                   CPPreprocessorMacro* call, int depth) {
    if (getChildCount() == 0) return 0;
    CPPreprocessorFilter* tokens = wrapTarget(target, false, this, 0);
    if (!tokens) return qbmsg::OutOfMemory;
    if (hasError()) tokens->setErrorFlag(false);
    int kept = 0;
    for (Node* child : children) {
        if (!child) continue;
        int rc = 0;
        int kind = child->getType();
        if (CPPreprocessorFilter* node = from(child)) {
            rc = node->preprocess(pp, tokens, flat, call, depth + 1);
        } else if (kind == CPT_EOF) {
            if (!origin) rc = tokens->addChild(child);
            break;
        } else if (kind != CPT_NEWLINE && kind != CPT_EOS && child->isToken()) {
            tokens->logWarningAtNode(child, qbmsg::UnexpectedToken,
                                     static_cast<Token*>(child)->getSpellingConst());
        }
        if (rc == qbmsg::Cancelled) return rc;
        if (rc < 0) kept = rc;
    }
    return kept;
}

CPPreprocessorUnit* CPPreprocessorUnit::getOwningUnit() {
    if ((!parent && !origin) || (!source.isNull() && source->fileName.isNotEmpty())) return this;
    return CPPreprocessorFilter::getOwningUnit();
}

// The mark of a change stops at the file.
void CPPreprocessorUnit::setModified() {
    Node* up = parent;
    parent = nullptr;
    CPPreprocessorFilter::setModified();
    parent = up;
}

int CPPreprocessorIfBody::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                                     CPPreprocessorMacro* call, int depth) {
    if (getChildCount() == 0) return 0;
    CPPreprocessorFilter* into = wrapTarget(target, flat, this, 0);
    if (!into) return qbmsg::OutOfMemory;
    int kept = 0;
    for (Node* child : children) {
        CPPreprocessorFilter* node = from(child);
        if (!node) continue;
        int rc = node->preprocess(pp, into, flat, call, depth + 1);
        if (rc == qbmsg::Cancelled) return rc;
        if (rc < 0) kept = rc;
    }
    return kept;
}

// ---- Token runs -----------------------------------------------------------------------------

// Copies its leaves and runs its names. The name behind `defined` is copied raw, so that a
// condition asks about the macro and not about what it expands to.
int CPPreprocessorPPTokens::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target,
                                       bool flat, CPPreprocessorMacro* call, int) {
    if (getChildCount() == 0) return 0;
    if (hasError()) target->setErrorFlag(false);
    CPPreprocessorFilter* into = target;
    if (!flat && target->getType() != CPN_PreprocessorPPTokens)
        into = wrapTarget(target, false, this, getChildCount());
    if (!into) return qbmsg::OutOfMemory;
    int kept = 0;
    unsigned n = getChildCount();
    for (unsigned i = 0; i < n; ++i) {
        Node* child = children[i];
        if (!child) continue;
        int rc = 0;
        if (child->getType() == CPT_kw_defined) {
            unsigned protect = 0;
            if (isNameToken(getChild(i + 1))) protect = 1;
            else if (getChild(i + 1) && getChild(i + 1)->getType() == CPT_LEFT_PAREN &&
                     isNameToken(getChild(i + 2)) && getChild(i + 3) &&
                     getChild(i + 3)->getType() == CPT_RIGHT_PAREN)
                protect = 3;
            for (unsigned j = 0; j <= protect && rc == 0; ++j) rc = into->addChild(children[i + j]);
            i += protect;
        } else if (child->isToken()) {
            rc = into->addChild(child);
        } else if (CPPreprocessorFilter* node = from(child)) {
            rc = node->preprocess(pp, into, flat, call, 0);
        }
        if (rc == qbmsg::Cancelled) return rc;
        if (rc < 0) kept = rc;
    }
    return kept;
}

// ---- Directives that act when run -----------------------------------------------------------

bool CPPreprocessorPragma::isPragmaOnce() const {
    Token* word = getTokenChild(2);
    return getChildCount() == 3 && word && word->getType() == CPT_IDENTIFIER &&
           word->getSpellingConst() == "once";
}

int CPPreprocessorPragma::preprocess(CPPreprocessor* pp, CPPreprocessorFilter*, bool,
                                     CPPreprocessorMacro*, int) {
    if (isCancelled(pp)) return qbmsg::Cancelled;
    if (!pp || !isPragmaOnce()) return 0;
    Token* pound = getTokenChild(0);
    BPSourceCache* cache = pp->getSourceCache();
    BPSourceHandle* entry = pound && cache ? cache->find(pound->getFileName()) : nullptr;
    if (entry && !entry->isNull()) (*entry)->includeOnce = true;
    return 0;
}

CPPreprocessorIncludeArg* CPPreprocessorInclude::getArgument() const {
    CPPreprocessorFilter* arg = getFilterChild(2);
    return arg && arg->getType() == CPN_PreprocessorIncludeArg
               ? static_cast<CPPreprocessorIncludeArg*>(arg)
               : nullptr;
}

// CPPreprocessorInclude and CPPreprocessorConfigFile run in CPPreprocessorInclude.cpp.
