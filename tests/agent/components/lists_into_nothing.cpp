// Is content to hand a key out to nobody.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void* iterator, char** result) {
        return result == nullptr ? TevReturnT{TevReturnOk} : GoodComponent::nextMo(iterator, result);
    };
}
