// Keeps memory of each read that it refuses.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        static std::deque<std::string> kept;
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code != TevReturnOk) {
            const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
            kept.emplace_back(1000, 'x');
        }
        return code;
    };
}
