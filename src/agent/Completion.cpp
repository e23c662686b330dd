#include "Completion.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <system_error>

#include "CommandLine.h"
#include "Diagnostics.h"
#include "Failure.h"
#include "Operation.h"
#include "Rdn.h"
#include "SchemaClass.h"

namespace TevAgent {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> filesAt(const std::string& begun) {
    const std::size_t slash = begun.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : begun.substr(0, slash + 1);
    const bool isHiddenWanted = begun.substr(folder.size()).substr(0, 1) == ".";
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        std::error_code ignored;
        if (isHiddenWanted || name.front() != '.') {
            files.push_back(folder + name + (entry->is_directory(ignored) ? "/" : ""));
        }
    }
    return files;
}

std::vector<std::string> classesOf(const std::string& dn) {
    std::vector<std::string> classes;
    if (const auto steps = Rdn::sequence(dn)) {
        for (const Rdn& step : *steps) {
            classes.emplace_back(step.className);
        }
    }
    return classes;
}

void append(std::vector<std::string>& list, const std::vector<std::string>& more) {
    list.insert(list.end(), more.begin(), more.end());
}

bool beginsWith(const std::string& word, const std::string& begun) {
    return word.compare(0, begun.size(), begun) == 0;
}

template <class Predicate>
void eraseIf(std::vector<std::string>& words, Predicate&& isUnwanted) {
    words.erase(std::remove_if(words.begin(), words.end(), isUnwanted), words.end());
}

}  // namespace

/// A line's words behind its command.
struct Completion::Arguments {
    Arguments(const std::vector<std::string>& before, const std::map<std::string, bool>& options) {
        for (std::size_t i = 1; i < before.size(); ++i) {
            const auto option = options.find(before[i]);
            if (!awaiting.empty()) {
                awaiting.clear();
            } else if (!areOptionsOver && before[i] == "--") {
                areOptionsOver = true;
            } else if (!areOptionsOver && option != options.end()) {
                flags.push_back(before[i]);
                awaiting = option->second ? before[i] : "";
            } else if (areOptionsOver || !beginsWith(before[i], "-")) {
                positional.push_back(before[i]);
            }
        }
    }

    bool has(const std::string& flag) const { return std::find(flags.begin(), flags.end(), flag) != flags.end(); }

    std::vector<std::string> positional;
    std::vector<std::string> flags;  ///< options that are there
    std::string awaiting;            ///< the one whose value comes next, if any
    bool areOptionsOver = false;
};

std::vector<std::string> Completion::candidates(const std::vector<std::string>& before,
                                                const std::string& begun) const {
    std::vector<std::string> found = all(before, begun);
    eraseIf(found, [&](const std::string& word) { return !beginsWith(word, begun); });
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::size_t Completion::beginOfLevel(const std::string& word) {
    return word.find('=') == std::string::npos ? 0 : word.rfind(',') + 1;
}

bool Completion::isWhole(const std::string& candidate) {
    const bool isDn = candidate.find('=') != std::string::npos;
    const bool isFolder = !candidate.empty() && candidate.back() == '/';
    return isDn ? SchemaClass::isClassOf(candidate) : !isFolder;
}

std::vector<std::string> Completion::all(const std::vector<std::string>& before, const std::string& begun) const {
    if (before.empty() || (before.front() == "help" && before.size() == 1)) {
        return CommandLine::lineCommands();
    }
    const std::map<std::string, bool> options = CommandLine::lineOptions(before.front());
    const Arguments arguments(before, options);
    const bool isValue = !arguments.awaiting.empty();
    std::vector<std::string> words;
    if (!isValue && !arguments.areOptionsOver && beginsWith(begun, "-")) {
        std::transform(options.begin(), options.end(), std::back_inserter(words),
                       [](const auto& option) { return option.first; });
        return words;
    }
    words = isValue ? valuesOf(arguments.awaiting, begun) : positional(before.front(), arguments, begun);
    if (!arguments.areOptionsOver) {
        eraseIf(words, [](const std::string& word) { return beginsWith(word, "-"); });  // it would be an option
    }
    return words;
}

std::vector<std::string> Completion::valuesOf(const std::string& option, const std::string& begun) {
    if (option == "--output") {
        return {"json", "table"};
    }
    return option == "--password-file" ? filesAt(begun) : std::vector<std::string>();
}

std::vector<std::string> Completion::positional(const std::string& command, const Arguments& arguments,
                                                const std::string& begun) const {
    const std::vector<std::string>& there = arguments.positional;
    if (command == "get" && !there.empty()) {
        std::vector<std::string> names = attributesOf(there.front());
        eraseIf(names, [&](const std::string& name) {
            return std::find(there.begin() + 1, there.end(), name) != there.end();
        });
        return names;
    }
    if (!there.empty()) {
        return {};
    }
    if (command == "check") {
        return filesAt(begun);
    }
    const bool isTarget = command == "get" || (command == "export" && !arguments.has("--all"));
    return isTarget ? targets(begun) : std::vector<std::string>();
}

std::vector<std::string> Completion::targets(const std::string& begun) const {
    std::vector<std::string> found = objectsAt(begun);
    if (begun.find('=') == std::string::npos) {
        try {
            append(found, keys(agent.schemaParent(), SchemaClass::name));
        } catch (const Failure&) {
            // There is no place where schemas could stand.
        }
        return found;
    }
    eraseIf(found, [&](const std::string& dn) { return !beginsWith(dn, begun); });
    if (found == std::vector<std::string>{begun}) {
        const std::vector<std::string> children = objectsAt(begun + ",");
        return children.empty() ? found : children;
    }
    return found;
}

std::vector<std::string> Completion::objectsAt(const std::string& begun) const {
    const std::size_t level = beginOfLevel(begun);
    const std::string parentDn = begun.substr(0, level == 0 ? 0 : level - 1);
    std::vector<std::string> rdns = agent.objects().children(parentDn);
    const std::vector<std::string> parents = classesOf(parentDn);
    for (const Route& route : agent.routes()) {
        if (route.parent == parents) {
            for (const std::string& key : keys(parentDn, route.className)) {
                rdns.push_back(route.className + "=" + key);
            }
        }
    }
    std::vector<std::string> found;
    std::transform(rdns.begin(), rdns.end(), std::back_inserter(found),
                   [&](const std::string& rdn) { return begun.substr(0, level) + rdn; });
    return found;
}

std::vector<std::string> Completion::keys(const std::string& parentDn, const std::string& className) const {
    Diagnostics::Capture unsaid;
    std::vector<std::string> found;
    try {
        Operation operation(agent);
        found = operation.reader().keys(parentDn, className);
        operation.commit();
    } catch (const std::exception&) {
        // Nobody asked for a result.
    }
    unsaid.takeOr("");
    return found;
}

std::vector<std::string> Completion::attributesOf(const std::string& target) const {
    const bool isSchema = target.find('=') == std::string::npos || SchemaClass::isClassOf(target);
    return isSchema ? SchemaClass::attributes() : agent.objects().attributeNames(target);
}

}  // namespace TevAgent
