// Opening, creating, saving and closing XML documents. A save writes a temporary file beside
// the target and renames it over the target, so a failed save leaves the old file as it was.
#include "qbapi_xml.h"
#include "xml_internal.h"

#ifdef QBAPI_HAVE_PUGIXML

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>

namespace qbxml {
namespace {

std::vector<std::unique_ptr<Document>> documents;  // handle n is slot n - 1
std::string lastErrorDetail;

const unsigned kParseOptions = pugi::parse_default | pugi::parse_doctype | pugi::parse_comments |
                               pugi::parse_declaration | pugi::parse_pi;

int failWith(int status, const char* why) {
    lastErrorDetail = why;
    return status;
}

int readWholeFile(const char* fileName, std::string& text) {
    struct stat info;
    if (stat(fileName, &info) != 0) {
        bool absent = errno == ENOENT || errno == ENOTDIR;
        return failWith(absent ? qbmsg::FileNotFound : qbmsg::XmlUnreadable, std::strerror(errno));
    }
    if (!S_ISREG(info.st_mode)) return failWith(qbmsg::XmlUnreadable, "not a regular file");
    FILE* file = std::fopen(fileName, "rb");
    if (!file) return failWith(qbmsg::XmlUnreadable, std::strerror(errno));
    char chunk[8192];
    size_t n;
    while ((n = std::fread(chunk, 1, sizeof chunk, file)) > 0) text.append(chunk, n);
    bool failed = std::ferror(file) != 0;
    std::fclose(file);
    return failed ? failWith(qbmsg::XmlUnreadable, "read error") : 0;
}

std::string describeParseError(const std::string& text, const pugi::xml_parse_result& result) {
    size_t offset = result.offset < 0 ? 0 : size_t(result.offset);
    if (offset > text.size()) offset = text.size();
    int line = 1, column = 1;
    for (size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
           result.description();
}

int parseInto(Document& doc, const std::string& text) {
    pugi::xml_parse_result result = doc.tree.load_buffer(text.data(), text.size(), kParseOptions);
    // A file without a root element (empty, or only a prolog) is an empty document.
    if (result || result.status == pugi::status_no_document_element) return 0;
    if (result.status == pugi::status_out_of_memory) return qbmsg::OutOfMemory;
    lastErrorDetail = describeParseError(text, result);
    return qbmsg::XmlSyntax;
}

int addDocument(std::unique_ptr<Document> doc) {
    documents.push_back(std::move(doc));
    return int(documents.size());
}

int openDocument(const char* fileName) {
    lastErrorDetail.clear();
    if (!fileName || !*fileName) return qbmsg::InvalidArgument;
    std::string text;
    if (int rc = readWholeFile(fileName, text)) return rc;
    std::unique_ptr<Document> doc(new Document);
    if (int rc = parseInto(*doc, text)) return rc;
    doc->name = fileName;
    return addDocument(std::move(doc));
}

std::string render(Document& doc, int indent, int declaration) {
    std::ostringstream out;
    unsigned flags = pugi::format_indent;
    if (declaration != 1) flags |= pugi::format_no_declaration;
    std::string step(indent < 0 ? 2 : size_t(indent), ' ');
    doc.tree.save(out, step.c_str(), flags, pugi::encoding_utf8);
    return out.str();
}

mode_t modeFor(const std::string& fileName) {
    struct stat info;
    if (stat(fileName.c_str(), &info) == 0) return info.st_mode & 07777;
    mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

bool writeAll(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += size_t(n);
    }
    return true;
}

int replaceFile(const std::string& fileName, const std::string& text) {
    std::string temporary = fileName + ".XXXXXX";
    int fd = mkstemp(&temporary[0]);
    if (fd < 0) return failWith(qbmsg::ShortWrite, std::strerror(errno));
    bool ok = writeAll(fd, text) && fchmod(fd, modeFor(fileName)) == 0 && fsync(fd) == 0;
    ok = close(fd) == 0 && ok;
    if (ok && rename(temporary.c_str(), fileName.c_str()) == 0) return 0;
    int saved = errno;
    unlink(temporary.c_str());
    return failWith(qbmsg::ShortWrite, std::strerror(saved));
}

}  // namespace

Document::Document() {
    nodes.push_back(tree);
    indices[tree.internal_object()] = 0;
}

int Document::indexOf(pugi::xml_node node) {
    auto found = indices.find(node.internal_object());
    if (found != indices.end()) return found->second;
    nodes.push_back(node);
    int index = int(nodes.size()) - 1;
    indices[node.internal_object()] = index;
    return index;
}

pugi::xml_node Document::nodeAt(int index) const {
    if (index < 0 || size_t(index) >= nodes.size()) return pugi::xml_node();
    return nodes[size_t(index)];
}

void Document::forget(pugi::xml_node subtree) {
    for (pugi::xml_node child : subtree.children()) forget(child);
    auto found = indices.find(subtree.internal_object());
    if (found == indices.end()) return;
    nodes[size_t(found->second)] = pugi::xml_node();
    indices.erase(found);
}

Document* documentFor(int handle) {
    if (handle < 1 || size_t(handle) > documents.size()) return nullptr;
    return documents[size_t(handle) - 1].get();
}

}  // namespace qbxml

using namespace qbxml;

int qbXMLCFGOpen(const char* fileName, int* status, int, int) {
    int rc = guarded([&] { return openDocument(fileName); });
    if (status) *status = rc < 0 ? rc : 0;
    return rc;
}

int qbXMLCFGCreate(const char* name, int, int) {
    return guarded([&] {
        std::unique_ptr<Document> doc(new Document);
        doc->name = name ? name : "";
        return addDocument(std::move(doc));
    });
}

int qbXMLCFGClose(int handle) {
    if (!documentFor(handle)) return qbmsg::NoXmlDocument;
    documents[size_t(handle) - 1].reset();
    return 0;
}

int qbXMLCFGSave(int handle, int indent, int declaration, const char* fileName, int, int, int) {
    Document* doc = documentFor(handle);
    if (!doc) return qbmsg::NoXmlDocument;
    return guarded([&] {
        std::string target = fileName && *fileName ? fileName : doc->name;
        if (target.empty()) return int(qbmsg::InvalidArgument);
        lastErrorDetail.clear();
        return replaceFile(target, render(*doc, indent, declaration));
    });
}

const char* qbXMLCFGLastErrorDetail() { return lastErrorDetail.c_str(); }

#endif
