// Takes no iterator for one that is at its end.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void* iterator, char** result) {
        if (iterator == nullptr && result != nullptr) {
            *result = nullptr;
            return TevReturnT{TevReturnOk};
        }
        return GoodComponent::nextMo(iterator, result);
    };
}
