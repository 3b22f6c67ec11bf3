// The plain forms of the refactor_config_* commands, over the module's one configuration file.
#include <new>

#include "QBMessageCodes.h"
#include "qbRefactorConfiguration.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace {

qbRefactorConfigurationFile*& file() { return qbRefactorConfigurationFile::current; }

// Finds the named configuration of the class that serves type ("cpp" or "java").
template <class Configuration>
int lookup(const char* name, const char* type, Configuration*& found) {
    found = nullptr;
    if (!file()) return qbmsg::NoConfigurationFile;
    qbRefactorConfiguration* configuration = file()->at(file()->indexOf(QBString(name)));
    if (!configuration) return qbmsg::NoConfiguration;
    if (!configuration->getType().equalTo(type)) return qbmsg::WrongConfigurationType;
    found = static_cast<Configuration*>(configuration);
    return 0;
}

int lookupAt(int index, qbRefactorConfiguration*& found) {
    found = nullptr;
    if (!file()) return qbmsg::NoConfigurationFile;
    found = file()->at(index);
    return found ? 0 : qbmsg::NoConfiguration;
}

// Copies text out, or an empty text when status is a failure.
int copyOut(int status, const QBString& text, char* buffer, int size) {
    if (!buffer || size < 1) return status < 0 ? status : qbmsg::InvalidArgument;
    if (status < 0) {
        buffer[0] = 0;
        return status;
    }
    text.exportStr(buffer, unsigned(size));
    return 0;
}

int appendParts(const char* list, QBArray<QBString>& entries) {
    QBArray<QBString> parts;
    if (QBString(list).split(';', parts, false) != 0) return qbmsg::OutOfMemory;
    for (const QBString& part : parts)
        if (entries.add(part) != 0) return qbmsg::OutOfMemory;
    return 0;
}

// Adding an existing name keeps its entries and appends the new ones; only a new configuration
// goes into the document.
template <class Configuration>
int addConfiguration(const char* name, const char* type, const char* value, const char* list,
                     QBString Configuration::*valueField,
                     QBArray<QBString> Configuration::*listField) {
    Configuration* configuration = nullptr;
    int rc = lookup(name, type, configuration);
    if (rc == qbmsg::NoConfigurationFile || rc == qbmsg::WrongConfigurationType) return rc;
    bool existing = configuration != nullptr;
    if (!existing && !(configuration = new (std::nothrow) Configuration)) return qbmsg::OutOfMemory;
    configuration->name = name;
    configuration->*valueField = value;
    rc = appendParts(list, configuration->*listField);
    if (existing) return rc;
    if (rc >= 0) rc = file()->add(configuration);
    if (rc < 0) delete configuration;
    return rc < 0 ? rc : 0;
}

int removeMatching(const char* type) {
    if (!file()) return qbmsg::NoConfigurationFile;
    for (int i = int(file()->configurations.count()) - 1; i >= 0; --i)
        if (!type || file()->configurations[unsigned(i)]->getType().equalTo(type, 0))
            file()->remove(unsigned(i));
    return 0;
}

int getEntry(const QBArray<QBString>& entries, int index, char* buffer, int size) {
    bool inside = index >= 0 && unsigned(index) < entries.count();
    return copyOut(0, inside ? entries[unsigned(index)] : QBString(""), buffer, size);
}

int addEntry(QBArray<QBString>& entries, const char* path, int index) {
    if (!path || !*path) return 0;
    int rc = index >= 0 ? entries.insertAt(unsigned(index), QBString(path))
                        : entries.add(QBString(path));
    return rc < 0 ? qbmsg::OutOfMemory : 0;
}

int deleteEntry(QBArray<QBString>& entries, const char* path) {
    for (unsigned i = 0; i < entries.count(); ++i) {
        if (entries[i].equalTo(path, 1)) {
            entries.removeAt(i);
            return 0;
        }
    }
    return qbmsg::NotInList;
}

}  // namespace

int qbRefactorConfigIsOpen(const char*) { return file() && file()->document > 0 ? 1 : 0; }

int qbRefactorConfigOpen(const char* xmlConfigFile) {
    if (!file() && !(file() = new (std::nothrow) qbRefactorConfigurationFile)) return qbmsg::OutOfMemory;
    return file()->open(xmlConfigFile);
}

int qbRefactorConfigSave(const char* xmlConfigFile) {
    return file() ? file()->save(xmlConfigFile) : qbmsg::NoConfigurationFile;
}

int qbRefactorConfigClose() {
    if (!file()) return 0;
    int rc = file()->closeDocument();
    delete file();
    file() = nullptr;
    return rc;
}

int qbRefactorConfigCount() { return file() ? int(file()->configurations.count()) : qbmsg::NoConfigurationFile; }

int qbRefactorConfigAdd(const char* configName, const char* configHeader, const char* includePath) {
    return addConfiguration(configName, "cpp", configHeader, includePath,
                            &qbRefactorCppConfiguration::header,
                            &qbRefactorCppConfiguration::includes);
}

int qbRefactorConfigAddJava(const char* configName, const char* sourcePath, const char* jarPath) {
    return addConfiguration(configName, "java", sourcePath, jarPath,
                            &qbRefactorJavaConfiguration::root, &qbRefactorJavaConfiguration::jars);
}

