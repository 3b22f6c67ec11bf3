#include "CompileCommands.h"

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

namespace qbcli {
namespace {

namespace fs = std::filesystem;

std::string absoluteFrom(const std::string& directory, const std::string& path) {
    fs::path p(path);
    if (p.is_relative()) p = fs::path(directory) / p;
    return p.lexically_normal().string();
}

std::string canonicalOrSame(const std::string& path) {
    std::error_code ignored;
    fs::path canonical = fs::weakly_canonical(path, ignored);
    return canonical.empty() ? path : canonical.string();
}

// An option with its value glued on ("-Idir") or in the next argument ("-I dir").
bool takeValue(const std::vector<std::string>& args, size_t& i, const std::string& option,
               std::string& value) {
    const std::string& arg = args[i];
    if (arg.compare(0, option.size(), option) != 0) return false;
    if (arg.size() > option.size()) {
        value = arg.substr(option.size());
        if (option.compare(0, 2, "--") != 0) return true;
        if (value[0] != '=') return false;  // --include-directory is another option
        value.erase(0, 1);
        return true;
    }
    if (i + 1 >= args.size()) return false;
    value = args[++i];
    return true;
}

bool readDatabase(const std::string& fileName, nlohmann::json& database, std::string& error) {
    std::ifstream in(fileName);
    if (!in) {
        error = "cannot read " + fileName;
        return false;
    }
    database = nlohmann::json::parse(in, nullptr, false);
    if (database.is_discarded() || !database.is_array()) {
        error = fileName + " is not a compilation database (a JSON array of entries)";
        return false;
    }
    return true;
}

bool entryArguments(const nlohmann::json& entry, std::vector<std::string>& arguments) {
    auto list = entry.find("arguments");
    if (list != entry.end() && list->is_array()) {
        for (const auto& a : *list) {
            if (!a.is_string()) return false;
            arguments.push_back(a.get<std::string>());
        }
        return true;
    }
    auto command = entry.find("command");
    if (command == entry.end() || !command->is_string()) return false;
    arguments = splitCommandLine(command->get<std::string>());
    return true;
}

bool readEntry(const nlohmann::json& entry, CompileOptions& options) {
    if (!entry.is_object()) return false;
    auto directory = entry.find("directory");
    auto file = entry.find("file");
    if (directory == entry.end() || !directory->is_string() || file == entry.end() ||
        !file->is_string())
        return false;
    std::vector<std::string> arguments;
    if (!entryArguments(entry, arguments)) return false;
    options = optionsFromArguments(arguments, directory->get<std::string>(),
                                   file->get<std::string>());
    return true;
}

// -x names a language; the header forms are the same language.
std::string languageNamed(const std::string& name) {
    if (name == "c" || name == "c-header" || name == "cpp-output") return "c";
    if (name == "c++" || name == "c++-header" || name == "c++-cpp-output") return "c++";
    return std::string();
}

const char* const kValueOptions[] = {"-I", "-iquote", "-isystem", "-idirafter", "-include",
                                     "-D", "-U", "-x", "-o", "-MF", "-MT", "-MQ", "-imacros"};

}  // namespace

void CompileOptions::append(const CompileOptions& later) {
    if (!later.language.empty()) language = later.language;
    if (!later.standard.empty()) standard = later.standard;
    auto add = [](std::vector<std::string>& to, const std::vector<std::string>& from) {
        to.insert(to.end(), from.begin(), from.end());
    };
    add(userIncludes, later.userIncludes);
    add(systemIncludes, later.systemIncludes);
    add(afterIncludes, later.afterIncludes);
    add(macroOptions, later.macroOptions);
    add(forcedIncludes, later.forcedIncludes);
}

bool takesSeparateValue(const std::string& arg) {
    for (const char* option : kValueOptions)
        if (arg == option) return true;
    return false;
}

std::vector<std::string> splitCommandLine(const std::string& command) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    char quote = 0;
    for (size_t i = 0; i < command.size(); ++i) {
        char c = command[i];
        if (quote == '\'') {
            if (c == '\'') quote = 0; else word += c;
        } else if (c == '\\' && i + 1 < command.size() &&
                   (!quote || command[i + 1] == '"' || command[i + 1] == '\\')) {
            word += command[++i];
            inWord = true;
        } else if (quote == '"') {
            if (c == '"') quote = 0; else word += c;
        } else if (c == '"' || c == '\'') {
            quote = c;
            inWord = true;
        } else if (c == ' ' || c == '\t' || c == '\n') {
            if (inWord) words.push_back(word);
            word.clear();
            inWord = false;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (inWord) words.push_back(word);
    return words;
}

CompileOptions optionsFromArguments(const std::vector<std::string>& args,
                                    const std::string& directory, const std::string& file) {
    CompileOptions options;
    options.directory = directory;
    options.file = absoluteFrom(directory, file);
    std::string value;
    for (size_t i = 1; i < args.size(); ++i) {
        if (takeValue(args, i, "-isystem", value))
            options.systemIncludes.push_back(absoluteFrom(directory, value));
        else if (takeValue(args, i, "-idirafter", value))
            options.afterIncludes.push_back(absoluteFrom(directory, value));
        else if (args[i].compare(0, 5, "-std=") == 0 || args[i] == "-ansi")
            options.standard = args[i];
        else if (takeValue(args, i, "-x", value))
            options.language = languageNamed(value);
        else if (takeValue(args, i, "-iquote", value) || takeValue(args, i, "-I", value))
            options.userIncludes.push_back(absoluteFrom(directory, value));
        else if (takeValue(args, i, "--include", value) || takeValue(args, i, "-include", value))
            options.forcedIncludes.push_back(absoluteFrom(directory, value));
        else if (takeValue(args, i, "-D", value))
            options.macroOptions.push_back("-D" + value);
        else if (takeValue(args, i, "-U", value))
            options.macroOptions.push_back("-U" + value);
    }
    return options;
}

bool readCompileCommands(const std::string& path, std::vector<CompileOptions>& entries,
                         std::string& error) {
    entries.clear();
    std::error_code ignored;
    std::string fileName = fs::is_directory(path, ignored)
                               ? (fs::path(path) / "compile_commands.json").string()
                               : path;
    nlohmann::json database;
    if (!readDatabase(fileName, database, error)) return false;
    for (size_t i = 0; i < database.size(); ++i) {
        CompileOptions options;
        if (!readEntry(database[i], options)) {
            error = fileName + ": entry " + std::to_string(i + 1) +
                    " lacks a directory, a file or its arguments";
            return false;
        }
        entries.push_back(options);
    }
    return true;
}

const CompileOptions* findCompileOptions(const std::vector<CompileOptions>& entries,
                                         const std::string& fileName) {
    std::error_code ignored;
    std::string wanted = absoluteFrom(fs::current_path(ignored).string(), fileName);
    for (const CompileOptions& entry : entries)
        if (entry.file == wanted) return &entry;
    std::string real = canonicalOrSame(wanted);
    for (const CompileOptions& entry : entries)
        if (canonicalOrSame(entry.file) == real) return &entry;
    return nullptr;
}

}  // namespace qbcli
