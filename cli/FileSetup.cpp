#include "FileSetup.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "ConfigCommand.h"

namespace qbcli {
namespace {

namespace fs = std::filesystem;

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : ";") + part;
    return text;
}

std::string readText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// The name a definition's text starts with.
std::string leadingName(const std::string& text) {
    size_t end = 0;
    while (end < text.size() && (std::isalnum((unsigned char)text[end]) || text[end] == '_' ||
                                 text[end] == '$'))
        ++end;
    return text.substr(0, end);
}

// One -D or -U as gcc reads it: NAME is 1 (and "A B" is A defined as "B 1"), NAME= is empty,
// the value ends at a line end, and a later definition replaces an earlier one, a predefined
// one too.
std::string directiveFor(const std::string& option) {
    std::string body = option.substr(2);
    std::string undef = "#undef " + leadingName(body) + "\n";
    if (option[1] == 'U') return undef;
    size_t equals = body.find('=');
    std::string name = body.substr(0, equals);
    std::string value = equals == std::string::npos ? "1" : body.substr(equals + 1);
    value = value.substr(0, value.find_first_of("\r\n"));
    return undef + "#define " + name + " " + value + "\n";
}

// Holds the lock of a configuration folder, so that two runs don't detect or write at once.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder) {
        std::error_code ignored;
        fs::create_directories(folder, ignored);
        fd = ::open((fs::path(folder) / ".qbrefactor.lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC,
                    0644);
        if (fd >= 0) flock(fd, LOCK_EX);
    }
    ~FolderLock() {
        if (fd >= 0) ::close(fd);
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int fd = -1;
};

// path exists and is at least as new as what it was made from.
bool isFresh(const std::string& path, const std::string& from) {
    std::error_code a, b;
    auto made = fs::last_write_time(path, a), source = fs::last_write_time(from, b);
    return !a && (b || made >= source);
}

std::string tagOf(const std::string& standard) {
    std::string tag = standard == "-ansi" ? "ansi" : standard.substr(5);
    std::replace(tag.begin(), tag.end(), '/', '_');
    return tag;
}

}  // namespace

std::string preludeText(const std::string& header, const std::vector<std::string>& macroOptions,
                        const std::vector<std::string>& forcedIncludes) {
    std::string text =
        "/* Written by qbrefactor: the configuration's header, then the command line's\n"
        "   definitions and forced includes, as the compiler reads them. */\n";
    if (!header.empty()) text += "#include \"" + header + "\"\n";
    for (const std::string& option : macroOptions) text += directiveFor(option);
    for (const std::string& file : forcedIncludes) text += "#include \"" + file + "\"\n";
    return text;
}

SourceLanguage languageOfOptions(const CompileOptions& options) {
    if (options.language == "c") return SourceLanguage::C;
    if (options.language == "c++") return SourceLanguage::Cxx;
    return languageOfStandard(options.standard, languageOfFile(options.file));
}

FileSetup::FileSetup(const FileSetupOptions& options, std::ostream& notes)
    : options(options), notes(notes) {}

FileSetup::~FileSetup() {
    std::error_code ignored;
    if (!privateFolder.empty()) fs::remove_all(privateFolder, ignored);
}

bool FileSetup::open(std::string& error) {
    if (!options.compileCommands.empty() &&
        !readCompileCommands(options.compileCommands, database, error))
        return false;
    if (options.noConfig) return true;
    if (!loadConfigurations(error)) return false;
    if (options.configName.empty() || find(options.configName)) return true;
    error = "no C or C++ configuration named '" + options.configName + "' in " + options.xmlPath +
            " (qbrefactor config list)";
    return false;
}

bool FileSetup::loadConfigurations(std::string& error) {
    std::vector<ConfigurationValues> values;
    if (!readConfigurations(options.xmlPath, values, error)) return false;
    configurations.clear();
    for (const ConfigurationValues& v : values) {
        Configuration c;
        c.name = v.name;
        c.header = v.header;
        c.includes = v.includes;
        std::string text = readText(v.header);
        std::vector<std::string> names = definedNames(text);
        bool cxx = std::find(names.begin(), names.end(), "__cplusplus") != names.end();
        c.language = text.empty() ? languageOfCompiler(v.name)
                                  : cxx ? SourceLanguage::Cxx : SourceLanguage::C;
        headerOrigin(text, c.compiler, c.modeOptions);
        configurations.push_back(c);
    }
    return true;
}

const FileSetup::Configuration* FileSetup::find(const std::string& name) const {
    for (const Configuration& c : configurations)
        if (c.name == name) return &c;
    return nullptr;
}

const FileSetup::Configuration* FileSetup::defaultFor(SourceLanguage language) {
    for (int attempt = 0; attempt < 2; ++attempt) {
        for (const std::string& name : defaultConfigurationNames(language))
            if (const Configuration* c = find(name)) return c;
        if (attempt == 0 && !detectOnFirstUse(language)) break;
    }
    noteOnce(std::string("no ") + (language == SourceLanguage::C ? "C" : "C++") +
             " configuration in " + options.xmlPath +
             ": nothing is predefined and there are no system folders (see qbrefactor config)");
    return nullptr;
}

