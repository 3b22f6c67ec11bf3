// Shared by the XML document operations: the table of open documents and the index of nodes.
#pragma once

#ifdef QBAPI_HAVE_PUGIXML

#include <pugixml.hpp>

#include <string>
#include <unordered_map>
#include <vector>

namespace qbxml {

struct Document {
    pugi::xml_document tree;
    std::string name;  // the file it saves to by default
    // Index to node; a deleted node leaves an empty slot so that no index is handed out twice.
    std::vector<pugi::xml_node> nodes;
    std::unordered_map<pugi::xml_node_struct*, int> indices;

    Document();
    int indexOf(pugi::xml_node node);  // hands out the next index on first sight
    pugi::xml_node nodeAt(int index) const;  // empty for a bad or deleted index
    void forget(pugi::xml_node subtree);
};

// Null for a handle that is not open.
Document* documentFor(int handle);
// Operations that grow tables may throw bad_alloc; none may let it out.
template <class F> int guarded(F f) {
    try {
        return f();
    } catch (const std::bad_alloc&) {
        return qbmsg::OutOfMemory;
    }
}

}  // namespace qbxml

#endif
