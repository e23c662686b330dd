// Takes back what it handed out when the transaction commits.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.commit = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
        for (std::string& text : GoodComponent::current->memories[txHandle].texts) {
            text.front() = '#';
        }
        return TevReturnT{TevReturnOk};
    };
}
