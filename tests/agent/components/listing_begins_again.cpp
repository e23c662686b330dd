// Begins a listing again behind its end.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void* iterator, char** result) {
        const TevReturnT code = GoodComponent::nextMo(iterator, result);
        if (code == TevReturnOk && result != nullptr && *result == nullptr) {
            const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
            GoodComponent::current->iterators[iterator].next = 0;
        }
        return code;
    };
}
