#ifndef TEV_AGENT_TABLE_CHECK_H
#define TEV_AGENT_TABLE_CHECK_H

#include <string>

#include "DalMgmtSpiComponent.h"
#include "DalOamSpiTransactionalResource.h"

namespace TevAgent {

/// Finds what is wrong with the tables of a component before anything is called through them: missing texts, arrays
/// and functions, wrong names and versions. Tables of interfaces that the agent does not call are not looked into.
class TableCheck {
public:
    /// What is wrong with the first faulty table of a component, as a sentence that names the component, or an empty
    /// text. Null is accepted.
    static std::string faultOf(const DalMgmtSpiComponent_2* component);

    /// The parts of it, each for a component that the ones before it find nothing wrong with: the component's own
    /// table, the tables that it offers, its dependencies.
    static std::string faultOfComponent(const DalMgmtSpiComponent_2* component);
    static std::string faultOfOffers(const DalMgmtSpiComponent_2& component);
    static std::string faultOfDependencies(const DalMgmtSpiComponent_2& component);

    /// The same for its third array, which the agent has no use for.
    static std::string faultOfExtras(const DalMgmtSpiComponent_2& component);

    /// The same for a participant of a transaction.
    static std::string faultOf(const DalOamSpiTransactionalResource_2* participant);
};

}  // namespace TevAgent

#endif
