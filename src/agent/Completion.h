#ifndef TEV_AGENT_COMPLETION_H
#define TEV_AGENT_COMPLETION_H

#include <cstddef>
#include <string>
#include <vector>

#include "Agent.h"

namespace TevAgent {

/// What the last word of a shell's line may become, as the running agent has it at that moment. What cannot be read
/// gives no candidates, and nobody is told. Used by one thread.
class Completion {
public:
    explicit Completion(Agent& hostAgent) : agent(hostAgent) {}

    /// What a word that begins with `begun` may be behind the words `before`: in order, each once.
    std::vector<std::string> candidates(const std::vector<std::string>& before, const std::string& begun) const;

    /// Where in a word the RDN begins that a DN has reached; 0 where it is no DN.
    static std::size_t beginOfLevel(const std::string& word);

    /// Whether nothing is to follow in the same word: a DN may have further RDNs, a folder has files.
    static bool isWhole(const std::string& candidate);

private:
    /// A line's words behind its command.
    struct Arguments;

    /// As `candidates`, with others among them.
    std::vector<std::string> all(const std::vector<std::string>& before, const std::string& begun) const;
    static std::vector<std::string> valuesOf(const std::string& option, const std::string& begun);

    /// The words of a command that are neither options nor their values.
    std::vector<std::string> positional(const std::string& command, const Arguments& arguments,
                                        const std::string& begun) const;

    /// Schema ids, and the DNs at the level that the word has reached; below it where the word is the only one of them.
    std::vector<std::string> targets(const std::string& begun) const;

    /// The DNs at that level.
    std::vector<std::string> objectsAt(const std::string& begun) const;

    /// The keys of a class that belongs to a component.
    std::vector<std::string> keys(const std::string& parentDn, const std::string& className) const;

    std::vector<std::string> attributesOf(const std::string& target) const;

    Agent& agent;
};

}  // namespace TevAgent

#endif
