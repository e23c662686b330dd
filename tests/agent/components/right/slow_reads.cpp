// Has to ask somebody far away for every value.
#include <chrono>
#include <thread>

#include "../EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
    };
}
