// Throws an int while it is initialized.
#include "EntryPoints.h"

void damage(GoodComponent&) {
    throw 42;
}
