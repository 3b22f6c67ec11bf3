#include "ConfigCommand.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "CompilerDetect.h"
#include "qbapi_xml.h"

namespace qbcli {
namespace {

namespace fs = std::filesystem;

// The engine's plain configuration commands, by their exported names.
#define QB_CONFIG_TWINS(X)                                                  \
    X(open, int (*)(const char*), "qbRefactorConfigOpen")                   \
    X(save, int (*)(const char*), "qbRefactorConfigSave")                   \
    X(close, int (*)(), "qbRefactorConfigClose")                            \
    X(count, int (*)(), "qbRefactorConfigCount")                            \
    X(add, int (*)(const char*, const char*, const char*), "qbRefactorConfigAdd") \
    X(addJava, int (*)(const char*, const char*, const char*), "qbRefactorConfigAddJava") \
    X(remove, int (*)(const char*), "qbRefactorConfigDelete")               \
    X(getName, int (*)(int, char*, int), "qbRefactorConfigGetName")         \
    X(getType, int (*)(int, char*, int), "qbRefactorConfigGetType")         \
    X(getHeader, int (*)(const char*, char*, int), "qbRefactorConfigGetHeader") \
    X(getSource, int (*)(const char*, char*, int), "qbRefactorConfigGetJavaSource") \
    X(countIncludes, int (*)(const char*), "qbRefactorConfigCountIncludes") \
    X(getInclude, int (*)(const char*, int, char*, int), "qbRefactorConfigGetInclude") \
    X(countJars, int (*)(const char*), "qbRefactorConfigCountJars")         \
    X(getJar, int (*)(const char*, int, char*, int), "qbRefactorConfigGetJar")

template <class T> using Declared = T;  // lets a function pointer type stand before a name

struct Engine {
#define QB_FIELD(field, type, symbol) Declared<type> field = nullptr;
    QB_CONFIG_TWINS(QB_FIELD)
#undef QB_FIELD
};

bool loadEngine(Engine& engine, std::string& error) {
    std::string path = engineModulePath();
    void* module = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);  // stays loaded
    if (!module) {
        const char* why = dlerror();
        error = "cannot load the engine module " + path + ": " + (why ? why : "unknown error");
        return false;
    }
#define QB_RESOLVE(field, type, symbol)                                          \
    engine.field = reinterpret_cast<type>(dlsym(module, symbol));               \
    if (!engine.field) {                                                        \
        error = path + " lacks " symbol;                                        \
        return false;                                                           \
    }
    QB_CONFIG_TWINS(QB_RESOLVE)
#undef QB_RESOLVE
    return true;
}

std::string describe(int status) {
    switch (status) {
    case qbmsg::OutOfMemory: return "out of memory";
    case qbmsg::NoConfiguration: return "no such configuration";
    case qbmsg::NoConfigurationFile: return "no configuration file is open";
    case qbmsg::WrongConfigurationType: return "the configuration is of another type";
    default: return qbXMLCFGStatusText(status);
    }
}

std::string failure(const std::string& what, int status) {
    std::string text = what + ": " + describe(status) + " (status " + std::to_string(status) + ")";
    std::string detail = status == qbmsg::NotInList ? "it has no Compilers element"
                                                    : qbXMLCFGLastErrorDetail();
    return detail.empty() ? text : text + ": " + detail;
}

// A session on compilers.xml: opened through the engine, closed on every way out. A file that
// does not exist yet opens empty; one that can't be read or parsed stops the command before
// anything is written.
class ConfigSession {
public:
    ConfigSession(const std::string& xmlPath) : xmlPath(xmlPath) {}
    ~ConfigSession() {
        if (opened) engine.close();
    }
    bool open(std::string& error) {
        if (!loadEngine(engine, error)) return false;
        opened = true;
        int rc = engine.open(xmlPath.c_str());
        if (rc >= 0 || rc == qbmsg::FileNotFound) return true;
        error = failure("cannot use " + xmlPath, rc);
        return false;
    }
    bool save(std::string& error) {
        std::error_code ec;
        fs::create_directories(fs::path(xmlPath).parent_path(), ec);
        int rc = engine.save(xmlPath.c_str());
        if (rc >= 0) return true;
        error = failure("cannot write " + xmlPath, rc);
        return false;
    }
    std::string text(int (*get)(int, char*, int), int index) {
        char buffer[4096];
        return get(index, buffer, sizeof buffer) < 0 ? std::string() : buffer;
    }
    std::string text(int (*get)(const char*, char*, int), const std::string& name) {
        char buffer[4096];
        return get(name.c_str(), buffer, sizeof buffer) < 0 ? std::string() : buffer;
    }
    std::vector<std::string> list(int (*count)(const char*),
                                  int (*get)(const char*, int, char*, int),
                                  const std::string& name) {
        std::vector<std::string> items;
        char buffer[4096];
        for (int i = 0, n = count(name.c_str()); i < n; ++i)
            if (get(name.c_str(), i, buffer, sizeof buffer) >= 0) items.push_back(buffer);
        return items;
    }
    int indexOf(const std::string& name) {
        for (int i = 0, n = engine.count(); i < n; ++i)
            if (text(engine.getName, i) == name) return i;
        return -1;
    }

