#ifndef TEV_AGENT_EXPORT_RUN_H
#define TEV_AGENT_EXPORT_RUN_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Agent.h"
#include "ExportResult.h"
#include "Password.h"

namespace TevAgent {

/// Exports models, several at a time: each in a thread and a transaction of its own, while the calling thread shows on
/// the operator's terminal how far it is. Used by one thread.
class ExportRun {
public:
    struct Export {
        std::string model;  ///< schema id, or DN
        std::string dn;
        std::optional<std::uintmax_t> size;  ///< of the model's file, in bytes, where it is known
    };

    /// Both outlive the run. `uri` is where each model goes.
    ExportRun(Agent& hostAgent, std::string destinationUri, const Password& userPassword);

    /// Carries the exports out, up to `jobs` at a time, and tells each result as soon as it is there, from the calling
    /// thread. Where the system gives fewer threads they are fewer at a time. After an interruption no further one is
    /// begun; their results, with the message "not begun", are told last. Returns the results in the order of
    /// `exports`.
    std::vector<ExportResult> run(const std::vector<Export>& exports, std::size_t jobs,
                                  const std::function<void(const ExportResult&)>& tell);

private:
    /// Carries one export out, in any thread.
    ExportResult carryOut(const Export& wanted) const noexcept;

    Agent& agent;
    const std::string uri;
    const Password& password;
};

}  // namespace TevAgent

#endif
