// Compiler configurations: named settings that tell the front end how a compiler sees the world,
// kept in the host's "compilers.xml". The engine only edits them; the host passes the values it
// wants into refactor_add_file.
//
// Only adding and deleting a configuration reach the XML document. Every other edit changes the
// object in memory alone, so a later save doesn't write it: the host rewrites a configuration by
// deleting and adding it.
#pragma once

#include "QBArray.h"
#include "QBMemory.h"
#include "QBString.h"

class qbRefactorConfiguration : public quernbase::QBMemory {
public:
    quernbase::QBString name;
    int node = 0;  // index of the configuration's element in the XML document

    virtual ~qbRefactorConfiguration();
    virtual const quernbase::QBString& getType() const;  // empty for the base
};

// A predefined-macro header and include directories.
class qbRefactorCppConfiguration : public qbRefactorConfiguration {
public:
    quernbase::QBArray<quernbase::QBString> includes;
    quernbase::QBString header;  // absolute in memory; relative to QBROOT in the file

    const quernbase::QBString& getType() const override;  // "cpp"
};

// A source root and JAR files.
class qbRefactorJavaConfiguration : public qbRefactorConfiguration {
public:
    quernbase::QBString root;
    quernbase::QBArray<quernbase::QBString> jars;

    const quernbase::QBString& getType() const override;  // "java"
};

// The module's one file of configurations, present from the first open until close.
class qbRefactorConfigurationFile : public quernbase::QBMemory {
public:
    int document = 0;  // XML handle: 0 none, negative after a failed open
    quernbase::QBArray<qbRefactorConfiguration*> configurations;  // owning

    static qbRefactorConfigurationFile* current;

    ~qbRefactorConfigurationFile();

    int open(const char* fileName);
    int save(const char* fileName);
    int closeDocument();
    // Puts a new configuration into the document, then into configurations. On failure the
    // document is left as it was and the caller still owns the object.
    int add(qbRefactorConfiguration* configuration);
    int indexOf(const quernbase::QBString& name) const;  // exact comparison; -1 if absent
    qbRefactorConfiguration* at(int index) const;  // null out of range
    // Deletes the configuration's node (with a document open), then destroys it.
    void remove(unsigned index);
    void removeAll();
};

extern "C" {

// The plain forms of the refactor_config_* commands. Those with text out take a buffer and its
// size; the buffer gets an empty text on failure.
int qbRefactorConfigIsOpen(const char* configName);
int qbRefactorConfigOpen(const char* xmlConfigFile);
int qbRefactorConfigSave(const char* xmlConfigFile);
int qbRefactorConfigClose();
int qbRefactorConfigCount();
int qbRefactorConfigAdd(const char* configName, const char* configHeader, const char* includePath);
int qbRefactorConfigAddJava(const char* configName, const char* sourcePath, const char* jarPath);
int qbRefactorConfigDelete(const char* configName);
int qbRefactorConfigDeleteAllType(const char* type);
int qbRefactorConfigDeleteAll();
int qbRefactorConfigGetName(int configIndex, char* buffer, int size);
int qbRefactorConfigGetType(int configIndex, char* buffer, int size);
int qbRefactorConfigSetName(int configIndex, const char* configName);
int qbRefactorConfigGetHeader(const char* configName, char* buffer, int size);
int qbRefactorConfigSetHeader(const char* configName, const char* configHeader);
int qbRefactorConfigCountIncludes(const char* configName);
int qbRefactorConfigCountJars(const char* configName);
int qbRefactorConfigGetInclude(const char* configName, int index, char* buffer, int size);
int qbRefactorConfigGetJar(const char* configName, int index, char* buffer, int size);
int qbRefactorConfigGetJavaSource(const char* name, char* buffer, int size);
int qbRefactorConfigAddInclude(const char* configName, const char* includePath, int index);
int qbRefactorConfigAddJar(const char* configName, const char* jarPath, int index);
int qbRefactorConfigDeleteInclude(const char* configName, const char* includePath);
int qbRefactorConfigDeleteJar(const char* configName, const char* jarPath);
int qbRefactorConfigDeleteAllIncludes(const char* configName);
int qbRefactorConfigDeleteAllJars(const char* configName);
}
