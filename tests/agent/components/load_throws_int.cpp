// Throws an int while it is loaded.
#include "EntryPoints.h"

__attribute__((constructor)) static void throwInt() {
    throw 42;
}

void damage(GoodComponent&) {}
