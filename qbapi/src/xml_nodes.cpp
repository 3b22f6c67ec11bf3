// Finding, adding and deleting nodes of an open XML document, and their attributes.
#include "qbapi_xml.h"
#include "xml_internal.h"

#ifdef QBAPI_HAVE_PUGIXML

#include <cstring>

using namespace qbxml;
using quernbase::QBArray;
using quernbase::QBString;

namespace {

bool sameName(pugi::xml_node node, const char* name, size_t length) {
    return node.type() == pugi::node_element && std::strlen(node.name()) == length &&
           std::strncmp(node.name(), name, length) == 0;
}

pugi::xml_node firstElement(pugi::xml_node parent) {
    for (pugi::xml_node child : parent.children())
        if (child.type() == pugi::node_element) return child;
    return pugi::xml_node();
}

// The words of a declaration without "<!", "DOCTYPE" and ">".
std::string doctypeValue(const char* text) {
    std::string value(text);
    if (value.compare(0, 2, "<!") == 0) value.erase(0, 2);
    if (value.compare(0, 7, "DOCTYPE") == 0) value.erase(0, 7);
    if (!value.empty() && value.back() == '>') value.pop_back();
    size_t start = value.find_first_not_of(" \t\r\n");
    return start == std::string::npos ? std::string() : value.substr(start);
}

int addDoctype(Document& doc, int parent, const char* name) {
    if (parent != 0) return qbmsg::InvalidArgument;
    std::string value = doctypeValue(name);
    for (pugi::xml_node child : doc.tree.children()) {
        if (child.type() != pugi::node_doctype) continue;
        child.set_value(value.c_str());
        return doc.indexOf(child);
    }
    pugi::xml_node root = firstElement(doc.tree);
    pugi::xml_node added = root ? doc.tree.insert_child_before(pugi::node_doctype, root)
                                : doc.tree.append_child(pugi::node_doctype);
    if (!added || !added.set_value(value.c_str())) return qbmsg::OutOfMemory;
    return doc.indexOf(added);
}

pugi::xml_node childAt(pugi::xml_node parent, int position) {
    if (position < 0) return pugi::xml_node();
    pugi::xml_node child = parent.first_child();
    for (int i = 0; child && i < position; ++i) child = child.next_sibling();
    return child;
}

int addElement(Document& doc, pugi::xml_node parent, const char* name, int position) {
    if (!*name) return qbmsg::InvalidArgument;
    if (parent == doc.tree && firstElement(doc.tree)) return qbmsg::SecondXmlRoot;
    if (parent.type() != pugi::node_element && parent != doc.tree) return qbmsg::InvalidArgument;
    pugi::xml_node before = childAt(parent, position);
    pugi::xml_node added = before ? parent.insert_child_before(pugi::node_element, before)
                                  : parent.append_child(pugi::node_element);
    if (!added || !added.set_name(name)) return qbmsg::OutOfMemory;
    return doc.indexOf(added);
}

int findAlong(Document& doc, const char* path, pugi::xml_node start, QBArray<int>& found) {
    std::vector<pugi::xml_node> current{start};
    const char* step = path;
    while (*step) {
        const char* end = std::strchr(step, '/');
        size_t length = end ? size_t(end - step) : std::strlen(step);
        if (length > 0) {
            std::vector<pugi::xml_node> next;
            for (pugi::xml_node node : current)
                for (pugi::xml_node child : node.children())
                    if (sameName(child, step, length)) next.push_back(child);
            current.swap(next);
        }
        step += length + (end ? 1 : 0);
    }
    for (pugi::xml_node node : current)
        if (node != start && found.add(doc.indexOf(node)) != 0) return qbmsg::OutOfMemory;
    return int(found.count());
}

}  // namespace

int qbXMLCFGFindElement(int handle, const char* name, int parent, int) {
    Document* doc = documentFor(handle);
    if (!doc) return qbmsg::NoXmlDocument;
    pugi::xml_node node = doc->nodeAt(parent);
    if (!node) return qbmsg::NoXmlNode;
    if (!name) return qbmsg::InvalidArgument;
    for (pugi::xml_node child : node.children())
        if (sameName(child, name, std::strlen(name)))
            return guarded([&] { return doc->indexOf(child); });
    return qbmsg::NotInList;
}

int qbXMLCFGFindNodes(int handle, const char* path, int parent, QBArray<int>& nodes) {
    nodes.clear();
    Document* doc = documentFor(handle);
    if (!doc) return qbmsg::NoXmlDocument;
    if (!path) return qbmsg::InvalidArgument;
    pugi::xml_node start = *path == '/' ? pugi::xml_node(doc->tree) : doc->nodeAt(parent);
    if (!start) return qbmsg::NoXmlNode;
    return guarded([&] { return findAlong(*doc, path, start, nodes); });
}

int qbXMLCFGAddNode(int handle, int parent, const char* name, int position, int kind, int) {
    Document* doc = documentFor(handle);
    if (!doc) return qbmsg::NoXmlDocument;
    pugi::xml_node node = doc->nodeAt(parent);
    if (!node) return qbmsg::NoXmlNode;
    if (!name) return qbmsg::InvalidArgument;
    return guarded([&] {
        if (kind == QBXML_DOCTYPE) return addDoctype(*doc, parent, name);
        if (kind == QBXML_ELEMENT || kind == QBXML_ELEMENT_WITH_CHILDREN)
            return addElement(*doc, node, name, position);
        return int(qbmsg::InvalidArgument);
    });
}

int qbXMLCFGDeleteNode(int handle, int index, int) {
    Document* doc = documentFor(handle);
    if (!doc) return qbmsg::NoXmlDocument;
    if (index == 0) return qbmsg::InvalidArgument;
    pugi::xml_node node = doc->nodeAt(index);
    if (!node) return qbmsg::NoXmlNode;
    doc->forget(node);
    node.parent().remove_child(node);
    return 0;
}

int qbXMLCFGSetAttribute(int handle, int index, const char* name, const char* value,
                         int valueLength, int) {
    Document* doc = documentFor(handle);
    if (!doc) return qbmsg::NoXmlDocument;
    pugi::xml_node node = doc->nodeAt(index);
    if (!node) return qbmsg::NoXmlNode;
    if (!name || !*name || node.type() != pugi::node_element) return qbmsg::InvalidArgument;
    return guarded([&] {
        std::string text;
        if (value) text.assign(value, valueLength < 0 ? std::strlen(value) : size_t(valueLength));
        pugi::xml_attribute attribute = node.attribute(name);
        if (!attribute) attribute = node.append_attribute(name);
        return attribute && attribute.set_value(text.c_str()) ? 0 : int(qbmsg::OutOfMemory);
    });
}

QBString qbXMLCFGGetAttributeString(int handle, int index, const char* name,
                                    const QBString& defaultValue) {
    Document* doc = documentFor(handle);
    pugi::xml_node node = doc ? doc->nodeAt(index) : pugi::xml_node();
    pugi::xml_attribute attribute = node && name ? node.attribute(name) : pugi::xml_attribute();
    if (!attribute) return defaultValue;
    const char* value = attribute.value();
    return QBString(value, unsigned(std::strlen(value)));
}

int qbXMLCFGSetAttributeString(int handle, int index, const char* name, const QBString& value,
                               int flags) {
    return qbXMLCFGSetAttribute(handle, index, name, value.isNull() ? "" : value.get(),
                                int(value.length()), flags);
}

#endif
