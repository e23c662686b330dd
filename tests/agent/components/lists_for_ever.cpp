// Begins a listing again when it is at its end.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void* iterator, char** result) {
        TevReturnT code = GoodComponent::nextMo(iterator, result);
        if (code == TevReturnOk && *result == nullptr) {
            GoodComponent::current->iterators[iterator].next = 0;
            code = GoodComponent::nextMo(iterator, result);
        }
        return code;
    };
}
