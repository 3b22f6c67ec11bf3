// The host's XML document operations, as the configuration commands use them.
#include <gtest/gtest.h>

#include <filesystem>

#include "qbapi_xml.h"
#include "support/ConfigTestSupport.h"

using configtest::readFile;
using configtest::ScratchDir;
using configtest::writeFile;
using quernbase::QBArray;
using quernbase::QBString;

namespace {

std::string attribute(int doc, int node, const char* name) {
    QBString value = qbXMLCFGGetAttributeString(doc, node, name, QBString("<none>"));
    return std::string(value.get(), value.length());
}

class XmlDocument : public ::testing::Test {
protected:
    void TearDown() override {
        if (doc > 0) qbXMLCFGClose(doc);
    }
    int open(const std::string& path) {
        int status = 1;
        doc = qbXMLCFGOpen(path.c_str(), &status, 0, 2);
        EXPECT_EQ(status, doc < 0 ? doc : 0);
        return doc;
    }
    ScratchDir scratch;
    int doc = 0;
};

TEST_F(XmlDocument, BuildSaveAndReadBack) {
    doc = qbXMLCFGCreate(scratch.file("a.xml").c_str(), 70, 3);
    ASSERT_GT(doc, 0);
    int root = qbXMLCFGAddNode(doc, 0, "Top", -1, QBXML_ELEMENT_WITH_CHILDREN, 2);
    ASSERT_GT(root, 0);
    ASSERT_GT(qbXMLCFGAddNode(doc, 0, "DOCTYPE Top SYSTEM \"http://x/t.dtd\"", -1, QBXML_DOCTYPE, 2), 0);
    ASSERT_EQ(qbXMLCFGSetAttribute(doc, root, "Version", "10.0", -1, 0), 0);
    for (const char* dir : {"a", "b & <c>", "\"q\""}) {
        int item = qbXMLCFGAddNode(doc, root, "Item", -1, QBXML_ELEMENT, 2);
        ASSERT_GT(item, root);
        ASSERT_EQ(qbXMLCFGSetAttributeString(doc, item, "Dir", QBString(dir), 0), 0);
    }
    ASSERT_EQ(qbXMLCFGSave(doc, -1, 1, nullptr, -1, 0, 0), 0);
    qbXMLCFGClose(doc);

    std::string text = readFile(scratch.file("a.xml"));
    EXPECT_EQ(text.find("<?xml"), 0u);
    EXPECT_LT(text.find("<!DOCTYPE Top SYSTEM \"http://x/t.dtd\">"), text.find("<Top"));

    ASSERT_GT(open(scratch.file("a.xml")), 0);
    int top = qbXMLCFGFindElement(doc, "Top", 0, 0);
    ASSERT_GT(top, 0);
    EXPECT_EQ(attribute(doc, top, "Version"), "10.0");
    QBArray<int> items;
    ASSERT_EQ(qbXMLCFGFindNodes(doc, "/Top/Item", 0, items), 3);
    EXPECT_EQ(attribute(doc, items[1], "Dir"), "b & <c>");
    EXPECT_EQ(attribute(doc, items[2], "Dir"), "\"q\"");
    EXPECT_EQ(attribute(doc, items[0], "Missing"), "<none>");
    QBArray<int> relative;
    EXPECT_EQ(qbXMLCFGFindNodes(doc, "Item", top, relative), 3);
    EXPECT_EQ(relative[0], items[0]);
}

TEST_F(XmlDocument, IndicesSurviveDeletingOtherNodes) {
    doc = qbXMLCFGCreate("x.xml", 70, 3);
    int root = qbXMLCFGAddNode(doc, 0, "R", -1, 1, 2);
    int a = qbXMLCFGAddNode(doc, root, "A", -1, 1, 2);
    int b = qbXMLCFGAddNode(doc, root, "B", -1, 1, 2);
    int inner = qbXMLCFGAddNode(doc, a, "Inner", -1, 2, 2);
    ASSERT_EQ(qbXMLCFGDeleteNode(doc, a, 0), 0);
    EXPECT_EQ(qbXMLCFGSetAttribute(doc, inner, "k", "v", -1, 0), qbmsg::NoXmlNode);
    EXPECT_EQ(qbXMLCFGDeleteNode(doc, a, 0), qbmsg::NoXmlNode);
    ASSERT_EQ(qbXMLCFGSetAttribute(doc, b, "k", "v", -1, 0), 0);
    EXPECT_EQ(attribute(doc, b, "k"), "v");
    int c = qbXMLCFGAddNode(doc, root, "C", 0, 1, 2);  // inserted in front of B
    EXPECT_NE(c, a);
    QBArray<int> order;
    ASSERT_EQ(qbXMLCFGFindNodes(doc, "/R/C", 0, order), 1);
    EXPECT_EQ(qbXMLCFGFindElement(doc, "B", root, 0), b);
    EXPECT_EQ(qbXMLCFGFindElement(doc, "A", root, 0), qbmsg::NotInList);
}

TEST_F(XmlDocument, RefusesWhatWouldNotBeWellFormed) {
    doc = qbXMLCFGCreate("x.xml", 70, 3);
    int root = qbXMLCFGAddNode(doc, 0, "R", -1, 1, 2);
    ASSERT_GT(root, 0);
    EXPECT_EQ(qbXMLCFGAddNode(doc, 0, "Other", -1, 1, 2), qbmsg::SecondXmlRoot);
    EXPECT_EQ(qbXMLCFGAddNode(doc, root, "", -1, 1, 2), qbmsg::InvalidArgument);
    EXPECT_EQ(qbXMLCFGAddNode(doc, root, "D", -1, QBXML_DOCTYPE, 2), qbmsg::InvalidArgument);
    int first = qbXMLCFGAddNode(doc, 0, "DOCTYPE R SYSTEM \"a\"", -1, QBXML_DOCTYPE, 2);
    EXPECT_EQ(qbXMLCFGAddNode(doc, 0, "DOCTYPE R SYSTEM \"b\"", -1, QBXML_DOCTYPE, 2), first);
    EXPECT_EQ(qbXMLCFGDeleteNode(doc, 0, 0), qbmsg::InvalidArgument);
    EXPECT_EQ(qbXMLCFGFindElement(doc + 100, "R", 0, 0), qbmsg::NoXmlDocument);
    EXPECT_EQ(qbXMLCFGFindElement(doc, "R", 999, 0), qbmsg::NoXmlNode);
    EXPECT_EQ(attribute(doc + 100, root, "x"), "<none>");
}

TEST_F(XmlDocument, OpenFailuresGiveTheirStatus) {
    EXPECT_EQ(open(scratch.file("absent.xml")), qbmsg::FileNotFound);
    EXPECT_EQ(open(scratch.path()), qbmsg::XmlUnreadable);
    EXPECT_EQ(open(""), qbmsg::InvalidArgument);
    writeFile(scratch.file("bad.xml"), "<?xml version=\"1.0\"?>\n<Compilers>\n  <C_Configuration>\n</Compilers>\n");
    EXPECT_EQ(open(scratch.file("bad.xml")), qbmsg::XmlSyntax);
    EXPECT_EQ(std::string(qbXMLCFGLastErrorDetail()).find("line 4"), 0u) << qbXMLCFGLastErrorDetail();
    EXPECT_STRNE(qbXMLCFGStatusText(qbmsg::XmlSyntax), qbXMLCFGStatusText(qbmsg::XmlUnreadable));
    doc = 0;
}

TEST_F(XmlDocument, FileWithoutRootOpensEmpty) {
    writeFile(scratch.file("prolog.xml"), "<?xml version=\"1.0\"?>\n");
    ASSERT_GT(open(scratch.file("prolog.xml")), 0);
    EXPECT_EQ(qbXMLCFGFindElement(doc, "Compilers", 0, 0), qbmsg::NotInList);
    EXPECT_GT(qbXMLCFGAddNode(doc, 0, "Compilers", -1, 1, 2), 0);
}

TEST_F(XmlDocument, FailedSaveLeavesTheOldFile) {
    std::string target = scratch.file("keep.xml");
    writeFile(target, "<Old/>\n");
    doc = qbXMLCFGCreate(target.c_str(), 70, 3);
    qbXMLCFGAddNode(doc, 0, "New", -1, 1, 2);
    std::filesystem::create_directory(scratch.file("adir"));
    EXPECT_EQ(qbXMLCFGSave(doc, -1, 1, scratch.file("adir").c_str(), -1, 0, 0), qbmsg::ShortWrite);
    EXPECT_EQ(qbXMLCFGSave(doc, -1, 1, scratch.file("no/such/dir.xml").c_str(), -1, 0, 0),
              qbmsg::ShortWrite);
    EXPECT_EQ(readFile(target), "<Old/>\n");
    auto entries = std::distance(std::filesystem::directory_iterator(scratch.path()),
                                 std::filesystem::directory_iterator());
    EXPECT_EQ(entries, 2) << "a temporary file was left behind";
    ASSERT_EQ(qbXMLCFGSave(doc, -1, 1, nullptr, -1, 0, 0), 0);
    EXPECT_NE(readFile(target).find("<New"), std::string::npos);
    EXPECT_EQ(qbXMLCFGClose(doc), 0);
    EXPECT_EQ(qbXMLCFGClose(doc), qbmsg::NoXmlDocument);
    doc = 0;
}

}  // namespace
