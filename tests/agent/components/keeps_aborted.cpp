// Releases nothing when a transaction was aborted.
#include <set>

#include "EntryPoints.h"

static std::set<unsigned long> aborted;

void damage(GoodComponent& component) {
    component.resource.abort = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
        aborted.insert(txHandle);
        return TevReturnT{TevReturnOk};
    };
    component.resource.finish = [](unsigned long txHandle) {
        const bool isAborted = [txHandle] {
            const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
            return aborted.count(txHandle) != 0;
        }();
        return isAborted ? TevReturnT{TevReturnOk} : GoodComponent::finish(txHandle);
    };
}
