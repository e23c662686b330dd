// Lists an instance twice.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.keys = {"one", "two", "one"};
}