    Engine engine;

private:
    std::string xmlPath;
    bool opened = false;
};

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : ";") + part;
    return text;
}

std::string absolute(const std::string& path) {
    std::error_code ec;
    fs::path p = fs::absolute(path, ec);
    return ec ? path : p.lexically_normal().string();
}

int usage(std::ostream& err) {
    err << "usage: qbrefactor config [--file compilers.xml] list\n"
           "       qbrefactor config [--file compilers.xml] show NAME\n"
           "       qbrefactor config [--file compilers.xml] add NAME HEADER [INCLUDE_DIR...]\n"
           "       qbrefactor config [--file compilers.xml] add --java NAME SOURCE_ROOT [JAR...]\n"
           "       qbrefactor config [--file compilers.xml] delete NAME\n"
           "       qbrefactor config [--file compilers.xml] detect [COMPILER...]\n";
    return 2;
}

int fail(std::ostream& err, const std::string& message) {
    err << "qbrefactor: " << message << "\n";
    return 1;
}

int listCommand(ConfigSession& session, std::ostream& out) {
    Engine& e = session.engine;
    for (int i = 0, n = e.count(); i < n; ++i) {
        std::string name = session.text(e.getName, i), type = session.text(e.getType, i);
        std::string where = type == "java" ? session.text(e.getSource, name)
                                           : session.text(e.getHeader, name);
        out << name << "\t" << type << "\t" << where << "\n";
    }
    return 0;
}

int showCommand(ConfigSession& session, const std::string& name, std::ostream& out,
                std::ostream& err) {
    Engine& e = session.engine;
    int index = session.indexOf(name);
    if (index < 0) return fail(err, "no configuration named '" + name + "'");
    bool java = session.text(e.getType, index) == "java";
    out << "Name: " << name << "\nType: " << (java ? "java" : "cpp") << "\n";
    if (java) {
        out << "Root: " << session.text(e.getSource, name) << "\n";
        for (const std::string& jar : session.list(e.countJars, e.getJar, name))
            out << "JAR: " << jar << "\n";
        return 0;
    }
    out << "Header: " << session.text(e.getHeader, name) << "\n";
    for (const std::string& dir : session.list(e.countIncludes, e.getInclude, name))
        out << "Include: " << dir << "\n";
    return 0;
}

// Adding a name that exists replaces it, so that the new values reach the file.
int addCommand(ConfigSession& session, std::vector<std::string> args, std::ostream& out,
               std::ostream& err) {
    bool java = !args.empty() && args[0] == "--java";
    if (java) args.erase(args.begin());
    if (args.size() < 2) return usage(err);
    std::string name = args[0], value = absolute(args[1]);
    std::vector<std::string> items(args.begin() + 2, args.end());
    for (std::string& item : items) item = absolute(item);
    Engine& e = session.engine;
    bool replaced = e.remove(name.c_str()) == 0;
    int rc = java ? e.addJava(name.c_str(), value.c_str(), joined(items).c_str())
                  : e.add(name.c_str(), value.c_str(), joined(items).c_str());
    if (rc < 0) return fail(err, failure("cannot add '" + name + "'", rc));
    std::string error;
    if (!session.save(error)) return fail(err, error);
    out << (replaced ? "replaced " : "added ") << name << "\n";
    return 0;
}

int deleteCommand(ConfigSession& session, const std::string& name, std::ostream& out,
                  std::ostream& err) {
    int rc = session.engine.remove(name.c_str());
    if (rc == qbmsg::NoConfiguration) return fail(err, "no configuration named '" + name + "'");
    if (rc < 0) return fail(err, failure("cannot delete '" + name + "'", rc));
    std::string error;
    if (!session.save(error)) return fail(err, error);
    out << "deleted " << name << "\n";
    return 0;
}

bool installCompiler(ConfigSession& session, const CompilerInfo& info, const std::string& dir,
                     std::string& error) {
    std::string header = (fs::path(dir) / (info.configName + ".h")).string();
    std::error_code ec;
    fs::create_directories(dir, ec);
    if (!writeFileAtomically(header, compilerHeaderText(info), error)) return false;
    session.engine.remove(info.configName.c_str());
    int rc = session.engine.add(info.configName.c_str(), header.c_str(),
                                joined(info.includeDirs).c_str());
    if (rc >= 0) return true;
    error = failure("cannot add '" + info.configName + "'", rc);
    return false;
}