// `config detect`, once per run and language, under the folder's lock; another run may have
// done it meanwhile, so the file is read again first.
bool FileSetup::detectOnFirstUse(SourceLanguage language) {
    if (!detected.insert(language).second) return false;
    FolderLock lock(fs::path(options.xmlPath).parent_path().string());
    std::string error;
    if (!loadConfigurations(error)) return false;
    for (const std::string& name : defaultConfigurationNames(language))
        if (find(name)) return true;
    notes << "qbrefactor: no " << (language == SourceLanguage::C ? "C" : "C++")
          << " configuration yet; detecting the installed compilers into " << options.xmlPath
          << " (qbrefactor config detect)\n";
    std::ostringstream out, err;
    if (detectConfigurations(options.xmlPath, out, err) != 0) notes << err.str();
    return loadConfigurations(error);
}

std::string FileSetup::headerFor(const Configuration& config, const std::string& standard) {
    if (standard.empty()) return config.header;
    if (languageOfStandard(standard, config.language) != config.language) {
        noteOnce(standard + " is not a standard of configuration " + config.name +
                 "'s language; its own mode is used");
        return config.header;
    }
    if (config.compiler.empty()) {
        noteOnce("configuration " + config.name + " doesn't name the compiler its header came " +
                 "from, so " + standard + " can't be asked for; its header is used as it is");
        return config.header;
    }
    const std::vector<std::string>& mode = config.modeOptions;
    if (std::find(mode.begin(), mode.end(), standard) != mode.end()) return config.header;
    std::string& header = modeHeaders[config.name + " " + standard];
    if (header.empty()) header = makeModeHeader(config, standard);
    if (header.empty()) header = config.header;  // a failed ask is kept too, so it is asked once
    return header;
}

// The configuration's compiler asked in another mode, kept beside the configuration's header.
std::string FileSetup::makeModeHeader(const Configuration& config, const std::string& standard) {
    std::string name = config.name + "@" + tagOf(standard) + ".h";
    std::string folder = fs::path(config.header).parent_path().string();
    std::string path = (fs::path(folder) / name).string();
    if (isFresh(path, config.header)) return path;
    FolderLock lock(folder);
    if (isFresh(path, config.header)) return path;
    CompilerInfo info;
    std::string error;
    if (!detectCompiler(config.compiler, info, error, standard)) {
        noteOnce("cannot ask " + config.compiler + " for " + standard + ": " + error +
                 "; configuration " + config.name + "'s header is used as it is");
        return std::string();
    }
    std::string text = compilerHeaderText(info);
    if (writeFileAtomically(path, text, error)) return path;
    if (!makePrivateFolder()) return std::string();
    path = privateFolder + "/" + name;
    return writeFileAtomically(path, text, error) ? path : std::string();
}

std::string FileSetup::preludeFor(const std::string& text) {
    std::string& path = preludes[text];
    if (!path.empty() || !makePrivateFolder()) return path;
    std::string candidate = privateFolder + "/prelude-" + std::to_string(preludes.size()) + ".h";
    std::string error;
    if (writeFileAtomically(candidate, text, error)) path = candidate;
    return path;
}

bool FileSetup::makePrivateFolder() {
    if (!privateFolder.empty()) return true;
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/qbrefactor-XXXXXX";
    if (!mkdtemp(&pattern[0])) return false;
    privateFolder = pattern;
    return true;
}

void FileSetup::noteOnce(const std::string& text) {
    if (noted.insert(text).second) notes << "qbrefactor: " << text << "\n";
}

bool FileSetup::argumentsFor(const std::string& file, AddFileArguments& out,
                             std::string& error) {
    std::error_code ignored;
    std::string cwd = fs::current_path(ignored).string();
    const CompileOptions* entry = findCompileOptions(database, file);
    CompileOptions merged = entry ? *entry : optionsFromArguments({}, cwd, file);
    if (!entry && !options.compileCommands.empty())
        noteOnce(file + " is not in " + options.compileCommands +
                 ": only the command line's options apply to it");
    std::vector<std::string> arguments{"qbrefactor"};
    arguments.insert(arguments.end(), options.compilerArguments.begin(),
                     options.compilerArguments.end());
    merged.append(optionsFromArguments(arguments, cwd, file));

    SourceLanguage language = languageOfOptions(merged);
    const Configuration* config = options.noConfig          ? nullptr
                                  : options.configName.empty() ? defaultFor(language)
                                                               : find(options.configName);
    std::vector<std::string> system = merged.systemIncludes;
    std::string header;
    if (config) {
        system.insert(system.end(), config->includes.begin(), config->includes.end());
        header = headerFor(*config, merged.standard);
    }
    system.insert(system.end(), merged.afterIncludes.begin(), merged.afterIncludes.end());
    out.userIncludePath = joined(merged.userIncludes);
    out.systemIncludePath = joined(system);
    out.defineOptions = config && config->language == SourceLanguage::C ? "-xc" : "";
    out.compilerConfig = header;
    out.configurationName = config ? config->name : std::string();
    out.configurationHeader = header;
    if (merged.macroOptions.empty() && merged.forcedIncludes.empty()) return true;
    out.compilerConfig = preludeFor(preludeText(header, merged.macroOptions, merged.forcedIncludes));
    if (!out.compilerConfig.empty()) return true;
    error = "cannot write the prelude header for " + file;
    return false;
}

}  // namespace qbcli
