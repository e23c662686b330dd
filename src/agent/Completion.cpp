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

/// A line's words behind its command.
struct Arguments {
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
            } else if (areOptionsOver || before[i].substr(0, 1) != "-") {
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

}  // namespace

std::vector<std::string> Completion::candidates(const std::vector<std::string>& before,
                                                const std::string& begun) const {
    std::vector<std::string> found = all(before, begun);
    const auto isOther = [&](const std::string& word) { return word.compare(0, begun.size(), begun) != 0; };
    found.erase(std::remove_if(found.begin(), found.end(), isOther), found.end());
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
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
    const std::string& command = before.front();
    const std::map<std::string, bool> options = CommandLine::lineOptions(command);
    const Arguments arguments(before, options);
    if (arguments.awaiting == "--output") {
        return {"json", "table"};
    }
    if (arguments.awaiting == "--password-file") {
        return filesAt(begun);
    }
    if (!arguments.awaiting.empty()) {
        return {};
    }
    if (!arguments.areOptionsOver && begun.substr(0, 1) == "-") {
        std::vector<std::string> names;
        std::transform(options.begin(), options.end(), std::back_inserter(names),
                       [](const auto& option) { return option.first; });
        return names;
    }
    const std::vector<std::string>& positional = arguments.positional;
    if (command == "check" && positional.empty()) {
        return filesAt(begun);
    }
    if (command == "get" && !positional.empty()) {
        std::vector<std::string> names = attributesOf(positional.front());
        const auto isThere = [&](const std::string& name) {
            return std::find(positional.begin() + 1, positional.end(), name) != positional.end();
        };
        names.erase(std::remove_if(names.begin(), names.end(), isThere), names.end());
        return names;
    }
    const bool isTarget = command == "get" || (command == "export" && !arguments.has("--all"));
    return isTarget && positional.empty() ? targets(begun) : std::vector<std::string>();
}

std::vector<std::string> Completion::targets(const std::string& begun) const {
    const std::size_t comma = begun.rfind(',');
    const std::string parentDn = comma == std::string::npos ? "" : begun.substr(0, comma);
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
                   [&](const std::string& rdn) { return (parentDn.empty() ? "" : parentDn + ",") + rdn; });
    if (begun.find('=') == std::string::npos) {
        try {
            append(found, keys(agent.schemaParent(), SchemaClass::name));
        } catch (const Failure&) {
            // There is no place where schemas could stand.
        }
    }
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
