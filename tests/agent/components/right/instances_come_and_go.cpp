// Has an instance that only every second listing shows.
#include "../EntryPoints.h"

void damage(GoodComponent& component) {
    component.keys = {"one", "two", "three"};
    component.objects.nextMo = [](void* iterator, char** result) {
        const TevReturnT code = GoodComponent::nextMo(iterator, result);
        const bool isHidden = code == TevReturnOk && *result != nullptr && std::strcmp(*result, "three") == 0 &&
                              reinterpret_cast<std::uintptr_t>(iterator) % 2 == 0;
        return isHidden ? GoodComponent::nextMo(iterator, result) : code;
    };
}
