// Aborts while it is unloaded.
#include <cstdlib>

#include "EntryPoints.h"

struct Ending {
    ~Ending() { std::abort(); }
};

static const Ending ending;

void damage(GoodComponent&) {}
