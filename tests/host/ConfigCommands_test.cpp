// The compiler configuration commands in their plain forms, against real compilers.xml files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QBMemory.h"
#include "qbRefactorConfiguration.h"
#include "qbapi_xml.h"
#include "support/ConfigTestSupport.h"

using configtest::fileExists;
using configtest::readFile;
using configtest::ScopedEnv;
using configtest::ScratchDir;
using configtest::writeFile;

namespace {

const int kNoConfiguration = -7500, kNotOpen = -7501, kWrongType = -7535, kNotInList = -3022;

std::string nameAt(int index) {
    char buffer[1024];
    int rc = qbRefactorConfigGetName(index, buffer, sizeof buffer);
    return rc < 0 ? "<" + std::to_string(rc) + ">" : buffer;
}

std::string typeAt(int index) {
    char buffer[1024];
    return qbRefactorConfigGetType(index, buffer, sizeof buffer) < 0 ? "<error>" : buffer;
}

std::string headerOf(const char* name) {
    char buffer[1024];
    int rc = qbRefactorConfigGetHeader(name, buffer, sizeof buffer);
    return rc < 0 ? "<" + std::to_string(rc) + ">" : buffer;
}

std::vector<std::string> listOf(const char* name, int (*count)(const char*),
                                int (*get)(const char*, int, char*, int)) {
    std::vector<std::string> out;
    int n = count(name);
    for (int i = 0; i < n; ++i) {
        char buffer[1024];
        EXPECT_EQ(get(name, i, buffer, sizeof buffer), 0);
        out.push_back(buffer);
    }
    return out;
}

std::vector<std::string> includesOf(const char* name) {
    return listOf(name, qbRefactorConfigCountIncludes, qbRefactorConfigGetInclude);
}

std::vector<std::string> jarsOf(const char* name) {
    return listOf(name, qbRefactorConfigCountJars, qbRefactorConfigGetJar);
}

size_t occurrences(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

class ConfigCommands : public ::testing::Test {
protected:
    void SetUp() override { qbRefactorConfigClose(); }
    void TearDown() override { qbRefactorConfigClose(); }
    // Opens a file that does not exist yet: the object is there, empty, with no document.
    void startEmpty() { ASSERT_EQ(qbRefactorConfigOpen(xml.c_str()), qbmsg::FileNotFound); }
    void saveAndReopen() {
        ASSERT_EQ(qbRefactorConfigSave(xml.c_str()), 0);
        ASSERT_EQ(qbRefactorConfigOpen(xml.c_str()), 0);
    }
    ScratchDir scratch;
    std::string xml = scratch.file("compilers.xml");
    ScopedEnv root{"QBROOT", nullptr};
};

TEST_F(ConfigCommands, EverythingNeedsAnOpenFirst) {
    char buffer[16] = "unchanged";
    EXPECT_EQ(qbRefactorConfigIsOpen(nullptr), 0);
    EXPECT_EQ(qbRefactorConfigCount(), kNotOpen);
    EXPECT_EQ(qbRefactorConfigAdd("x", "h", "a"), kNotOpen);
    EXPECT_EQ(qbRefactorConfigAddJava("x", "s", "a"), kNotOpen);
    EXPECT_EQ(qbRefactorConfigDelete("x"), kNotOpen);
    EXPECT_EQ(qbRefactorConfigDeleteAll(), kNotOpen);
    EXPECT_EQ(qbRefactorConfigDeleteAllType("cpp"), kNotOpen);
    EXPECT_EQ(qbRefactorConfigSave(xml.c_str()), kNotOpen);
    EXPECT_EQ(qbRefactorConfigGetName(0, buffer, sizeof buffer), kNotOpen);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(qbRefactorConfigGetInclude("x", 0, buffer, sizeof buffer), kNotOpen);
    EXPECT_EQ(qbRefactorConfigAddInclude("x", "p", -1), kNotOpen);
    EXPECT_EQ(qbRefactorConfigClose(), 0);
    EXPECT_FALSE(fileExists(xml));
}

TEST_F(ConfigCommands, AddingAnExistingNameReachesMemoryOnly) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("x", "/h/x.h", "a;b"), 0);
    ASSERT_EQ(qbRefactorConfigAdd("x", "/h/y.h", "c"), 0);
    EXPECT_EQ(qbRefactorConfigCount(), 1);
    EXPECT_EQ(includesOf("x"), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(headerOf("x"), "/h/y.h");
    saveAndReopen();
    EXPECT_EQ(includesOf("x"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(headerOf("x"), "/h/x.h");
}

TEST_F(ConfigCommands, EmptyListPartsAreDropped) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("x", "", "a;;b;"), 0);
    ASSERT_EQ(qbRefactorConfigAddJava("j", "/src", ";x.jar;;y.jar"), 0);
    EXPECT_EQ(includesOf("x"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(jarsOf("j"), (std::vector<std::string>{"x.jar", "y.jar"}));
    saveAndReopen();
    EXPECT_EQ(includesOf("x"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(jarsOf("j"), (std::vector<std::string>{"x.jar", "y.jar"}));
    EXPECT_EQ(occurrences(readFile(xml), "Header="), 0u) << "an empty header is not written";
}

TEST_F(ConfigCommands, DeleteAllTypeIgnoresCase) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("c1", "/h1", "a"), 0);
    ASSERT_EQ(qbRefactorConfigAddJava("j1", "/src", "x.jar"), 0);
    ASSERT_EQ(qbRefactorConfigAdd("c2", "/h2", "b"), 0);
    ASSERT_EQ(qbRefactorConfigDeleteAllType("CPP"), 0);
    ASSERT_EQ(qbRefactorConfigCount(), 1);
    EXPECT_EQ(nameAt(0), "j1");
    saveAndReopen();
    EXPECT_EQ(qbRefactorConfigCount(), 1);
    EXPECT_EQ(typeAt(0), "java");
    EXPECT_EQ(qbRefactorConfigDeleteAll(), 0);
    EXPECT_EQ(qbRefactorConfigCount(), 0);
}

TEST_F(ConfigCommands, SaveAfterFailedOpenWritesNothing) {
    writeFile(xml, "<Compilers><C_Configuration Name=\"x\"></Compilers>");
    std::string before = readFile(xml);
    EXPECT_EQ(qbRefactorConfigOpen(xml.c_str()), qbmsg::XmlSyntax);
    EXPECT_EQ(qbRefactorConfigIsOpen(nullptr), 0);
    EXPECT_EQ(qbRefactorConfigCount(), 0);
    EXPECT_EQ(qbRefactorConfigSave(nullptr), 0);
    EXPECT_EQ(qbRefactorConfigSave(xml.c_str()), 0);
    EXPECT_EQ(readFile(xml), before);
    std::string other = scratch.file("other.xml");
    ASSERT_EQ(qbRefactorConfigOpen(other.c_str()), qbmsg::FileNotFound);
    EXPECT_EQ(qbRefactorConfigSave(other.c_str()), 0);
    EXPECT_FALSE(fileExists(other));
    ASSERT_EQ(qbRefactorConfigAdd("x", "/h", "a"), 0);  // an add creates a new document
    EXPECT_EQ(qbRefactorConfigIsOpen(nullptr), 1);
    ASSERT_EQ(qbRefactorConfigSave(other.c_str()), 0);
    EXPECT_TRUE(fileExists(other));
}

TEST_F(ConfigCommands, SavedFileHasDocumentTypeAndVersion) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("gcc", "/usr/h/gcc.h", "/usr/include;/usr/local/include"), 0);
    ASSERT_EQ(qbRefactorConfigSave(xml.c_str()), 0);
    std::string text = readFile(xml);
    EXPECT_EQ(text.find("<?xml version=\"1.0\""), 0u) << text;
    size_t doctype = text.find("<!DOCTYPE Compilers SYSTEM \"http://");
    ASSERT_NE(doctype, std::string::npos) << text;
    EXPECT_NE(text.find("/dtd/qbe/10.0/compilers.dtd\">", doctype), std::string::npos);
    EXPECT_LT(doctype, text.find("<Compilers Version=\"10.0\">"));
    EXPECT_EQ(occurrences(text, "<!DOCTYPE"), 1u);
    int doc = qbXMLCFGOpen(xml.c_str(), nullptr, 0, 2);  // well-formed: it parses
    ASSERT_GT(doc, 0);
    quernbase::QBArray<int> dirs;
    EXPECT_EQ(qbXMLCFGFindNodes(doc, "/Compilers/C_Configuration/Includes/Include", 0, dirs), 2);
    qbXMLCFGClose(doc);
}

TEST_F(ConfigCommands, RoundTripKeepsEveryConfiguration) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAddJava("jdk", "/src/java", "/lib/a.jar;/lib/b.jar"), 0);
    ASSERT_EQ(qbRefactorConfigAdd("gcc", "/opt/h/gcc.h", "/usr/include;/usr/include/x86_64"), 0);
    ASSERT_EQ(qbRefactorConfigAdd("odd <&\"> name", "/h/<&>.h", "/a b/&c"), 0);
    saveAndReopen();
    ASSERT_EQ(qbRefactorConfigCount(), 3);
    EXPECT_EQ(nameAt(0), "gcc");  // C ahead of Java after an open
    EXPECT_EQ(nameAt(1), "odd <&\"> name");
    EXPECT_EQ(nameAt(2), "jdk");
    EXPECT_EQ(typeAt(0), "cpp");
    EXPECT_EQ(typeAt(2), "java");
    EXPECT_EQ(headerOf("gcc"), "/opt/h/gcc.h");
    EXPECT_EQ(includesOf("gcc"), (std::vector<std::string>{"/usr/include", "/usr/include/x86_64"}));
    EXPECT_EQ(headerOf("odd <&\"> name"), "/h/<&>.h");
    EXPECT_EQ(includesOf("odd <&\"> name"), (std::vector<std::string>{"/a b/&c"}));
    char source[64];
    ASSERT_EQ(qbRefactorConfigGetJavaSource("jdk", source, sizeof source), 0);
    EXPECT_STREQ(source, "/src/java");
    EXPECT_EQ(jarsOf("jdk"), (std::vector<std::string>{"/lib/a.jar", "/lib/b.jar"}));
    std::string first = readFile(xml);
    saveAndReopen();
    EXPECT_EQ(readFile(xml), first);
}

