// Lists its instances whatever they stand under.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.newMoIterator = [](unsigned long txHandle, const char* parent, const char* className,
                                         void** iterator) {
        return GoodComponent::newMoIterator(txHandle, parent == nullptr ? nullptr : "M=1,SysM=1", className, iterator);
    };
}
