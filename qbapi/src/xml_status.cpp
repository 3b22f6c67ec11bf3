// Texts for the statuses of the XML document operations, and the operations themselves as
// failures when the library is built without an XML parser.
#include "qbapi_xml.h"

namespace {

struct StatusText {
    int status;
    const char* text;
};

const StatusText kStatusTexts[] = {
    {QBXML_ERR_FILE_NOT_FOUND, "file not found"},
    {QBXML_ERR_NOMEM, "out of memory"},
    {QBXML_ERR_WRITE, "the file could not be written"},
    {QBXML_ERR_INVALID_ARGUMENT, "invalid argument"},
    {QBXML_ERR_NOT_FOUND, "element or attribute not found"},
    {QBXML_ERR_READ, "the file could not be read"},
    {QBXML_ERR_SYNTAX, "the file is not well-formed XML"},
    {QBXML_ERR_INVALID_HANDLE, "no open XML document with that handle"},
    {QBXML_ERR_INVALID_INDEX, "no XML node with that index"},
    {QBXML_ERR_SECOND_ROOT, "the XML document already has a root element"},
};

}  // namespace

const char* qbXMLCFGStatusText(int status) {
    if (status >= 0) return "success";
    for (const StatusText& entry : kStatusTexts)
        if (entry.status == status) return entry.text;
    return "unknown XML status";
}

#ifndef QBAPI_HAVE_PUGIXML

using quernbase::QBArray;
using quernbase::QBString;

int qbXMLCFGOpen(const char*, int* status, int, int) {
    if (status) *status = QBXML_ERR_INVALID_HANDLE;
    return QBXML_ERR_INVALID_HANDLE;
}
int qbXMLCFGCreate(const char*, int, int) { return QBXML_ERR_INVALID_HANDLE; }
int qbXMLCFGClose(int) { return QBXML_ERR_INVALID_HANDLE; }
int qbXMLCFGSave(int, int, int, const char*, int, int, int) { return QBXML_ERR_INVALID_HANDLE; }
int qbXMLCFGFindElement(int, const char*, int, int) { return QBXML_ERR_INVALID_HANDLE; }
int qbXMLCFGAddNode(int, int, const char*, int, int, int) { return QBXML_ERR_INVALID_HANDLE; }
int qbXMLCFGDeleteNode(int, int, int) { return QBXML_ERR_INVALID_HANDLE; }
int qbXMLCFGSetAttribute(int, int, const char*, const char*, int, int) {
    return QBXML_ERR_INVALID_HANDLE;
}
const char* qbXMLCFGLastErrorDetail() { return "built without an XML parser"; }
int qbXMLCFGFindNodes(int, const char*, int, QBArray<int>& nodes) {
    nodes.clear();
    return QBXML_ERR_INVALID_HANDLE;
}
QBString qbXMLCFGGetAttributeString(int, int, const char*, const QBString& defaultValue) {
    return defaultValue;
}
int qbXMLCFGSetAttributeString(int, int, const char*, const QBString&, int) {
    return QBXML_ERR_INVALID_HANDLE;
}

#endif