int qbRefactorConfigDelete(const char* configName) {
    if (!file()) return qbmsg::NoConfigurationFile;
    int index = file()->indexOf(QBString(configName));
    if (index < 0) return qbmsg::NoConfiguration;
    file()->remove(unsigned(index));
    return 0;
}

int qbRefactorConfigDeleteAllType(const char* type) {
    if (!type) return file() ? 0 : qbmsg::NoConfigurationFile;
    return removeMatching(type);
}

int qbRefactorConfigDeleteAll() { return removeMatching(nullptr); }

int qbRefactorConfigGetName(int configIndex, char* buffer, int size) {
    qbRefactorConfiguration* configuration;
    int rc = lookupAt(configIndex, configuration);
    return copyOut(rc, configuration ? configuration->name : QBString(), buffer, size);
}

int qbRefactorConfigGetType(int configIndex, char* buffer, int size) {
    qbRefactorConfiguration* configuration;
    int rc = lookupAt(configIndex, configuration);
    return copyOut(rc, configuration ? configuration->getType() : QBString(), buffer, size);
}

int qbRefactorConfigSetName(int configIndex, const char* configName) {
    qbRefactorConfiguration* configuration;
    int rc = lookupAt(configIndex, configuration);
    if (rc < 0) return rc;
    return configuration->name.set(configName) < 0 ? qbmsg::OutOfMemory : 0;
}

int qbRefactorConfigGetHeader(const char* configName, char* buffer, int size) {
    qbRefactorCppConfiguration* configuration;
    int rc = lookup(configName, "cpp", configuration);
    return copyOut(rc, configuration ? configuration->header : QBString(), buffer, size);
}

int qbRefactorConfigSetHeader(const char* configName, const char* configHeader) {
    qbRefactorCppConfiguration* configuration;
    int rc = lookup(configName, "cpp", configuration);
    if (rc < 0) return rc;
    return configuration->header.set(configHeader) < 0 ? qbmsg::OutOfMemory : 0;
}

int qbRefactorConfigCountIncludes(const char* configName) {
    qbRefactorCppConfiguration* configuration;
    int rc = lookup(configName, "cpp", configuration);
    return rc < 0 ? rc : int(configuration->includes.count());
}

int qbRefactorConfigCountJars(const char* configName) {
    qbRefactorJavaConfiguration* configuration;
    int rc = lookup(configName, "java", configuration);
    return rc < 0 ? rc : int(configuration->jars.count());
}

int qbRefactorConfigGetInclude(const char* configName, int index, char* buffer, int size) {
    qbRefactorCppConfiguration* configuration;
    int rc = lookup(configName, "cpp", configuration);
    if (rc < 0) return copyOut(rc, QBString(), buffer, size);
    return getEntry(configuration->includes, index, buffer, size);
}

int qbRefactorConfigGetJar(const char* configName, int index, char* buffer, int size) {
    qbRefactorJavaConfiguration* configuration;
    int rc = lookup(configName, "java", configuration);
    if (rc < 0) return copyOut(rc, QBString(), buffer, size);
    return getEntry(configuration->jars, index, buffer, size);
}

int qbRefactorConfigGetJavaSource(const char* name, char* buffer, int size) {
    qbRefactorJavaConfiguration* configuration;
    int rc = lookup(name, "java", configuration);
    return copyOut(rc, configuration ? configuration->root : QBString(), buffer, size);
}

int qbRefactorConfigAddInclude(const char* configName, const char* includePath, int index) {
    qbRefactorCppConfiguration* configuration;
    int rc = lookup(configName, "cpp", configuration);
    return rc < 0 ? rc : addEntry(configuration->includes, includePath, index);
}

int qbRefactorConfigAddJar(const char* configName, const char* jarPath, int index) {
    qbRefactorJavaConfiguration* configuration;
    int rc = lookup(configName, "java", configuration);
    return rc < 0 ? rc : addEntry(configuration->jars, jarPath, index);
}

int qbRefactorConfigDeleteInclude(const char* configName, const char* includePath) {
    qbRefactorCppConfiguration* configuration;
    int rc = lookup(configName, "cpp", configuration);
    return rc < 0 ? rc : deleteEntry(configuration->includes, includePath);
}

int qbRefactorConfigDeleteJar(const char* configName, const char* jarPath) {
    qbRefactorJavaConfiguration* configuration;
    int rc = lookup(configName, "java", configuration);
    return rc < 0 ? rc : deleteEntry(configuration->jars, jarPath);
}

int qbRefactorConfigDeleteAllIncludes(const char* configName) {
    qbRefactorCppConfiguration* configuration;
    int rc = lookup(configName, "cpp", configuration);
    if (rc >= 0) configuration->includes.clear();
    return rc < 0 ? rc : 0;
}

int qbRefactorConfigDeleteAllJars(const char* configName) {
    qbRefactorJavaConfiguration* configuration;
    int rc = lookup(configName, "java", configuration);
    if (rc >= 0) configuration->jars.clear();
    return rc < 0 ? rc : 0;
}
