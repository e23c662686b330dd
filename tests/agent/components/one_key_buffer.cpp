// Gives every key in the same place.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void* iterator, char** result) {
        thread_local char text[8];
        const TevReturnT code = GoodComponent::nextMo(iterator, result);
        if (code == TevReturnOk && *result != nullptr) {
            *result = std::strcpy(text, *result);
        }
        return code;
    };
}
