// Reads only in the thread that started it.
#include <thread>

#include "EntryPoints.h"

static std::thread::id starter;

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        return std::this_thread::get_id() == starter ? GoodComponent::getMoAttribute(txHandle, dn, attribute, result)
                                                     : GoodComponent::refused;
    };
    component.component.start = [](DalStateChangeReason reason) {
        starter = std::this_thread::get_id();
        return GoodComponent::start(reason);
    };
}
