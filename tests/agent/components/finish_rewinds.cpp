// Lets every listing of a thread begin again when one of its transactions finishes.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        const TevReturnT code = GoodComponent::finish(txHandle);
        const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
        for (auto& [handle, iterator] : GoodComponent::current->iterators) {
            iterator.next = iterator.thread == std::this_thread::get_id() ? 0 : iterator.next;
        }
        return code;
    };
}
