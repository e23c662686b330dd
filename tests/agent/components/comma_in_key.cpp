// Has a key that cannot stand in a DN.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.keys = {"one", "two,three"};
}
