// Publishes how many transactions are open.
#include <chrono>
#include <thread>

#include "../EntryPoints.h"

static std::atomic<std::int64_t> open{0};

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long txHandle) {
        const TevReturnT code = GoodComponent::join(txHandle);
        open += code == TevReturnOk ? 1 : 0;
        return code;
    };
    component.resource.finish = [](unsigned long txHandle) {
        --open;
        return GoodComponent::finish(txHandle);
    };
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnOk) {
            (*result)->type = DalMoTypeInt64;
            (*result)->values[0].theInt64 = open;
        }
        return code;
    };
}
