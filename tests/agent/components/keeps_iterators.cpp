// Goes on with the iterators of finished transactions.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        const auto kept = GoodComponent::current->iterators;
        const TevReturnT code = GoodComponent::finish(txHandle);
        // A few, so that no heap shows it.
        if (kept.size() < 4) {
            GoodComponent::current->iterators = kept;
        }
        return code;
    };
}
