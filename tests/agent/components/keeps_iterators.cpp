// Goes on with the iterators of finished transactions.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        std::unique_lock<std::mutex> lock(GoodComponent::current->mutex);
        const auto kept = GoodComponent::current->iterators;
        lock.unlock();
        const TevReturnT code = GoodComponent::finish(txHandle);
        lock.lock();
        // A few, so that no heap shows it.
        if (kept.size() < 4) {
            GoodComponent::current->iterators = kept;
        }
        return code;
    };
}
