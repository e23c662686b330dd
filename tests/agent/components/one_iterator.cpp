// Lets all listings of a transaction share one place.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.newMoIterator = [](unsigned long txHandle, const char* parent, const char* className,
                                         void** iterator) {
        const TevReturnT code = GoodComponent::newMoIterator(txHandle, parent, className, iterator);
        if (code == TevReturnOk) {
            const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
            for (auto& [handle, other] : GoodComponent::current->iterators) {
                other.next = other.txHandle == txHandle ? 0 : other.next;
            }
        }
        return code;
    };
}
