// Thin wrappers: cut the values to the macro language's 1024-byte buffers, call the plain form,
// and hand text out through the host variable, also on failure (then empty).
#include "ConfigMacroCommands.h"

#include <cstring>

#include "QBArray.h"
#include "QBString.h"
#include "qbRefactorConfiguration.h"
#include "qbapi.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace {

const int kValueSize = 1024;

// A value as the macro language hands it over: at most 1023 characters; null stays null.
class MacroValue {
public:
    explicit MacroValue(const char* text) : isNull(text == nullptr) {
        if (text) {
            std::strncpy(buffer, text, kValueSize - 1);
            buffer[kValueSize - 1] = 0;
        }
    }
    const char* get() const { return isNull ? nullptr : buffer; }

private:
    char buffer[kValueSize] = {};
    bool isNull;
};

// A ";" list whose every entry is a value of its own.
QBString cutEachEntry(const char* list) {
    QBArray<QBString> entries;
    QBString(list).split(';', entries, true);
    QBString joined(list ? "" : nullptr);
    for (unsigned i = 0; i < entries.count(); ++i) {
        if (i > 0) joined.append(';');
        joined.append(entries[i].get(), entries[i].length() < kValueSize - 1
                                            ? entries[i].length() : unsigned(kValueSize - 1));
    }
    return joined;
}

template <class Read> int readIntoVariable(int variable, Read read) {
    char buffer[kValueSize];
    buffer[0] = 0;
    int rc = read(buffer, kValueSize);
    if (rc < 0) buffer[0] = 0;
    qbVarSetString(variable, buffer);
    return rc;
}

}  // namespace

int refactor_config_is_open(const char* configName) { return qbRefactorConfigIsOpen(configName); }

int refactor_config_open(const char* xmlConfigFile) { return qbRefactorConfigOpen(xmlConfigFile); }

int refactor_config_save(const char* xmlConfigFile) { return qbRefactorConfigSave(xmlConfigFile); }

int refactor_config_close() { return qbRefactorConfigClose(); }

int refactor_config_count() { return qbRefactorConfigCount(); }

int refactor_config_add(const char* configName, const char* configHeader, const char* includePath) {
    return qbRefactorConfigAdd(MacroValue(configName).get(), MacroValue(configHeader).get(),
                               cutEachEntry(includePath).get());
}

int refactor_config_add_java(const char* configName, const char* sourcePath, const char* jarPath) {
    return qbRefactorConfigAddJava(MacroValue(configName).get(), MacroValue(sourcePath).get(),
                                   cutEachEntry(jarPath).get());
}

int refactor_config_delete(const char* configName) {
    return qbRefactorConfigDelete(MacroValue(configName).get());
}

int refactor_config_delete_all_type(const char* type) {
    return qbRefactorConfigDeleteAllType(MacroValue(type).get());
}

int refactor_config_delete_all() { return qbRefactorConfigDeleteAll(); }

int refactor_config_get_name(int configIndex, int configName) {
    return readIntoVariable(configName, [&](char* buffer, int size) {
        return qbRefactorConfigGetName(configIndex, buffer, size);
    });
}

int refactor_config_get_type(int configIndex, int configType) {
    return readIntoVariable(configType, [&](char* buffer, int size) {
        return qbRefactorConfigGetType(configIndex, buffer, size);
    });
}

int refactor_config_get_java_source(const char* name, int src) {
    MacroValue key(name);
    return readIntoVariable(src, [&](char* buffer, int size) {
        return qbRefactorConfigGetJavaSource(key.get(), buffer, size);
    });
}

int refactor_config_set_name(int configIndex, const char* configName) {
    return qbRefactorConfigSetName(configIndex, MacroValue(configName).get());
}

int refactor_config_get_header(const char* configName, int configHeader) {
    MacroValue key(configName);
    return readIntoVariable(configHeader, [&](char* buffer, int size) {
        return qbRefactorConfigGetHeader(key.get(), buffer, size);
    });
}

int refactor_config_set_header(const char* configName, const char* configHeader) {
    return qbRefactorConfigSetHeader(MacroValue(configName).get(), MacroValue(configHeader).get());
}

int refactor_config_count_includes(const char* configName) {
    return qbRefactorConfigCountIncludes(MacroValue(configName).get());
}

int refactor_config_count_jars(const char* configName) {
    return qbRefactorConfigCountJars(MacroValue(configName).get());
}

int refactor_config_get_include(const char* configName, int includeIndex, int includePath) {
    MacroValue key(configName);
    return readIntoVariable(includePath, [&](char* buffer, int size) {
        return qbRefactorConfigGetInclude(key.get(), includeIndex, buffer, size);
    });
}

int refactor_config_get_jar(const char* configName, int jarIndex, int jarPath) {
    MacroValue key(configName);
    return readIntoVariable(jarPath, [&](char* buffer, int size) {
        return qbRefactorConfigGetJar(key.get(), jarIndex, buffer, size);
    });
}

int refactor_config_add_include(const char* configName, const char* includePath, int includeIndex) {
    return qbRefactorConfigAddInclude(MacroValue(configName).get(), MacroValue(includePath).get(),
                                      includeIndex);
}

int refactor_config_add_jar(const char* configName, const char* jarPath, int jarIndex) {
    return qbRefactorConfigAddJar(MacroValue(configName).get(), MacroValue(jarPath).get(),
                                  jarIndex);
}

int refactor_config_delete_include(const char* configName, const char* includePath) {
    return qbRefactorConfigDeleteInclude(MacroValue(configName).get(),
                                         MacroValue(includePath).get());
}

int refactor_config_delete_jar(const char* configName, const char* jarPath) {
    return qbRefactorConfigDeleteJar(MacroValue(configName).get(), MacroValue(jarPath).get());
}

int refactor_config_delete_all_includes(const char* configName) {
    return qbRefactorConfigDeleteAllIncludes(MacroValue(configName).get());
}

int refactor_config_delete_all_jars(const char* configName) {
    return qbRefactorConfigDeleteAllJars(MacroValue(configName).get());
}
