#include "qbRefactorConfiguration.h"

#include "qbapi_xml.h"

using quernbase::QBString;

qbRefactorConfigurationFile* qbRefactorConfigurationFile::current = nullptr;

qbRefactorConfiguration::~qbRefactorConfiguration() = default;

const QBString& qbRefactorConfiguration::getType() const {
    static QBString type("");
    return type;
}

const QBString& qbRefactorCppConfiguration::getType() const {
    static QBString type("cpp");
    return type;
}

const QBString& qbRefactorJavaConfiguration::getType() const {
    static QBString type("java");
    return type;
}

qbRefactorConfigurationFile::~qbRefactorConfigurationFile() {
    for (qbRefactorConfiguration* configuration : configurations) delete configuration;
    configurations.clear();
}

int qbRefactorConfigurationFile::indexOf(const QBString& name) const {
    for (unsigned i = 0; i < configurations.count(); ++i)
        if (configurations[i]->name.equalTo(name, 1)) return int(i);
    return -1;
}

qbRefactorConfiguration* qbRefactorConfigurationFile::at(int index) const {
    if (index < 0 || unsigned(index) >= configurations.count()) return nullptr;
    return configurations[unsigned(index)];
}

void qbRefactorConfigurationFile::remove(unsigned index) {
    qbRefactorConfiguration* configuration = configurations[index];
    if (document > 0) qbXMLCFGDeleteNode(document, configuration->node, 0);
    configurations.removeAt(index);
    delete configuration;
}

void qbRefactorConfigurationFile::removeAll() {
    for (qbRefactorConfiguration* configuration : configurations) delete configuration;
    configurations.clear();
}
