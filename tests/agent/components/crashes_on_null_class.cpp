// Comes down over a listing without a class.
#include <cstdlib>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.newMoIterator = [](unsigned long txHandle, const char* parent, const char* className,
                                         void** iterator) {
        if (className == nullptr) {
            std::abort();
        }
        return GoodComponent::newMoIterator(txHandle, parent, className, iterator);
    };
}
