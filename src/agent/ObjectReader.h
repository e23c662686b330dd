#ifndef TEV_AGENT_OBJECT_READER_H
#define TEV_AGENT_OBJECT_READER_H

#include <string>
#include <vector>

#include "Instance.h"
#include "Router.h"

namespace TevAgent {

/// Reads managed objects through the router in one transaction. What cannot be read ends in a `Failure` (operation
/// failed) whose sentence names the object; an interruption ends in `Interrupted`. Used by one thread.
class ObjectReader {
public:
    ObjectReader(Router& objectRouter, unsigned long transactionHandle);

    /// The keys of the instances of `className` directly under `parentDn`, in their owner's order.
    std::vector<std::string> keys(const std::string& parentDn, const std::string& className) const;

    Instance read(const std::string& dn, const std::vector<std::string>& attributeNames) const;

private:
    std::vector<std::string> readAttribute(const std::string& dn, const std::string& name) const;

    /// What to do when there is no such object, as the end of a sentence; nothing where nobody knows.
    std::string whereToLook(const std::string& dn) const;

    /// The attributes that the object has, as the end of a sentence; nothing where nobody knows.
    std::string knownAttributes(const std::string& dn) const;

    /// Whether the object is listed under its parent.
    bool exists(const std::string& dn) const;

    Router& router;
    const unsigned long txHandle;
};

}  // namespace TevAgent

#endif
