// Every command line that the README shows (the lines of its ```sh blocks) works as shown:
// each option of a qbrefactor line is one its command lists in --help, each such line without a
// synopsis bracket runs from the top of the checkout (FILE, DIR and NAME standing for files of
// examples/), and each of the repository's own scripts exists and knows the options shown.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "../host/support/ConfigTestSupport.h"
#include "support/CliRunner.h"

using configtest::ScratchDir;

namespace {

const std::string source = QB_SOURCE_DIR;

std::vector<std::string> words(const std::string& line) {
    std::istringstream in(line);
    std::vector<std::string> out;
    for (std::string w; in >> w;) out.push_back(w);
    return out;
}

// The lines of the README's sh blocks, each without its trailing comment.
std::vector<std::string> readmeCommandLines() {
    std::ifstream in(source + "/README.md");
    std::vector<std::string> lines;
    bool inside = false;
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("```", 0) == 0) {
            inside = !inside && line == "```sh";
            continue;
        }
        if (!inside) continue;
        size_t comment = line.find(" #");
        if (comment != std::string::npos) line.erase(comment);
        while (!line.empty() && line.back() == ' ') line.pop_back();
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

// The name under which a --help text lists an option word: -DNAME=1 is -D, -std=c99 is
// -std=, --config=x is --config.
std::string optionName(const std::string& word) {
    if (word.rfind("-std=", 0) == 0) return "-std=";
    if (word.size() > 2 && word[1] != '-' && std::string("DUI").find(word[1]) != std::string::npos)
        return word.substr(0, 2);
    return word.substr(0, word.find('='));
}

std::vector<std::string> optionWords(const std::string& line) {
    std::vector<std::string> out;
    for (std::string w : words(std::regex_replace(line, std::regex("[\\[\\]|]"), " ")))
        if (w.size() > 1 && w[0] == '-') out.push_back(w);
    return out;
}

bool hasPlaceholder(const std::string& line) {
    return line.find('[') != std::string::npos;
}

// FILE, DIR and NAME stand for parts of the example project.
std::string withExamples(const std::string& line) {
    std::string out = std::regex_replace(line, std::regex("\\bFILE(\\.\\.\\.)?"),
                                         "examples/src/geometry.c");
    out = std::regex_replace(out, std::regex("\\bDIR\\b"), "examples/include");
    return std::regex_replace(out, std::regex("\\bNAME\\b"), "gcc");
}

bool isExecutable(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

std::string firstLine(const std::string& path) {
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    return line;
}

}  // namespace

TEST(Readme, ShowsCommandLines) {
    std::vector<std::string> lines = readmeCommandLines();
    int qbrefactor = 0;
    for (const std::string& line : lines) qbrefactor += line.rfind("qbrefactor ", 0) == 0;
    EXPECT_GE(qbrefactor, 20) << "the README's sh blocks were not found";
}

TEST(Readme, EveryOptionShownIsOneTheCommandKnows) {
    std::map<std::string, std::string> helps;
    for (const std::string& line : readmeCommandLines()) {
        std::vector<std::string> w = words(line);
        if (w[0] != "qbrefactor" || w.size() < 2 || w[1][0] == '-') continue;
        std::string& help = helps[w[1]];
        if (help.empty()) help = runCli(w[1] + " --help").output;
        for (const std::string& option : optionWords(line))
            EXPECT_NE(help.find(optionName(option)), std::string::npos)
                << "README: " << line << "\n'" << optionName(option) << "' is not in:\n" << help;
    }
}

TEST(Readme, EveryQbrefactorLineRuns) {
    ScratchDir home;
    std::string environment = "XDG_CONFIG_HOME=" + home.path();
    int ran = 0;
    for (const std::string& line : readmeCommandLines()) {
        if (line.rfind("qbrefactor ", 0) != 0 || hasPlaceholder(line)) continue;
        std::string command = withExamples(line.substr(std::string("qbrefactor ").size()));
        Outcome o = runCli(command, environment, source);
        ++ran;
        EXPECT_TRUE(o.exitCode == 0 || o.exitCode == 1)
            << "README: " << line << "\nexit " << o.exitCode << "\n" << o.output;
        for (const char* refusal : {"unknown or incomplete option", "unknown command"})
            EXPECT_EQ(o.output.find(refusal), std::string::npos)
                << "README: " << line << "\n" << o.output;
    }
    EXPECT_GE(ran, 20);
}

TEST(Readme, EveryScriptShownExistsWithItsOptions) {
    for (const std::string& line : readmeCommandLines()) {
        std::vector<std::string> w = words(line);
        if (w[0].rfind("scripts/", 0) != 0 && w[0].rfind("tests/", 0) != 0 &&
            w[0].rfind("bench/", 0) != 0)
            continue;
        std::string path = source + "/" + w[0];
        ASSERT_TRUE(isExecutable(path)) << "README: " << line;
        std::vector<std::string> options = optionWords(line);
        if (options.empty()) continue;
        ASSERT_NE(firstLine(path).find("python3"), std::string::npos)
            << "README: " << line << "\nonly Python scripts here tell their options";
        std::string help = shellOutput("'" + path + "' --help 2>&1");
        for (const std::string& option : options)
            EXPECT_NE(help.find(optionName(option)), std::string::npos)
                << "README: " << line << "\n" << help;
    }
}
