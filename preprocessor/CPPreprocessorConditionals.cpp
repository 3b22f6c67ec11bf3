#include "CPPreprocessorConditionals.h"

#include "CPPreprocessor.h"
#include "CPPreprocessorMacros.h"

using quernbase::QBString;

namespace {

typedef TBPToken<CPParseNodeType> Token;

// Clears the error state of a branch that isn't taken.
void clearBranch(TBPParseNode<CPParseNodeType>* body) {
    if (body) body->clearErrors(true);
}

// True if name has a live define; each such entry gets the token as a reference.
bool isDefinedName(CPPreprocessor* pp, Token* name) {
    const CPMacroTable::EntryList* entries = pp->getMacroTable().find(name->getSpellingConst());
    bool found = false;
    for (unsigned i = 0; entries && i < entries->count(); ++i) {
        CPMacroTable::Symbol* entry = (*entries)[i];
        CPPreprocessorDefine* define = CPMacroTable::definitionOf(entry);
        if (!define || define->undefined) continue;
        found = true;
        CPMacroTable::addReference(entry, name);
    }
    return found;
}

}  // namespace

unsigned CPPreprocessorIfGroup::getElifCount() const {
    unsigned n = getChildCount();
    if (getAttributes() && getAttributes()->getErrorCount() > 0) {
        unsigned count = 0;
        for (unsigned i = 0; i < n; ++i)
            if (getChild(i) && getChild(i)->getType() == CPN_PreprocessorElif) ++count;
        return count;
    }
    if (n < 7) return 0;
    unsigned branches = n - 4;
    Node* atElse = getChild(n - 4);
    if (atElse && atElse->getType() == CPN_PreprocessorElse) branches -= 3;
    return branches / 3;
}

CPPreprocessorIfBody* CPPreprocessorIfGroup::getElseBody() const {
    unsigned n = getChildCount();
    if (n < 7) return nullptr;
    Node* atElse = getChild(n - 4);
    if (!atElse || atElse->getType() != CPN_PreprocessorElse) return nullptr;
    CPPreprocessorFilter* body = getFilterChild(n - 2);
    return body && body->getType() == CPN_PreprocessorIfBody
               ? static_cast<CPPreprocessorIfBody*>(body)
               : nullptr;
}

// Only the chosen branch produces output; an #elif behind it is never evaluated.
int CPPreprocessorIfGroup::preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target,
                                      bool flat, CPPreprocessorMacro* call, int depth) {
    if (isCancelled(pp)) return qbmsg::Cancelled;
    CPPreprocessorFilter* chosen = nullptr;
    unsigned n = getChildCount();
    for (unsigned i = 0; i + 2 < n; i += 3) {
        CPPreprocessorFilter* opener = getFilterChild(i);
        if (!opener || !opener->isKindOf(CPN_PreprocessorIfBase)) break;
        CPPreprocessorFilter* body = getFilterChild(i + 2);
        if (!chosen && static_cast<CPPreprocessorIfBase*>(opener)->isTrue(pp)) chosen = body;
        else clearBranch(body);
    }
    if (CPPreprocessorIfBody* elseBody = getElseBody()) {
        if (!chosen) chosen = elseBody;
        else clearBranch(elseBody);
    }
    if (!chosen) return 0;
    CPPreprocessorFilter* into = wrapTarget(target, flat, chosen, 0);
    if (!into) return qbmsg::OutOfMemory;
    return chosen->preprocess(pp, into, flat, call, depth + 1);
}

bool CPPreprocessorIfdef::isTrue(CPPreprocessor* pp) {
    Token* name = getTokenChild(2);
    if (!name || name->getLength() == 0) return false;
    if (cpIsBuiltinKind(name->getType())) return true;
    return pp && isDefinedName(pp, name);
}

bool CPPreprocessorIfndef::isTrue(CPPreprocessor* pp) {
    Token* name = getTokenChild(2);
    if (!name || name->getLength() == 0) return false;
    if (cpIsBuiltinKind(name->getType())) return false;
    return !pp || !isDefinedName(pp, name);
}

namespace {

bool evaluateCondition(CPPreprocessorFilter* node, CPPreprocessor* pp) {
    CPPreprocessorFilter* child = node->getFilterChild(2);
    if (!child || child->getType() != CPN_PreprocessorIfExpression) return false;
    bool evaluated = false;
    int64_t value = cpEvaluateIfExpression(static_cast<CPPreprocessorIfExpression*>(child), pp,
                                           evaluated);
    if (!evaluated) node->logErrorAtNode(child, qbmsg::InternalError);
    return evaluated && value != 0;
}

}  // namespace

bool CPPreprocessorIf::isTrue(CPPreprocessor* pp) { return evaluateCondition(this, pp); }

bool CPPreprocessorElif::isTrue(CPPreprocessor* pp) { return evaluateCondition(this, pp); }

// The condition's tokens are expanded (the name behind `defined` excepted) and handed to the
// evaluator the parser layer installs. Without one nothing is evaluated: evaluated stays false.
int64_t cpEvaluateIfExpression(CPPreprocessorIfExpression* expression, CPPreprocessor* pp,
                               bool& evaluated) {
    evaluated = false;
    CPPreprocessor::IfEvaluator evaluator = CPPreprocessor::getIfEvaluator();
    if (!evaluator) return 0;
    CPPreprocessorPPTokens* tokens = new (std::nothrow) CPPreprocessorPPTokens;
    if (!tokens) return 0;
    tokens->addRef();
    tokens->setOrigin(expression);
    int rc = expression->preprocess(pp, tokens, true, nullptr, 0);
    int64_t value = 0;
    evaluated = true;
    if (rc < 0) {
        value = 1;  // a failed expansion doesn't hide code
    } else if (!tokens->hasError()) {
        int status = 0;
        value = evaluator(pp, tokens, status);
        if (status < 0) value = 0;
    }
    tokens->release();
    return value;
}
