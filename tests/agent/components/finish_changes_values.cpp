// Changes the values of every transaction of a thread when one of them finishes.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        static char gone[] = "gone";
        const TevReturnT code = GoodComponent::finish(txHandle);
        const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
        for (auto& [handle, memory] : GoodComponent::current->memories) {
            if (memory.thread != std::this_thread::get_id()) {
                continue;
            }
            for (DalMoAttributeValue& value : memory.values) {
                value.theString = gone;
            }
        }
        return code;
    };
}
