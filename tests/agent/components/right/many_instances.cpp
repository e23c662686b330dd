// Has more instances than can be read a thousand times within a check.
#include "../EntryPoints.h"

void damage(GoodComponent& component) {
    component.keys.clear();
    for (int i = 0; i < 800; ++i) {
        component.keys.push_back("key" + std::to_string(i));
    }
}
