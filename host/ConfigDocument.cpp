// Reading configurations from the XML document and writing new ones into it.
//
// The file: a document type, then
//   <Compilers Version="10.0">
//     <C_Configuration Name=".." Header=".."><Includes><Include Dir=".."/>..</Includes></C_Configuration>
//     <Java_Configuration Name=".." Root=".."><JARs><JAR Dir=".."/>..</JARs></Java_Configuration>
//   </Compilers>
// Header is written relative to QBROOT and read back absolute. After an open every C
// configuration comes ahead of every Java one, whatever the order in the file.
#include <new>

#include "qbRefactorConfiguration.h"
#include "qbapi.h"
#include "qbapi_paths.h"
#include "qbapi_xml.h"

using quernbase::QBArray;
using quernbase::QBString;

#ifndef QB_MAKER_SITE
#define QB_MAKER_SITE "www.quernbase.example"
#endif

namespace {

const char kDocumentType[] =
    "DOCTYPE Compilers SYSTEM \"http://" QB_MAKER_SITE "/dtd/qbe/10.0/compilers.dtd\"";
const int kNoStatus = 0;

QBString hostRoot() { return qbpsGetEnv("QBROOT"); }

// Appends the non-empty Dir of every `item` under the `list` child of node.
int readDirs(int document, int node, const char* list, const char* item,
             QBArray<QBString>& dirs) {
    int parent = qbXMLCFGFindElement(document, list, node, 0);
    if (parent < 0) return 0;
    QBArray<int> items;
    qbXMLCFGFindNodes(document, item, parent, items);
    for (int index : items) {
        QBString dir = qbXMLCFGGetAttributeString(document, index, "Dir", QBString());
        if (dir.isNotEmpty() && dirs.add(dir) != 0) return qbmsg::OutOfMemory;
    }
    return 0;
}

int readCppConfiguration(int document, int node, const QBString& root,
                         qbRefactorCppConfiguration& configuration) {
    configuration.node = node;
    configuration.name = qbXMLCFGGetAttributeString(document, node, "Name", QBString());
    configuration.header = qbXMLCFGGetAttributeString(document, node, "Header", QBString());
    if (root.isNotEmpty() && configuration.header.isNotEmpty())
        configuration.header = absolutePath(configuration.header, root);
    return readDirs(document, node, "Includes", "Include", configuration.includes);
}

int readJavaConfiguration(int document, int node, qbRefactorJavaConfiguration& configuration) {
    configuration.node = node;
    configuration.name = qbXMLCFGGetAttributeString(document, node, "Name", QBString());
    configuration.root = qbXMLCFGGetAttributeString(document, node, "Root", QBString());
    return readDirs(document, node, "JARs", "JAR", configuration.jars);
}

// Reads every configuration that the path leads to; an allocation failure ends the loop and
// keeps what was read.
template <class Configuration, class Reader>
int readAll(qbRefactorConfigurationFile& file, const char* path, Reader read) {
    QBArray<int> nodes;
    int found = qbXMLCFGFindNodes(file.document, path, 0, nodes);
    if (found < 0) return found;
    for (int node : nodes) {
        Configuration* configuration = new (std::nothrow) Configuration;
        if (!configuration) return qbmsg::OutOfMemory;
        int rc = read(node, *configuration);
        if (rc >= 0) rc = file.configurations.add(configuration);
        if (rc < 0) {
            delete configuration;
            return rc;
        }
    }
    return 0;
}

int setAttribute(int document, int node, const char* name, const QBString& value) {
    return qbXMLCFGSetAttributeString(document, node, name, value, 0);
}

// The root first: a document with another root refuses it before its document type changes.
int addRoot(int document) {
    int root = qbXMLCFGAddNode(document, 0, "Compilers", -1, 1, 2);
    if (root < 0) return root;
    int rc = qbXMLCFGAddNode(document, 0, kDocumentType, -1, 32, 2);
    if (rc >= 0) rc = qbXMLCFGSetAttribute(document, root, "Version", "10.0", -1, 0);
    return rc < 0 ? rc : root;
}

int writeDirs(int document, int node, const char* list, const char* item,
              const QBArray<QBString>& dirs) {
    int parent = qbXMLCFGAddNode(document, node, list, -1, 1, 2);
    if (parent < 0) return parent;
    for (const QBString& dir : dirs) {
        int child = qbXMLCFGAddNode(document, parent, item, -1, 2, 2);
        if (child < 0) return child;
        if (int rc = setAttribute(document, child, "Dir", dir)) return rc;
    }
    return 0;
}

int writeCpp(int document, int node, const qbRefactorCppConfiguration& configuration) {
    QBString root = hostRoot();
    QBString header = configuration.header;
    if (root.isNotEmpty()) header = relativePath(header, root, QBPATH_CLIMB);
    if (header.isNotEmpty()) {
        if (int rc = setAttribute(document, node, "Header", header)) return rc;
    }
    return writeDirs(document, node, "Includes", "Include", configuration.includes);
}

int writeJava(int document, int node, const qbRefactorJavaConfiguration& configuration) {
    if (int rc = setAttribute(document, node, "Root", configuration.root)) return rc;
    return writeDirs(document, node, "JARs", "JAR", configuration.jars);
}

int writeConfiguration(int document, int node, qbRefactorConfiguration& configuration) {
    if (int rc = setAttribute(document, node, "Name", configuration.name)) return rc;
    if (configuration.getType().equalTo("java"))
        return writeJava(document, node, static_cast<qbRefactorJavaConfiguration&>(configuration));
    return writeCpp(document, node, static_cast<qbRefactorCppConfiguration&>(configuration));
}

}  // namespace

