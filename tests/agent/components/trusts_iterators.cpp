// Takes every iterator for one of its own, and comes down over one that it never gave.
#include <cstdlib>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void* iterator, char** result) {
        const TevReturnT code = GoodComponent::nextMo(iterator, result);
        // One of its own is a small number, whether its transaction has finished or not.
        if (code == GoodComponent::refused && reinterpret_cast<std::uintptr_t>(iterator) > 4096) {
            std::abort();
        }
        return code;
    };
}
