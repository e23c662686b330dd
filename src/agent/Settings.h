#ifndef TEV_AGENT_SETTINGS_H
#define TEV_AGENT_SETTINGS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace TevAgent {

/// What the command line asks for. Texts are empty and lists have no entries where it says nothing.
struct Settings {
    /// The component looks its configuration up a second time under this name, so the file can have no other.
    static constexpr const char* configurationName = "libtev_schema_populator.cfg";

    enum class Command { List, Get, Export, Check, Shell, Help, Quit };
    enum class Output { Table, Json };

    std::string models;                   ///< folder of model files
    std::string objects;                  ///< file of managed objects
    std::string configuration;            ///< file
    bool isConfigurationNamed = false;    ///< by an option of its own, so that it has to be there
    std::vector<std::string> components;  ///< libraries, in the order given
    std::optional<int> logLevel;
    std::string logFile;
    Output output = Output::Table;
    std::vector<std::string> nodeOptions;  ///< all of the above but the output, as they were given, one argument each

    Command command = Command::List;
    std::string filter;                   ///< of list: a shell pattern for the schema ids
    std::string target;                   ///< of get and export: a DN or a schema id
    std::vector<std::string> attributes;  ///< of get, and of check
    std::vector<std::string> arguments;   ///< of a line of the shell: what the program is given for the same

    // Of check.
    std::string checkedLibrary;
    std::string checkedClass;
    std::string checkedParent;           ///< DN
    std::vector<std::string> onlyItems;  ///< ids, or groups of them
    bool isInProcess = false;
    unsigned int timeLimit = 10;  ///< of each item, in seconds

    // Of export.
    std::string uri;                   ///< as given; for every model it ends in "/"
    std::size_t jobs = 4;              ///< at a time
    bool isEveryModel = false;         ///< there is no target
    bool isPasswordFromInput = false;  ///< its first line
    std::string passwordFile;          ///< its first line; without either the operator is asked

    /// Whether the target is a DN.
    bool hasDn() const { return target.find('=') != std::string::npos; }

    std::string information;  ///< help or version: to be shown instead of a command
};

}  // namespace TevAgent

#endif
