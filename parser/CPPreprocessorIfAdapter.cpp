// The condition's tokens are read through a tree token source over the temporary run that holds
// them; `defined` asks the preprocessor's macro table, and records the asking token as a
// reference of each live definition, so that renaming a macro reaches its `defined` uses.
#include "CPPreprocessorIfAdapter.h"

#include "CPParse.h"
#include "CPPreprocessor.h"
#include "CPPreprocessorMacros.h"
#include "CPTreeTokenSource.h"

namespace {

int queryMacro(void* context, const CPToken* name, bool anyEntry) {
    CPPreprocessor* pp = static_cast<CPPreprocessor*>(context);
    if (!pp || !name) return 0;
    const CPMacroTable::EntryList* entries =
        pp->getMacroTable().find(name->getSpellingConst());
    if (!entries) return 0;
    if (anyEntry) return entries->count() > 0;
    int found = 0;
    for (CPMacroTable::Symbol* entry : *entries) {
        CPPreprocessorDefine* define = CPMacroTable::definitionOf(entry);
        if (!define || define->undefined) continue;
        found = 1;
        CPMacroTable::addReference(entry, const_cast<CPToken*>(name));
    }
    return found;
}

}  // namespace

int64_t cpEvaluatePreprocessorCondition(CPPreprocessor* pp, CPPreprocessorFilter* tokens,
                                        int& status) {
    status = -1;
    if (!tokens) return 0;
    CPTreeTokenSource* source = new (std::nothrow) CPTreeTokenSource(tokens);
    if (!source) return 0;
    source->addRef();
    int64_t value = 0;
    int errors = 0;
    status = cpEvaluateIfExpression(*source, value, queryMacro, pp, &errors);
    source->release();
    CPPreprocessorFilter* written = tokens->getOrigin();
    if (errors > 0 && written) written->logErrorAtNode(written, qbmsg::DivisionByZero);
    return value;
}

void cpInstallIfEvaluator() {
    if (!CPPreprocessor::getIfEvaluator())
        CPPreprocessor::setIfEvaluator(cpEvaluatePreprocessorCondition);
}
