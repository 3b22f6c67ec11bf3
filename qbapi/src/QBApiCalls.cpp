// Calling a module's exported function from argument records.
//
// A command's parameters are all int, QBPSZ or QBHREFVAR, and its result int or void. Every
// argument is widened to intptr_t and the function is called through a pointer type with that
// many intptr_t parameters. On the Linux ABIs we run on (x86-64 System V, AArch64) an int or a
// pointer argument occupies one register or one 8-byte stack slot, and a callee reading an int
// reads the low half, so this matches the function's real prototype.
#include "QBApiCalls.h"

#include <string>
#include <utility>

#include "QBApiInternal.h"

namespace qbapi {

namespace {

constexpr int MAX_PARAMS = 16;

template <size_t>
using Word = intptr_t;

template <size_t... I>
int callWith(void* function, bool returnsVoid, const intptr_t* a, std::index_sequence<I...>) {
    if (returnsVoid) {
        reinterpret_cast<void (*)(Word<I>...)>(function)(a[I]...);
        return 0;
    }
    return reinterpret_cast<int (*)(Word<I>...)>(function)(a[I]...);
}

template <size_t... N>
int callByCount(void* function, bool returnsVoid, int count, const intptr_t* a,
                std::index_sequence<N...>) {
    int result = 0;
    // Picks the instantiation whose arity equals count.
    (void)((count == int(N) ? (result = callWith(function, returnsVoid, a,
                                                 std::make_index_sequence<N>()), true)
                            : false) || ...);
    return result;
}

int convertInt(const QBArgRecord& r, intptr_t& out) {
    switch (r.tag) {
    case QBARG_INT32: out = int32_t(r.value); return 0;
    case QBARG_INT64: out = intptr_t(int32_t(r.value)); return 0;
    case QBARG_VAR:
        if (!variableExists(int(r.value))) return qbmsg::NoVariable;
        out = qbVarGetInt(int(r.value));
        return 0;
    default: return qbmsg::WrongArguments;
    }
}

int convertString(const QBArgRecord& r, std::string& keep, bool& fromVariable, intptr_t& out) {
    fromVariable = false;
    switch (r.tag) {
    case QBARG_STRING: out = intptr_t(r.value); return 0;
    case QBARG_INT32:
    case QBARG_INT64:
        if (r.value != 0) return qbmsg::WrongArguments;
        out = 0;  // macro code passes 0 for a null string
        return 0;
    case QBARG_VAR:
        if (!variableExists(int(r.value))) return qbmsg::NoVariable;
        keep = qbVarGetString(int(r.value));  // a copy: the callee may change the variable
        fromVariable = true;  // out is set to keep by the caller, once keep stays put
        return 0;
    default: return qbmsg::WrongArguments;
    }
}

int convertVar(const QBArgRecord& r, intptr_t& out) {
    if (r.tag != QBARG_VAR) return qbmsg::WrongArguments;
    if (!variableExists(int(r.value))) return qbmsg::NoVariable;
    out = intptr_t(r.value);
    return 0;
}

int convertArgument(const Param& p, const QBArgRecord& r, std::string& keep, intptr_t& out) {
    if (p.type == QBPARAM_INT) return convertInt(r, out);
    if (p.type == QBPARAM_VAR) return convertVar(r, out);
    bool fromVariable = false;
    int rc = convertString(r, keep, fromVariable, out);
    if (rc == 0 && fromVariable) out = reinterpret_cast<intptr_t>(keep.c_str());
    return rc;
}

}  // namespace

int callExport(void* function, const Signature& sig, int argCount, const QBArgRecord* args,
               int* result) {
    int paramCount = int(sig.params.size());
    if (argCount < 0 || argCount > paramCount || paramCount > MAX_PARAMS || (argCount && !args))
        return qbmsg::WrongArguments;
    intptr_t words[MAX_PARAMS] = {};
    std::string kept[MAX_PARAMS];
    for (int i = 0; i < paramCount; ++i) {
        const Param& p = sig.params[size_t(i)];
        if (i >= argCount) {
            if (!p.hasDefault) return qbmsg::WrongArguments;
            words[i] = intptr_t(defaultValue(p.defaultText));
            continue;
        }
        if (int rc = convertArgument(p, args[i], kept[i], words[i])) return rc;
    }
    int r = callByCount(function, sig.returnsVoid, paramCount, words,
                        std::make_index_sequence<MAX_PARAMS + 1>());
    if (result) *result = r;
    return 0;
}

}  // namespace qbapi