TEST_F(ConfigCommands, CComesBeforeJavaWhateverTheFileOrder) {
    writeFile(xml,
              "<?xml version=\"1.0\"?>\n<Compilers Version=\"10.0\">\n"
              "<Java_Configuration Name=\"j\" Root=\"/s\"><JARs><JAR Dir=\"\"/><JAR Dir=\"k.jar\"/></JARs></Java_Configuration>\n"
              "<C_Configuration Name=\"c\"><Includes><Include Dir=\"i\"/><Include/></Includes></C_Configuration>\n"
              "<C_Configuration Name=\"d\" Header=\"/x.h\"/>\n"
              "</Compilers>\n");
    ASSERT_EQ(qbRefactorConfigOpen(xml.c_str()), 0);
    ASSERT_EQ(qbRefactorConfigCount(), 3);
    EXPECT_EQ(nameAt(0), "c");
    EXPECT_EQ(nameAt(1), "d");
    EXPECT_EQ(nameAt(2), "j");
    EXPECT_EQ(headerOf("c"), "");
    EXPECT_EQ(includesOf("c"), (std::vector<std::string>{"i"}));
    EXPECT_EQ(includesOf("d"), (std::vector<std::string>{}));
    EXPECT_EQ(jarsOf("j"), (std::vector<std::string>{"k.jar"}));
}

