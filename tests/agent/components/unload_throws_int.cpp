// Throws an int while it is unloaded.
#include "EntryPoints.h"

__attribute__((destructor)) static void throwInt() {
    throw 42;
}

void damage(GoodComponent&) {}
