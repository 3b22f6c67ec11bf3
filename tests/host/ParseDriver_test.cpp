// A multi-file project through the parse and preprocess commands: includes of every kind, the
// configuration header, the host's locate callback, errors per file, cancelling, and #if.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <map>
#include <string>

#include "BPSourceCache.h"
#include "CPParser.h"
#include "QBRefactorParseDriver.h"
#include "QBRefactorTransaction.h"
#include "qbapi.h"
#include "support/ModuleHost.h"

using namespace testhost;
using quernbase::QBString;

namespace {

const int CANCELLED = -2038;
const int FILE_HAS_ERRORS = -7516;

struct Project {
    std::string dir = scratchDir();

    Project() {
        for (const char* sub : {"/src", "/user", "/sys", "/far"})
            mkdir((dir + sub).c_str(), 0755);
        writeFile(dir + "/src/main.c",
                  "#include \"local.h\"\n#include <sys.h>\n#include \"guarded.h\"\n"
                  "#include \"guarded.h\"\n#include \"once.h\"\n#include \"once.h\"\n"
                  "#include \"far.h\"\n#define HDR \"computed.h\"\n#include HDR\n"
                  "int total = LOCAL + SYS + GUARD + ONCE + FAR + COMPUTED + CONFIGURED;\n");
        writeFile(dir + "/src/local.h", "#define LOCAL 1\n");
        writeFile(dir + "/sys/sys.h", "#define SYS 2\n");
        writeFile(dir + "/src/guarded.h",
                  "/* c */\n#ifndef GUARDED_H\n#define GUARDED_H\n#define GUARD 3\nint g;\n#endif\n");
        writeFile(dir + "/user/once.h", "#pragma once\n#define ONCE 4\nint o;\n");
        writeFile(dir + "/far/far.h", "#define FAR 5\n");
        writeFile(dir + "/src/computed.h", "#define COMPUTED 6\n");
        writeFile(dir + "/config.h", "#define CONFIGURED 7\n");
    }

    int open(const std::string& file, const std::string& config = "") {
        int t = run("refactor_begin_transaction");
        std::string user = dir + "/user", system = dir + "/sys", cfg = config;
        run("refactor_add_file", {qbArgInt(t), qbArgString((dir + "/src/" + file).c_str()),
                                  qbArgString(user.c_str()), qbArgString(system.c_str()),
                                  qbArgString(""), qbArgString(cfg.c_str())});
        return t;
    }

    std::string preprocess(int t, int* rc = nullptr) {
        int wid = qbHostWindowCreate("");
        int status = run("refactor_c_preprocess", {qbArgInt(t), qbArgInt(wid), qbArgInt(0)});
        if (rc) *rc = status;
        std::string text = windowText(wid);
        qbHostWindowDestroy(wid);
        return text;
    }
};

// The host finds far.h in its own folder when asked.
std::string farFolder;

int locateFar(void*, int argc, const QBArgRecord* args) {
    if (argc < 4 || std::string(qbArgText(args[2]) ? qbArgText(args[2]) : "") != "far.h") return -1;
    qbVarSetString(int(args[3].value), (farFolder + "/far.h").c_str());
    return 0;
}

std::string errorsOf(int t, const std::string& file) {
    std::string out;
    int n = run("refactor_count_errors", {qbArgInt(t), qbArgString(file.c_str())});
    for (int i = 0; i < n; ++i) {
        int var = qbHostVarNew();
        run("refactor_get_error", {qbArgInt(t), qbArgString(file.c_str()), qbArgInt(i), qbArgVar(var)});
        out += std::string(qbVarGetString(var)) + "\n";
        qbVarFreeTemp(var);
    }
    return out;
}

}  // namespace

