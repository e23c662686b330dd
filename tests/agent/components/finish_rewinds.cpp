// Lets every listing begin again when any transaction finishes.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        const TevReturnT code = GoodComponent::finish(txHandle);
        const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
        for (auto& [handle, iterator] : GoodComponent::current->iterators) {
            iterator.next = 0;
        }
        return code;
    };
}
