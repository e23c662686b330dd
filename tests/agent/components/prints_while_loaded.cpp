// Prints on standard output while it is loaded.
#include <cstdio>

#include "EntryPoints.h"

__attribute__((constructor)) static void print() {
    std::puts("loaded");
}

void damage(GoodComponent&) {}