TEST(ParseDriver, PreprocessFollowsEveryKindOfInclude) {
    loadModule();
    Project p;
    farFolder = p.dir + "/far";
    qbHostRegisterMacroFunction("refactor_locate_file", locateFar, nullptr);
    int t = p.open("main.c", p.dir + "/config.h");
    int rc = 0;
    std::string text = p.preprocess(t, &rc);
    qbHostUnregisterMacroFunction("refactor_locate_file");
    EXPECT_EQ(rc, 0);
    std::string rule(70, '/');
    EXPECT_EQ(text, rule + "\n// " + p.dir + "/src/main.c\n" + rule +
                        "\nint g;\nint o;\nint total=1+2+3+4+5+6+7;\n");
    EXPECT_EQ(run("refactor_count_error_files", {qbArgInt(t)}), 0);
    run("refactor_cancel_transaction", {qbArgInt(t)});
}

TEST(ParseDriver, MissingSelfAndTooDeepIncludesReachTheErrorStore) {
    loadModule();
    Project p;
    writeFile(p.dir + "/src/bad.c", "#include \"absent.h\"\n#include \"self.h\"\nint after;\n");
    writeFile(p.dir + "/src/self.h", "#include \"self.h\"\n");
    int t = p.open("bad.c");
    MacroRecorder shown("refactor_show_errors");
    // The only file failed: there is nothing to skip to, and the walk ends with its status.
    EXPECT_EQ(run("refactor_c_parse", {qbArgInt(t), qbArgInt(0)}), FILE_HAS_ERRORS);
    EXPECT_EQ(shown.calls.size(), 1u);
    std::string errors = errorsOf(t, p.dir + "/src/bad.c");
    EXPECT_NE(errors.find("bad.c:1:10: error: Cannot find include file 'absent.h'"),
              std::string::npos) << errors;
    EXPECT_NE(errors.find("self.h:1:10: error: includes nested too deeply"), std::string::npos)
        << errors;
    run("refactor_cancel_transaction", {qbArgInt(t)});
}

TEST(ParseDriver, ASyntaxErrorIsReportedWithItsPlace) {
    loadModule();
    Project p;
    writeFile(p.dir + "/src/syntax.c", "int a[;\n");
    int t = p.open("syntax.c");
    MacroRecorder shown("refactor_show_errors");
    EXPECT_EQ(run("refactor_c_parse", {qbArgInt(t), qbArgInt(0)}), FILE_HAS_ERRORS);
    std::string errors = errorsOf(t, p.dir + "/src/syntax.c");
    EXPECT_NE(errors.find("syntax.c:1:"), std::string::npos) << errors;
    EXPECT_NE(errors.find(": error: "), std::string::npos) << errors;
    run("refactor_cancel_transaction", {qbArgInt(t)});
}

TEST(ParseDriver, ACancellingProgressCallbackStopsBothCommands) {
    loadModule();
    Project p;
    MacroRecorder progress("refactor_progress", -1);
    int t = p.open("main.c");
    EXPECT_EQ(run("refactor_c_parse", {qbArgInt(t), qbArgInt(0)}), CANCELLED);
    EXPECT_EQ(progress.calls.size(), 1u) << "nothing is asked after the cancel";
    run("refactor_cancel_transaction", {qbArgInt(t)});

    t = p.open("main.c");
    int rc = 0;
    EXPECT_EQ(p.preprocess(t, &rc), "");
    EXPECT_EQ(rc, CANCELLED);
    run("refactor_cancel_transaction", {qbArgInt(t)});
}

