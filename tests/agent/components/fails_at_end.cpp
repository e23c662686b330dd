// Knows a listing no longer that has told its end.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void* iterator, char** result) {
        const TevReturnT code = GoodComponent::nextMo(iterator, result);
        if (code == TevReturnOk && *result == nullptr) {
            const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
            GoodComponent::current->iterators.erase(iterator);
        }
        return code;
    };
}
