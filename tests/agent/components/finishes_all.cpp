// Releases what it handed out in every transaction of a thread when one of them finishes.
#include <map>
#include <thread>

#include "EntryPoints.h"

/// Which thread joined a transaction: what others do is no matter of theirs.
static std::map<unsigned long, std::thread::id> joined;

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
        joined[txHandle] = std::this_thread::get_id();
        return GoodComponent::join(txHandle);
    };
    component.resource.finish = [](unsigned long txHandle) {
        const TevReturnT code = GoodComponent::finish(txHandle);
        const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
        joined.erase(txHandle);
        for (auto& [other, memory] : GoodComponent::current->memories) {
            if (joined[other] != std::this_thread::get_id()) {
                continue;
            }
            // Overwritten, not released, so that it is no matter of luck what a reader finds there.
            for (std::string& text : memory.texts) {
                text.front() = '?';
            }
        }
        return code;
    };
}
