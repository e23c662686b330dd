// Never returns from being unloaded.
#include <unistd.h>

#include "EntryPoints.h"

struct Ending {
    ~Ending() {
        while (true) {
            pause();
        }
    }
};

static const Ending ending;

void damage(GoodComponent&) {}