TEST(ParseDriver, ConditionsEvaluate) {
    loadModule();
    Project p;
    writeFile(p.dir + "/src/cond.c",
              "#define TWO 2\n"
              "#if TWO * 3 + 1 == 7 && (1 << 4) == 16 && 7 / 2 == 3\nint arithmetic;\n#endif\n"
              "#if defined(TWO) && defined TWO && !defined(THREE)\nint defined_ok;\n#endif\n"
              "#if -1 < 0u\nint no_unsigned;\n#endif\n"
              "#if 0x10 == 16 && 010 == 8 && 10L == 10 && 'A' == 65\nint literals;\n#endif\n"
              "#if UNKNOWN\nint never;\n#elif 1 ? 2 : (1 / 0)\nint elif_taken;\n#else\nint no;\n#endif\n"
              "#if 1 || (1 / 0)\nint still_true;\n#endif\n");
    int t = p.open("cond.c");
    MacroRecorder shown("refactor_show_errors");
    int rc = 0;
    std::string text = p.preprocess(t, &rc);
    for (const char* name : {"arithmetic", "defined_ok", "no_unsigned", "literals", "elif_taken",
                             "still_true"})
        EXPECT_NE(text.find(std::string("int ") + name + ";"), std::string::npos) << name << text;
    EXPECT_EQ(text.find("never"), std::string::npos) << text;
    EXPECT_EQ(text.find("int no;"), std::string::npos) << text;
    std::string errors = errorsOf(t, p.dir + "/src/cond.c");
    EXPECT_NE(errors.find("cond.c:21:4: error: "), std::string::npos)
        << "nothing short-circuits: " << errors;
    EXPECT_EQ(errors.find("cond.c:16:"), std::string::npos) << "1 ? 2 : (1/0) divides nothing";
    run("refactor_cancel_transaction", {qbArgInt(t)});
}

// ---- Inside the engine: each header is read from disk once per transaction ------------------

namespace {

std::map<std::string, int> reads;

int countingReader(const QBString& name, QBString& out) {
    ++reads[name.get()];
    return qbReadFileToString(name, out, 0, 0, 2);
}

}  // namespace

TEST(ParseDriver, EachHeaderIsReadOncePerTransaction) {
    Project p;
    writeFile(p.dir + "/src/second.c", "#include \"guarded.h\"\n#include <sys.h>\n#include \"once.h\"\n");
    reads.clear();
    BPSourceHandle::ReadFileFunction previous = BPSourceHandle::setReadFileFunction(countingReader);
    int handle = beginTransaction();
    QBRefactorTransaction* t = findTransaction(handle);
    ASSERT_NE(t, nullptr);
    for (const char* file : {"main.c", "second.c"})
        ASSERT_EQ(t->addFile(QBString((p.dir + "/src/" + file).c_str()),
                             QBString((p.dir + "/user;" + p.dir + "/far").c_str()),
                             QBString((p.dir + "/sys").c_str()),
                             QBString(""), QBString((p.dir + "/config.h").c_str()), -1),
                  0);
    for (unsigned i = 0; i < t->parsers.count(); ++i) {
        EXPECT_EQ(parseFile(t, t->parsers[i], false), 0) << i;
        t->releaseParser(int(i));
    }
    BPSourceHandle::setReadFileFunction(previous);
    cancelTransaction(handle);
    EXPECT_EQ(reads[p.dir + "/src/guarded.h"], 1);
    EXPECT_EQ(reads[p.dir + "/sys/sys.h"], 1);
    EXPECT_EQ(reads[p.dir + "/user/once.h"], 1);
    EXPECT_EQ(reads[p.dir + "/config.h"], 1);
    EXPECT_EQ(reads[p.dir + "/src/main.c"], 1);
}

TEST(ParseDriver, TheParserWithoutAFileOrATree) {
    CPParser parser;
    EXPECT_EQ(parser.parse(QBString("/nonexistent/x.c")), -2);
    EXPECT_EQ(parser.getRoot(), nullptr);
    EXPECT_EQ(parser.analyzeFirstPass(), -8024);
    EXPECT_EQ(parser.analyzeSecondPass(), -8024);
    EXPECT_EQ(parser.reportMessage("quiet", 0), 0) << "no callback set";
    parser.collectAllErrors();
    parser.collectAllErrors();
    EXPECT_EQ(parser.getErrorCount(), 1) << "collected afresh, not twice";
}
