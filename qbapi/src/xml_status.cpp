// The statuses' texts, from the message table, and the operations themselves as failures when
// the library is built without an XML parser.
#include "QBMessageTexts.h"
#include "qbapi_xml.h"

const char* qbXMLCFGStatusText(int status) { return qbmsg::textOf(status); }

#ifndef QBAPI_HAVE_PUGIXML

using quernbase::QBArray;
using quernbase::QBString;

int qbXMLCFGOpen(const char*, int* status, int, int) {
    if (status) *status = qbmsg::NoXmlDocument;
    return qbmsg::NoXmlDocument;
}
int qbXMLCFGCreate(const char*, int, int) { return qbmsg::NoXmlDocument; }
int qbXMLCFGClose(int) { return qbmsg::NoXmlDocument; }
int qbXMLCFGSave(int, int, int, const char*, int, int, int) { return qbmsg::NoXmlDocument; }
int qbXMLCFGFindElement(int, const char*, int, int) { return qbmsg::NoXmlDocument; }
int qbXMLCFGAddNode(int, int, const char*, int, int, int) { return qbmsg::NoXmlDocument; }
int qbXMLCFGDeleteNode(int, int, int) { return qbmsg::NoXmlDocument; }
int qbXMLCFGSetAttribute(int, int, const char*, const char*, int, int) {
    return qbmsg::NoXmlDocument;
}
const char* qbXMLCFGLastErrorDetail() { return "built without an XML parser"; }
int qbXMLCFGFindNodes(int, const char*, int, QBArray<int>& nodes) {
    nodes.clear();
    return qbmsg::NoXmlDocument;
}
QBString qbXMLCFGGetAttributeString(int, int, const char*, const QBString& defaultValue) {
    return defaultValue;
}
int qbXMLCFGSetAttributeString(int, int, const char*, const QBString&, int) {
    return qbmsg::NoXmlDocument;
}

#endif
