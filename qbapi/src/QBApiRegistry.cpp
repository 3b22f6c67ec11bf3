// Registered commands and macro functions share one name space, as in the editor: a macro
// function handle is the 1-based index of a name, and a name keeps its handle for the process.
#include <dlfcn.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "QBApiCalls.h"
#include "QBApiInternal.h"
#include "QBApiSignature.h"

namespace qbapi {

namespace {

struct ExportEntry {
    Signature sig;
    std::vector<QBHostParam> params;
    void* module;
};

struct Callable {
    std::string name;
    const ExportEntry* exported = nullptr;  // a module command, or
    QBHostMacroFunction function = nullptr;  // a macro function of the host
    void* user = nullptr;
    int calls = 0;
};

struct Registry {
    std::vector<std::unique_ptr<ExportEntry>> exports;
    std::vector<Callable> callables;
    std::map<std::string, int> handles;
    std::vector<void*> modules;
    void* loadingModule = nullptr;
    std::string loadError;
};

Registry& registry() {
    static Registry* r = new Registry;  // lives for the process: modules are never unloaded
    return *r;
}

int handleFor(const std::string& name) {
    Registry& r = registry();
    auto it = r.handles.find(name);
    if (it != r.handles.end()) return it->second;
    r.callables.push_back(Callable{});
    r.callables.back().name = name;
    int handle = int(r.callables.size());
    r.handles[name] = handle;
    return handle;
}

Callable* callableAt(int handle) {
    Registry& r = registry();
    if (handle < 1 || handle > int(r.callables.size())) return nullptr;
    return &r.callables[size_t(handle - 1)];
}

void fillPublicParams(ExportEntry& e) {
    for (const Param& p : e.sig.params)
        e.params.push_back(QBHostParam{p.type, p.name.c_str(), p.hasDefault ? 1 : 0,
                                       p.defaultText.c_str()});
}

// Copies what the call needs first: the callee may register more names and move the vector.
int invokeHandle(int handle, int argCount, const QBArgRecord* args, int* result) {
    Callable* c = callableAt(handle);
    if (!c || (!c->exported && !c->function)) return qbmsg::NoMacroFunction;
    ++c->calls;
    int r = 0;
    if (c->function) {
        QBHostMacroFunction f = c->function;
        void* user = c->user;
        r = f(user, argCount, args);
    } else {
        const ExportEntry* e = c->exported;
        void* fn = dlsym(e->module, e->sig.name.c_str());
        if (!fn) return qbmsg::NotExported;
        if (int rc = callExport(fn, e->sig, argCount, args, &r)) return rc;
    }
    setResultVariable(r);
    if (result) *result = r;
    return 0;
}

}  // namespace

}  // namespace qbapi

using namespace qbapi;

extern "C" {

int qbRegisterExport(const char* signature, int, int) {
    auto entry = std::make_unique<ExportEntry>();
    if (int rc = parseSignature(signature, entry->sig)) return rc;
    Registry& r = registry();
    entry->module = r.loadingModule ? r.loadingModule : RTLD_DEFAULT;
    fillPublicParams(*entry);
    int handle = handleFor(entry->sig.name);
    Callable* c = callableAt(handle);
    // A later registration of a name serves that name from then on.
    c->exported = entry.get();
    c->function = nullptr;
    r.exports.push_back(std::move(entry));
    return 0;
}

int qbFindMacroFunction(const char* name, int) {
    if (!name) return 0;
    auto it = registry().handles.find(name);
    return it == registry().handles.end() ? 0 : it->second;
}

int qbIsMacroFunction(int handle) {
    Callable* c = callableAt(handle);
    return c && (c->exported || c->function) ? 1 : 0;
}

int qbCallMacroFunction(int, int handle, int argCount, const QBArgRecord* args) {
    return invokeHandle(handle, argCount, args, nullptr);
}

int qbHostInvoke(const char* name, int argCount, const QBArgRecord* args, int* result) {
    int handle = qbFindMacroFunction(name, 17);
    if (handle < 1) return qbmsg::NoMacroFunction;
    return invokeHandle(handle, argCount, args, result);
}

int qbHostRegisterMacroFunction(const char* name, QBHostMacroFunction function, void* user) {
    if (!name || !*name || !function) return qbmsg::WrongArguments;
    int handle = handleFor(name);
    Callable* c = callableAt(handle);
    c->exported = nullptr;
    c->function = function;
    c->user = user;
    return handle;
}

int qbHostUnregisterMacroFunction(const char* name) {
    Callable* c = callableAt(qbFindMacroFunction(name, 17));
    if (!c || !c->function) return qbmsg::NoMacroFunction;
    c->function = nullptr;
    c->user = nullptr;
    return 0;
}

int qbHostMacroCallCount(const char* name) {
    Callable* c = callableAt(qbFindMacroFunction(name, 17));
    return c ? c->calls : 0;
}

int qbHostExportCount(void) { return int(registry().exports.size()); }

int qbHostExportInfo(int index, QBHostExportInfo* out) {
    Registry& r = registry();
    if (!out || index < 0 || index >= int(r.exports.size())) return qbmsg::WrongArguments;
    const ExportEntry& e = *r.exports[size_t(index)];
    *out = QBHostExportInfo{e.sig.text.c_str(), e.sig.module.c_str(), e.sig.name.c_str(),
                            e.sig.isCommand ? 1 : 0, e.sig.returnsVoid ? 1 : 0,
                            int(e.params.size()), e.params.data()};
    return 0;
}

int qbHostLoadModule(const char* path, int* registerStatus) {
    Registry& r = registry();
    r.loadError.clear();
    void* module = path ? dlopen(path, RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!module) {
        const char* why = dlerror();
        r.loadError = why ? why : "no module path";
        return qbmsg::ModuleNotLoaded;
    }
    auto entry = reinterpret_cast<int (*)()>(dlsym(module, "qbDllRegisterExports"));
    if (!entry) {
        r.loadError = "no qbDllRegisterExports in module";
        return qbmsg::NoRegisterEntry;
    }
    void* outer = r.loadingModule;
    r.loadingModule = module;
    int status = entry();
    r.loadingModule = outer;
    if (registerStatus) *registerStatus = status;
    r.modules.push_back(module);
    return int(r.modules.size());
}

const char* qbHostLastLoadError(void) { return registry().loadError.c_str(); }

void* qbHostModuleSymbol(int module, const char* name) {
    Registry& r = registry();
    if (module < 1 || module > int(r.modules.size()) || !name) return nullptr;
    return dlsym(r.modules[size_t(module) - 1], name);
}

}  // extern "C"
