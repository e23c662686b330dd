#ifndef TEV_AGENT_COMPLETION_H
#define TEV_AGENT_COMPLETION_H

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

    /// Whether nothing is to follow in the same word: a DN may have further RDNs, a folder has files.
    static bool isWhole(const std::string& candidate);

private:
    std::vector<std::string> all(const std::vector<std::string>& before, const std::string& begun) const;

    /// Schema ids, and DNs down to the level that the word has reached.
    std::vector<std::string> targets(const std::string& begun) const;

    /// The keys of a class that belongs to a component.
    std::vector<std::string> keys(const std::string& parentDn, const std::string& className) const;

    std::vector<std::string> attributesOf(const std::string& target) const;

    Agent& agent;
};

}  // namespace TevAgent

#endif