// With no compilers named, every usual one that is installed; a missing one is only noted.
int detectCommand(ConfigSession& session, const std::string& xmlPath,
                  std::vector<std::string> commands, std::ostream& out, std::ostream& err) {
    bool named = !commands.empty();
    if (!named) commands = defaultCompilerCommands();
    std::string dir = fs::path(xmlPath).parent_path().string(), error;
    int found = 0, failed = 0;
    for (const std::string& command : commands) {
        CompilerInfo info;
        if (!named && findOnPath(command).empty()) {
            err << "qbrefactor: " << command << " not found, skipped\n";
            continue;
        }
        if (!detectCompiler(command, info, error) || !installCompiler(session, info, dir, error)) {
            err << "qbrefactor: " << error << "\n";
            ++failed;
            continue;
        }
        ++found;
        out << info.configName << "\t" << info.path << "\t" << info.includeDirs.size()
            << " include directories\n";
    }
    if (found == 0 && failed == 0) return fail(err, "no compiler found");
    if (found > 0 && !session.save(error)) return fail(err, error);
    return failed ? 1 : 0;
}

int dispatch(ConfigSession& session, const std::string& xmlPath,
             const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    const std::string& verb = args[0];
    std::vector<std::string> rest(args.begin() + 1, args.end());
    if (verb == "list" && rest.empty()) return listCommand(session, out);
    if (verb == "show" && rest.size() == 1) return showCommand(session, rest[0], out, err);
    if (verb == "add") return addCommand(session, rest, out, err);
    if (verb == "delete" && rest.size() == 1) return deleteCommand(session, rest[0], out, err);
    if (verb == "detect") return detectCommand(session, xmlPath, rest, out, err);
    return usage(err);
}

std::string programDirectory() {
    std::error_code ec;
    fs::path self = fs::read_symlink("/proc/self/exe", ec);
    return ec ? std::string(".") : self.parent_path().string();
}

}  // namespace

bool writeFileAtomically(const std::string& path, const std::string& text, std::string& error) {
    std::string temporary = path + ".new";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << text;
        if (!out.flush()) {
            error = "cannot write " + temporary;
            return false;
        }
    }
    std::error_code ec;
    fs::rename(temporary, path, ec);
    if (!ec) return true;
    error = "cannot write " + path + ": " + ec.message();
    fs::remove(temporary, ec);
    return false;
}

std::string engineModulePath() {
    const char* given = std::getenv("QBREFACTOR_MODULE");
    if (given && *given) return given;
    fs::path dir = programDirectory();
    fs::path besideBin = dir.parent_path() / "lib" / "libqbrefactor.so";
    std::error_code ec;
    if (fs::exists(besideBin, ec)) return besideBin.string();
    return (dir / "libqbrefactor.so").string();
}

std::string configurationFilePath() {
    const char* root = std::getenv("QBROOT");
    if (root && *root) return (fs::path(root) / "compilers.xml").string();
    const char* xdg = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    fs::path base = xdg && *xdg ? fs::path(xdg) : fs::path(home && *home ? home : ".") / ".config";
    return (base / "qbrefactor" / "compilers.xml").string();
}

bool listConfigurationNames(const std::string& xmlPath, std::vector<std::string>& names,
                            std::string& error) {
    names.clear();
    ConfigSession session(xmlPath);
    if (!session.open(error)) return false;
    for (int i = 0, n = session.engine.count(); i < n; ++i)
        names.push_back(session.text(session.engine.getName, i));
    return true;
}

bool readConfiguration(const std::string& xmlPath, const std::string& name,
                       ConfigurationValues& values, std::string& error) {
    std::vector<ConfigurationValues> all;
    if (!readConfigurations(xmlPath, all, error)) return false;
    for (const ConfigurationValues& each : all) {
        if (each.name != name) continue;
        values = each;
        return true;
    }
    error = "no C or C++ configuration named '" + name + "' in " + xmlPath;
    return false;
}

bool readConfigurations(const std::string& xmlPath, std::vector<ConfigurationValues>& values,
                        std::string& error) {
    values.clear();
    ConfigSession session(xmlPath);
    if (!session.open(error)) return false;
    Engine& e = session.engine;
    for (int i = 0, n = e.count(); i < n; ++i) {
        if (session.text(e.getType, i) != "cpp") continue;
        ConfigurationValues each;
        each.name = session.text(e.getName, i);
        each.header = session.text(e.getHeader, each.name);
        each.includes = session.list(e.countIncludes, e.getInclude, each.name);
        values.push_back(each);
    }
    return true;
}

int detectConfigurations(const std::string& xmlPath, std::ostream& out, std::ostream& err) {
    ConfigSession session(xmlPath);
    std::string error;
    if (!session.open(error)) return fail(err, error);
    return detectCommand(session, xmlPath, {}, out, err);
}

int runConfigCommand(int argc, char** argv, std::ostream& out, std::ostream& err) {
    std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + (argc > 0 ? argc : 0));
    std::string xmlPath = configurationFilePath();
    if (args.size() >= 2 && args[0] == "--file") {
        xmlPath = absolute(args[1]);
        args.erase(args.begin(), args.begin() + 2);
    }
    if (args.empty()) return usage(err);
    ConfigSession session(xmlPath);
    std::string error;
    if (!session.open(error)) return fail(err, error);
    return dispatch(session, xmlPath, args, out, err);
}

}  // namespace qbcli

int runConfigCommand(int argc, char** argv) {
    return qbcli::runConfigCommand(argc, argv, std::cout, std::cerr);
}
