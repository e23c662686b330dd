// Releases what it handed out in every transaction when one finishes.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        const TevReturnT code = GoodComponent::finish(txHandle);
        const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
        // Overwritten, not released, so that it is no matter of luck what a reader finds there.
        for (auto& [other, memory] : GoodComponent::current->memories) {
            for (std::string& text : memory.texts) {
                text.front() = '?';
            }
        }
        return code;
    };
}
