// Calls exit in a thread of its own, while its start waits for that.
#include <cstdlib>
#include <thread>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason) {
        std::thread([] { std::exit(0); }).join();
        return TevReturnT{TevReturnOk};
    };
}
