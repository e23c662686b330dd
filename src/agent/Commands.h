#ifndef TEV_AGENT_COMMANDS_H
#define TEV_AGENT_COMMANDS_H

#include <string>
#include <vector>

#include "Agent.h"
#include "CheckSubject.h"
#include "ExitStatus.h"
#include "ExportRun.h"
#include "Instance.h"
#include "Settings.h"
#include "StandardOutput.h"

namespace TevAgent {

/// The commands of the command line. Used by one thread.
class Commands {
public:
    /// Both outlive this object.
    Commands(const Settings& commandSettings, StandardOutput& resultOutput);

    /// Carries out the command that the settings name: results go to the output, all else to `Diagnostics`. Throws
    /// `Failure` or `Interrupted` when the command ends early.
    ExitStatus run();

    /// As `run`, in an agent whose components are started. Not for `check`, which loads the component anew.
    ExitStatus carryOut(Agent& agent);

private:
    ExitStatus list(Agent& agent);
    ExitStatus get(Agent& agent);
    ExitStatus exportOne(Agent& agent);
    ExportRun::Export namedExport(Agent& agent) const;
    ExitStatus exportEvery(Agent& agent);
    static std::vector<ExportRun::Export> everyExport(Agent& agent);

    /// Carries the exports out, at least one, and writes how each came out.
    ExitStatus exportAndTell(Agent& agent, const std::vector<ExportRun::Export>& wanted);
    ExitStatus check();
    CheckSubject checkSubject() const;

    /// The arguments of a check of `subject` in the process that writes JSON.
    std::vector<std::string> checkArguments(const CheckSubject& subject) const;
    void write(const std::vector<std::string>& attributes, const std::vector<Instance>& instances);

    const Settings& settings;
    StandardOutput& output;
};

}  // namespace TevAgent

#endif
