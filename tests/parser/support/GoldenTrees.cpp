#include "GoldenTrees.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPParse.h"
#include "CPWhitespaceFilter.h"
#include "MessageLines.h"

using quernbase::QBString;

ParsedSource parseSource(const std::string& source) {
    ParsedSource result;
    BPSourceHandle handle = BPSourceHandle::makeTextSource(QBString(source.c_str()), 1, 0);
    CPLexer* lexer = new CPLexer(handle, 0);
    lexer->addRef();
    CPWhitespaceFilter* filter = new CPWhitespaceFilter(lexer);
    filter->addRef();
    if (CPParseTree* unit = cpParseCompilationUnit(*filter)) {
        unit->addRef();
        result.parsed = true;
        QBString out("");
        unit->getText(out);
        result.text = out.get();
        out.makeEmpty();
        unit->printToString(out, 0, false);
        result.tree = out.get();
        TBPErrorLog<CPParseNodeType> log;
        unit->collectErrors(log);
        result.errors = messageLines(log);
        unit->release();
    }
    filter->release();
    lexer->release();
    return result;
}

namespace {

const char kCaseMark[] = "=== ";

std::string goldenPath(const char* family) {
    return std::string(QB_SOURCE_DIR) + "/tests/parser/golden/" + family + ".golden";
}

bool updating() {
    const char* flag = std::getenv("QB_UPDATE_GOLDEN");
    return flag && std::string(flag) == "1";
}

// The block of one case as the golden file holds it.
std::string render(const GoldenCase& c, const ParsedSource& parsed) {
    std::string out = kCaseMark + std::string(c.name) + "\n# " + c.note + "\n--- source\n" + c.source;
    if (c.source.empty() || c.source.back() != '\n') out += "\n";
    out += "--- messages\n" + parsed.errors;
    if (!parsed.errors.empty() && parsed.errors.back() != '\n') out += "\n";
    return out + "--- tree\n" + parsed.tree;
}

// Case name to block; a block runs from its mark to the next one.
std::map<std::string, std::string> readGolden(const char* family) {
    std::map<std::string, std::string> blocks;
    std::ifstream in(goldenPath(family), std::ios::binary);
    std::stringstream whole;
    whole << in.rdbuf();
    std::string text = whole.str(), mark = std::string("\n") + kCaseMark;
    size_t at = text.compare(0, sizeof kCaseMark - 1, kCaseMark) == 0 ? 0 : text.find(mark);
    while (at != std::string::npos) {
        size_t start = text[at] == '\n' ? at + 1 : at;
        size_t next = text.find(mark, start);
        std::string block = text.substr(start, next == std::string::npos ? std::string::npos : next + 1 - start);
        size_t nameEnd = block.find('\n');
        blocks[block.substr(sizeof kCaseMark - 1, nameEnd - (sizeof kCaseMark - 1))] = block;
        at = next;
    }
    return blocks;
}

void checkCase(const GoldenCase& c, const ParsedSource& parsed) {
    SCOPED_TRACE(c.name);
    ASSERT_TRUE(parsed.parsed);
    EXPECT_EQ(parsed.text, c.source) << "the tree must give the input back byte for byte";
    if (c.hasErrors) {
        EXPECT_NE(parsed.errors, "") << "a faulty input must be reported";
    } else {
        EXPECT_EQ(parsed.errors, "");
        EXPECT_FALSE(holds(parsed.tree, "***INVALID***")) << parsed.tree;
    }
    for (const std::string& piece : c.mustShow) EXPECT_TRUE(holds(parsed.tree, piece)) << piece << "\n" << parsed.tree;
    for (const std::string& piece : c.mustLack) EXPECT_FALSE(holds(parsed.tree, piece)) << piece << "\n" << parsed.tree;
}

}  // namespace

void checkFamily(const char* family, const std::vector<GoldenCase>& cases) {
    std::string all;
    std::map<std::string, std::string> golden = updating() ? std::map<std::string, std::string>() : readGolden(family);
    for (const GoldenCase& c : cases) {
        ParsedSource parsed = parseSource(c.source);
        checkCase(c, parsed);
        std::string block = render(c, parsed);
        all += block;
        if (updating()) continue;
        auto found = golden.find(c.name);
        if (found == golden.end()) {
            ADD_FAILURE() << "no golden for " << family << "/" << c.name << "; run with QB_UPDATE_GOLDEN=1";
            continue;
        }
        EXPECT_EQ(found->second, block) << family << "/" << c.name;
    }
    if (updating()) {
        std::ofstream out(goldenPath(family), std::ios::binary | std::ios::trunc);
        out << all;
        EXPECT_TRUE(out.good()) << "cannot write " << goldenPath(family);
    } else {
        EXPECT_EQ(golden.size(), cases.size()) << "the golden of " << family << " has stale cases";
    }
}
