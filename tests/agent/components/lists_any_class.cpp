// Lists its instances whatever the class.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.newMoIterator = [](unsigned long txHandle, const char* parent, const char* className,
                                         void** iterator) {
        return GoodComponent::newMoIterator(txHandle, parent, className == nullptr ? nullptr : "Schema", iterator);
    };
}
