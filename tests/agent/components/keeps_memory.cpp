// Never releases what it handed out.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        // Still known, so that no leak checker minds.
        static std::deque<std::string> kept;
        {
            const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
            kept.emplace_back(64, 'x');
        }
        return GoodComponent::finish(txHandle);
    };
}
