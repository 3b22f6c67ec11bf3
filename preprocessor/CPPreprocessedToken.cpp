#include "CPPreprocessedToken.h"

#include "CPPreprocessorNodes.h"

using quernbase::QBString;

namespace {
BPSourcePosition positionOf(CPPreprocessorToken* token) {
    return token ? *token->getPosition() : BPSourcePosition();
}
}  // namespace

// Defined here, with the node family it walks.
CPPreprocessorUnit* CPPreprocessorToken::getOwningUnit() {
    if (CPPreprocessorFilter* node = CPPreprocessorFilter::from(parent))
        if (CPPreprocessorUnit* unit = node->getOwningUnit()) return unit;
    for (CPPreprocessorFilter* owner : owners)
        if (owner)
            if (CPPreprocessorUnit* unit = owner->getOwningUnit()) return unit;
    return nullptr;
}

CPPreprocessedToken::CPPreprocessedToken(CPPreprocessorToken* source, CPPreprocessorFilter* owner,
                                         unsigned index)
    : CPPreprocessorToken(source ? source->getType() : CPT_NULL, positionOf(source),
                          source ? source->getLength() : 0, positionOf(source)) {
    setSourceToken(source, index);
    setOwnerNode(owner);
}

CPPreprocessedToken::~CPPreprocessedToken() {
    BPRefCountObject::assign(sourceToken, static_cast<CPPreprocessorToken*>(nullptr));
    BPRefCountObject::assign(ownerNode, static_cast<CPPreprocessorFilter*>(nullptr));
}

TBPParseNode<CPParseNodeType>* CPPreprocessedToken::clone() const {
    return new (std::nothrow) CPPreprocessedToken(sourceToken, ownerNode, indexInOwner);
}

int CPPreprocessedToken::getText(QBString& out) const {
    CPPreprocessedToken* self = const_cast<CPPreprocessedToken*>(this);
    Token* holder = self->whitespaceHolder();
    for (unsigned i = 0; holder && i < holder->getWhitespaceCount(); ++i)
        if (int rc = holder->getWhitespace(i)->getText(out)) return rc;
    if (sourceToken) {
        QBString spelling = sourceToken->getSpellingConst();
        return out.append(spelling);
    }
    return out.append(getSpellingConst());
}

CPPreprocessorUnit* CPPreprocessedToken::getOwningUnit() {
    if (ownerNode) return ownerNode->getOwningUnit();
    return sourceToken ? sourceToken->getOwningUnit() : nullptr;
}

QBString CPPreprocessedToken::getSpelling() {
    return sourceToken ? sourceToken->getSpelling() : Token::getSpelling();
}

int CPPreprocessedToken::setSpelling(const QBString& spelling) {
    if (int rc = Token::setSpelling(spelling)) return rc;
    return sourceToken ? sourceToken->setSpelling(spelling) : 0;
}

int CPPreprocessedToken::setSpelling(const char* chars, unsigned count) {
    return setSpelling(QBString(chars ? chars : "", chars ? count : 0));
}

int CPPreprocessedToken::setSpelling(const char* chars) {
    return setSpelling(QBString(chars ? chars : ""));
}

TBPToken<CPParseNodeType>* CPPreprocessedToken::getWrittenToken() {
    if (sourceToken && ownerNode) return ownerNode->getWrittenToken(sourceToken, indexInOwner);
    return sourceToken;
}

TBPToken<CPParseNodeType>* CPPreprocessedToken::whitespaceHolder() {
    if (Token::getWhitespaceCount() > 0) return this;
    Token* written = getWrittenToken();
    return written ? written : this;
}

unsigned CPPreprocessedToken::getWhitespaceCount() {
    return whitespaceHolder()->getWhitespaceCount();
}

TBPToken<CPParseNodeType>* CPPreprocessedToken::getWhitespace(unsigned i) {
    Token* holder = whitespaceHolder();
    return i < holder->getWhitespaceCount() ? holder->getWhitespace(i) : nullptr;
}

int CPPreprocessedToken::addWhitespace(const TokenList& tokens) {
    return whitespaceHolder()->addWhitespace(tokens);
}

int CPPreprocessedToken::insertWhitespace(Token* token, int index) {
    return whitespaceHolder()->insertWhitespace(token, index);
}

int CPPreprocessedToken::removeWhitespace(unsigned i) {
    return whitespaceHolder()->removeWhitespace(i);
}

void CPPreprocessedToken::clearWhitespace() { whitespaceHolder()->clearWhitespace(); }

void CPPreprocessedToken::setSourceToken(CPPreprocessorToken* token) { setSourceToken(token, 0); }

void CPPreprocessedToken::setSourceToken(CPPreprocessorToken* token, unsigned index) {
    BPRefCountObject::assign(sourceToken, token);
    indexInOwner = index;
}

void CPPreprocessedToken::setOwnerNode(CPPreprocessorFilter* node) {
    BPRefCountObject::assign(ownerNode, node);
}
