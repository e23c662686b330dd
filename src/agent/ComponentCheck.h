#ifndef TEV_AGENT_COMPONENT_CHECK_H
#define TEV_AGENT_COMPONENT_CHECK_H

#include <functional>
#include <string>
#include <vector>

#include "CheckItem.h"
#include "CheckResult.h"
#include "CheckSubject.h"

namespace TevAgent {

/// Tries a component against the interface contract, item by item, with services of its own. An item behind a gate that
/// failed is skipped. Used by one thread.
class ComponentCheck {
public:
    /// How an item is tried and comes out; may be called from several threads at a time. May throw `Interrupted`.
    using Attempt = std::function<CheckResult(const CheckItem& item)>;
    using Tell = std::function<void(const CheckResult&)>;

    /// Whether `text` is the id of an item, or what the ids of a group have before their ".".
    static bool hasItem(const std::string& text);

    /// The ids of all items, for people.
    static std::string itemIds();

    /// The items that the entries of `only`, ids and groups, name, in their order; all when it is empty.
    static std::vector<CheckItem> itemsNamed(const std::vector<std::string>& only);

    /// Tries `items`, so many at a time, and tells each result, in their order, as soon as it can. Throws
    /// `Interrupted`, and what `attempt` and `tell` throw.
    static void run(const std::vector<CheckItem>& items, std::size_t jobs, const Attempt& attempt, const Tell& tell);

    /// The same in this process and thread, one after the other: each result is told before the item's host ends, which
    /// the component may not survive. Throws `Failure` (not started) when a file cannot be used.
    static void runHere(const std::vector<CheckItem>& items, const CheckSubject& subject, const Tell& tell);
};

}  // namespace TevAgent

#endif