int qbRefactorConfigurationFile::open(const char* fileName) {
    removeAll();
    closeDocument();
    int status = kNoStatus;
    document = qbXMLCFGOpen(fileName, &status, 0, 2);
    if (document < 0) return document;
    int root = qbXMLCFGFindElement(document, "Compilers", 0, 0);
    if (root < 0) return root;
    QBString qbRoot = hostRoot();
    int rc = readAll<qbRefactorCppConfiguration>(
        *this, "/Compilers/C_Configuration", [&](int node, qbRefactorCppConfiguration& c) {
            return readCppConfiguration(document, node, qbRoot, c);
        });
    if (rc < 0) return rc;
    return readAll<qbRefactorJavaConfiguration>(
        *this, "/Compilers/Java_Configuration", [&](int node, qbRefactorJavaConfiguration& c) {
            return readJavaConfiguration(document, node, c);
        });
}

int qbRefactorConfigurationFile::save(const char* fileName) {
    if (document < 1) return 0;
    return qbXMLCFGSave(document, -1, 1, fileName, -1, 0, 0);
}

int qbRefactorConfigurationFile::closeDocument() {
    int rc = document > 0 ? qbXMLCFGClose(document) : 0;
    document = 0;
    return rc;
}

int qbRefactorConfigurationFile::add(qbRefactorConfiguration* configuration) {
    if (document < 1) {
        int created = qbXMLCFGCreate("compilers.xml", 70, 3);
        if (created < 0) return created;
        document = created;
        int rc = addRoot(document);
        if (rc < 0) return rc;
    }
    int root = qbXMLCFGFindElement(document, "Compilers", 0, 0);
    if (root < 0) root = addRoot(document);
    if (root < 0) return root;
    const char* element =
        configuration->getType().equalTo("java") ? "Java_Configuration" : "C_Configuration";
    int node = qbXMLCFGAddNode(document, root, element, -1, 1, 2);
    if (node < 0) return node;
    int rc = writeConfiguration(document, node, *configuration);
    if (rc >= 0) rc = configurations.add(configuration);
    if (rc < 0) {
        qbXMLCFGDeleteNode(document, node, 0);  // no half-written configuration stays behind
        return rc;
    }
    configuration->node = node;
    return 0;
}
