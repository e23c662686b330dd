// Changes the values of every transaction when one finishes.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        static char gone[] = "gone";
        const TevReturnT code = GoodComponent::finish(txHandle);
        const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
        for (auto& [handle, memory] : GoodComponent::current->memories) {
            for (DalMoAttributeValue& value : memory.values) {
                value.theString = gone;
            }
        }
        return code;
    };
}
