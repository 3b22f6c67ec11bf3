// Host variables: an integer, a text or an array of further variables, by handle. Handle 1
// always exists and takes the result of each macro-function call.
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "QBApiInternal.h"
#include "qbapi_host.h"

namespace qbapi {

namespace {

struct Variable {
    enum Kind { TEXT, INTEGER, ARRAY } kind = TEXT;
    int64_t number = 0;
    std::string text;  // the value of a TEXT, and the printed form of an INTEGER
    std::vector<int> elements;
};

struct Variables {
    std::map<int, Variable> byHandle;
    int next = 2;
    Variables() { byHandle[QBVAR_RESULT].kind = Variable::INTEGER; }
};

Variables& variables() {
    static Variables* v = new Variables;
    return *v;
}

Variable* find(int var) {
    auto& all = variables().byHandle;
    auto it = all.find(var);
    return it == all.end() ? nullptr : &it->second;
}

int create() {
    Variables& v = variables();
    int handle = v.next++;
    v.byHandle[handle];
    return handle;
}

void destroy(int var) {
    Variable* v = find(var);
    if (!v || var == QBVAR_RESULT) return;
    std::vector<int> elements = v->elements;
    variables().byHandle.erase(var);
    for (int e : elements) destroy(e);
}

int setNumber(int var, int64_t value) {
    Variable* v = find(var);
    if (!v) return qbmsg::NoVariable;
    v->kind = Variable::INTEGER;
    v->number = value;
    v->text = std::to_string(value);
    return 0;
}

}  // namespace

bool variableExists(int var) { return find(var) != nullptr; }

void setResultVariable(int64_t value) { setNumber(QBVAR_RESULT, value); }

}  // namespace qbapi

using namespace qbapi;

extern "C" {

int64_t qbVarGetInt64(int var) {
    Variable* v = find(var);
    if (!v) return 0;
    if (v->kind == Variable::INTEGER) return v->number;
    if (v->kind == Variable::ARRAY) return int64_t(v->elements.size());
    return std::strtoll(v->text.c_str(), nullptr, 0);
}

int qbVarGetInt(int var) { return int(qbVarGetInt64(var)); }

const char* qbVarGetString(int var) {
    Variable* v = find(var);
    return v && v->kind != Variable::ARRAY ? v->text.c_str() : "";
}

int qbVarSetInt(int var, int value) { return setNumber(var, value); }

int qbHostVarSetInt64(int var, int64_t value) { return setNumber(var, value); }

int qbVarSetString(int var, const char* text) {
    Variable* v = find(var);
    if (!v) return qbmsg::NoVariable;
    std::vector<int> elements;
    elements.swap(v->elements);
    v->kind = Variable::TEXT;
    v->text = text ? text : "";
    for (int e : elements) destroy(e);
    return 0;
}

int qbVarNewTemp(int) { return create(); }

int qbHostVarNew(void) { return create(); }

void qbVarFreeTemp(int var) { destroy(var); }

int qbHostVarMakeArray(int var, int count) {
    if (!find(var)) return qbmsg::NoVariable;
    if (count < 0) return qbmsg::WrongArguments;
    qbVarSetString(var, "");
    std::vector<int> elements;
    for (int i = 0; i < count; ++i) elements.push_back(create());
    Variable* v = find(var);  // creating elements may have moved nothing, but look again
    v->kind = Variable::ARRAY;
    v->elements = elements;
    return 0;
}

int qbVarArrayLength(int var) {
    Variable* v = find(var);
    return v && v->kind == Variable::ARRAY ? int(v->elements.size()) : 0;
}

int qbVarArrayElement(int var, int index) {
    Variable* v = find(var);
    if (!v || v->kind != Variable::ARRAY || index < 0 || index >= int(v->elements.size()))
        return qbmsg::NoVariable;
    return v->elements[size_t(index)];
}

}  // extern "C"