TEST_F(ConfigCommands, FileWithoutCompilersGetsDocumentTypeAndRootAgain) {
    writeFile(xml, "<?xml version=\"1.0\"?>\n<!-- nothing yet -->\n");
    EXPECT_EQ(qbRefactorConfigOpen(xml.c_str()), qbmsg::NotInList);
    EXPECT_EQ(qbRefactorConfigIsOpen(nullptr), 1);
    ASSERT_EQ(qbRefactorConfigAdd("x", "/h", "a"), 0);
    saveAndReopen();
    std::string text = readFile(xml);
    EXPECT_NE(text.find("<!DOCTYPE Compilers SYSTEM"), std::string::npos) << text;
    EXPECT_NE(text.find("<Compilers Version=\"10.0\">"), std::string::npos) << text;
    EXPECT_EQ(nameAt(0), "x");
}

TEST_F(ConfigCommands, AnotherRootIsRefusedAndNothingIsAdded) {
    writeFile(xml, "<Other/>\n");
    EXPECT_EQ(qbRefactorConfigOpen(xml.c_str()), qbmsg::NotInList);
    EXPECT_EQ(qbRefactorConfigAdd("x", "/h", "a"), qbmsg::SecondXmlRoot);
    EXPECT_EQ(qbRefactorConfigCount(), 0);
}

