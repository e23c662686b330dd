// Prints on standard output: while it is loaded, initialized, started, read and unloaded.
#include <cstdio>
#include <iostream>

#include "EntryPoints.h"

struct Printer {
    Printer() { std::cout << "loaded" << std::endl; }
    ~Printer() { std::cout << "unloaded" << std::endl; }
};

static const Printer printer;

void damage(GoodComponent& component) {
    std::printf("initialized\n");
    component.component.start = [](DalStateChangeReason reason) {
        std::printf("started\n");
        std::fflush(stdout);
        return GoodComponent::start(reason);
    };
    component.resource.finish = [](unsigned long txHandle) {
        std::printf("finished\n");
        return GoodComponent::finish(txHandle);
    };
}
