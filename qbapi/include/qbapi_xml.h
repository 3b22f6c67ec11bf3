// The host's XML documents: open, create, edit and save documents addressed by handle, their
// nodes addressed by index.
//
// A handle is above 0. Node index 0 is the document itself; every other node gets the next free
// index the first time an operation hands it out, and keeps it until it is deleted, so indices
// held by a caller stay valid while other nodes come and go. Results below 0 are statuses.
#pragma once

#include "QBArray.h"
#include "QBMessageCodes.h"
#include "QBString.h"

// Statuses are the names of the message table: FileNotFound, OutOfMemory, ShortWrite (written
// only in part), InvalidArgument, NotInList (no such element or attribute), and XmlUnreadable to
// SecondXmlRoot; a node index that was deleted is NoXmlNode.

// Kinds of node for qbXMLCFGAddNode.
enum QBXMLNodeKind {
    QBXML_ELEMENT_WITH_CHILDREN = 1,
    QBXML_ELEMENT = 2,
    QBXML_DOCTYPE = 32,  // name is the declaration's text, e.g. "DOCTYPE root SYSTEM \"url\""
};

extern "C" {

// Reads a document; the handle, or a status that is also stored in *status. options is reserved
// (callers pass 0 and 2).
int qbXMLCFGOpen(const char* fileName, int* status, int reserved, int options);
// A new empty document that saves under name. capacityHint and options are reserved.
int qbXMLCFGCreate(const char* name, int capacityHint, int options);
int qbXMLCFGClose(int handle);
// Writes the document under fileName (null: its own name) with an XML declaration when
// declaration is 1. The file is replaced whole or not at all. indent -1 is two blanks.
int qbXMLCFGSave(int handle, int indent, int declaration, const char* fileName, int encoding,
                 int reserved1, int reserved2);
// The first child element of parent with that name.
int qbXMLCFGFindElement(int handle, const char* name, int parent, int flags);
// A child of parent (-1 position appends). Gives the new node's index.
int qbXMLCFGAddNode(int handle, int parent, const char* name, int position, int kind, int flags);
// Removes the node with its subtree; their indices become invalid.
int qbXMLCFGDeleteNode(int handle, int index, int flags);
// valueLength -1 reads value up to its terminator.
int qbXMLCFGSetAttribute(int handle, int index, const char* name, const char* value,
                         int valueLength, int flags);

// A line of text for a status of these operations.
const char* qbXMLCFGStatusText(int status);
// Where and why the last failed open stopped, e.g. "line 3, column 7: mismatched end tag";
// empty when the last open succeeded.
const char* qbXMLCFGLastErrorDetail();
}

// The nodes that a path of element names leads to, in document order, appended to nodes after
// clearing it. A path starting with '/' begins at the document, any other at parent. Gives the
// number found.
int qbXMLCFGFindNodes(int handle, const char* path, int parent, quernbase::QBArray<int>& nodes);
// The attribute's value, or defaultValue when the node lacks it.
quernbase::QBString qbXMLCFGGetAttributeString(int handle, int index, const char* name,
                                               const quernbase::QBString& defaultValue);
int qbXMLCFGSetAttributeString(int handle, int index, const char* name,
                               const quernbase::QBString& value, int flags);