TEST_F(ConfigCommands, HeaderIsStoredRelativeToTheRoot) {
    ScopedEnv qbroot("QBROOT", "/opt/qb/");
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("inside", "/opt/qb/compilers/gcc.h", ""), 0);
    ASSERT_EQ(qbRefactorConfigAdd("beside", "/opt/other/gcc.h", ""), 0);
    ASSERT_EQ(qbRefactorConfigAdd("drive", "D:/vc/include/vc.h", ""), 0);
    ASSERT_EQ(qbRefactorConfigSave(xml.c_str()), 0);
    std::string text = readFile(xml);
    EXPECT_NE(text.find("Header=\"compilers/gcc.h\""), std::string::npos) << text;
    EXPECT_NE(text.find("Header=\"../other/gcc.h\""), std::string::npos) << text;
    EXPECT_NE(text.find("Header=\"D:/vc/include/vc.h\""), std::string::npos) << text;
    ASSERT_EQ(qbRefactorConfigOpen(xml.c_str()), 0);
    EXPECT_EQ(headerOf("inside"), "/opt/qb/compilers/gcc.h");
    EXPECT_EQ(headerOf("beside"), "/opt/other/gcc.h");
    EXPECT_EQ(headerOf("drive"), "D:/vc/include/vc.h");
    ScopedEnv unset("QBROOT", "");
    ASSERT_EQ(qbRefactorConfigOpen(xml.c_str()), 0);
    EXPECT_EQ(headerOf("inside"), "compilers/gcc.h");
}

TEST_F(ConfigCommands, CommandsServeOneTypeEach) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("c", "/h", "a"), 0);
    ASSERT_EQ(qbRefactorConfigAddJava("j", "/s", "x.jar"), 0);
    char buffer[64];
    EXPECT_EQ(qbRefactorConfigAddJava("c", "/s", ""), kWrongType);
    EXPECT_EQ(qbRefactorConfigAdd("j", "/h", ""), kWrongType);
    EXPECT_EQ(qbRefactorConfigGetHeader("j", buffer, sizeof buffer), kWrongType);
    EXPECT_EQ(qbRefactorConfigSetHeader("j", "/h"), kWrongType);
    EXPECT_EQ(qbRefactorConfigCountIncludes("j"), kWrongType);
    EXPECT_EQ(qbRefactorConfigCountJars("c"), kWrongType);
    EXPECT_EQ(qbRefactorConfigGetJavaSource("c", buffer, sizeof buffer), kWrongType);
    EXPECT_EQ(qbRefactorConfigAddJar("c", "y.jar", -1), kWrongType);
    EXPECT_EQ(qbRefactorConfigDeleteAllIncludes("j"), kWrongType);
    EXPECT_EQ(qbRefactorConfigGetHeader("none", buffer, sizeof buffer), kNoConfiguration);
    EXPECT_EQ(qbRefactorConfigDelete("none"), kNoConfiguration);
    EXPECT_EQ(qbRefactorConfigDelete("C"), kNoConfiguration) << "names compare exactly";
    EXPECT_EQ(qbRefactorConfigGetName(2, buffer, sizeof buffer), kNoConfiguration);
    EXPECT_EQ(qbRefactorConfigGetName(-1, buffer, sizeof buffer), kNoConfiguration);
    EXPECT_EQ(qbRefactorConfigSetName(5, "z"), kNoConfiguration);
    EXPECT_EQ(qbRefactorConfigCount(), 2);
}

TEST_F(ConfigCommands, ListEditsStayInMemory) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("c", "/h", "a;b"), 0);
    EXPECT_EQ(qbRefactorConfigAddInclude("c", "front", 0), 0);
    EXPECT_EQ(qbRefactorConfigAddInclude("c", "mid", 2), 0);
    EXPECT_EQ(qbRefactorConfigAddInclude("c", "end", -1), 0);
    EXPECT_EQ(qbRefactorConfigAddInclude("c", "far", 99), 0);
    EXPECT_EQ(qbRefactorConfigAddInclude("c", "", 0), 0);
    EXPECT_EQ(includesOf("c"), (std::vector<std::string>{"front", "a", "mid", "b", "end", "far"}));
    EXPECT_EQ(qbRefactorConfigDeleteInclude("c", "mid"), 0);
    EXPECT_EQ(qbRefactorConfigDeleteInclude("c", "mid"), kNotInList);
    EXPECT_EQ(qbRefactorConfigDeleteInclude("c", "A"), kNotInList);
    char buffer[8] = "x";
    EXPECT_EQ(qbRefactorConfigGetInclude("c", 42, buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
    ASSERT_EQ(qbRefactorConfigSetName(0, "renamed"), 0);
    ASSERT_EQ(qbRefactorConfigSetHeader("renamed", "/other.h"), 0);
    ASSERT_EQ(qbRefactorConfigDeleteAllIncludes("renamed"), 0);
    EXPECT_EQ(qbRefactorConfigCountIncludes("renamed"), 0);
    saveAndReopen();
    EXPECT_EQ(nameAt(0), "c");
    EXPECT_EQ(headerOf("c"), "/h");
    EXPECT_EQ(includesOf("c"), (std::vector<std::string>{"a", "b"}));
}

TEST_F(ConfigCommands, JarEditsMirrorIncludeEdits) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAddJava("j", "/s", "a.jar"), 0);
    EXPECT_EQ(qbRefactorConfigAddJar("j", "b.jar", 0), 0);
    EXPECT_EQ(jarsOf("j"), (std::vector<std::string>{"b.jar", "a.jar"}));
    EXPECT_EQ(qbRefactorConfigDeleteJar("j", "a.jar"), 0);
    EXPECT_EQ(qbRefactorConfigDeleteJar("j", "a.jar"), kNotInList);
    EXPECT_EQ(qbRefactorConfigDeleteAllJars("j"), 0);
    EXPECT_EQ(qbRefactorConfigCountJars("j"), 0);
}

TEST_F(ConfigCommands, DeleteRemovesTheConfigurationFromTheFile) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("a", "/a", "1"), 0);
    ASSERT_EQ(qbRefactorConfigAdd("b", "/b", "2"), 0);
    ASSERT_EQ(qbRefactorConfigAdd("c", "/c", "3"), 0);
    saveAndReopen();
    ASSERT_EQ(qbRefactorConfigDelete("b"), 0);
    EXPECT_EQ(nameAt(1), "c");
    saveAndReopen();
    ASSERT_EQ(qbRefactorConfigCount(), 2);
    EXPECT_EQ(nameAt(0), "a");
    EXPECT_EQ(nameAt(1), "c");
    EXPECT_EQ(occurrences(readFile(xml), "Name=\"b\""), 0u);
}

TEST_F(ConfigCommands, ShortBufferCutsTheText) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("abcdefgh", "/h", ""), 0);
    char buffer[4];
    ASSERT_EQ(qbRefactorConfigGetName(0, buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(qbRefactorConfigGetName(0, nullptr, 0), -3015);
}

TEST_F(ConfigCommands, OutOfMemoryKeepsTheDocumentWhole) {
    startEmpty();
    ASSERT_EQ(qbRefactorConfigAdd("keep", "/k", "k1"), 0);
    for (unsigned n = 1; n < 40; ++n) {
        quernbase::QBAllocator::failAllocationAfter(n);
        int rc = qbRefactorConfigAdd("x", "/x", "a;b;c");
        quernbase::QBAllocator::failAllocationAfter(0);
        ASSERT_TRUE(rc == 0 || rc == -8) << rc;
        if (rc == 0) break;
        EXPECT_EQ(qbRefactorConfigCount(), 1);
    }
    saveAndReopen();
    ASSERT_EQ(qbRefactorConfigCount(), 2);
    EXPECT_EQ(includesOf("x"), (std::vector<std::string>{"a", "b", "c"}));
    for (unsigned n = 1; n < 40; ++n) {
        quernbase::QBAllocator::failAllocationAfter(n);
        int rc = qbRefactorConfigOpen(xml.c_str());
        quernbase::QBAllocator::failAllocationAfter(0);
        ASSERT_TRUE(rc == 0 || rc == -8) << rc;
        if (rc == 0) break;
        EXPECT_LE(qbRefactorConfigCount(), 2);
    }
    EXPECT_EQ(qbRefactorConfigCount(), 2);
}

}  // namespace
