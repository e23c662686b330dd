// Ends its process in a read without a word.
#include <unistd.h>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long, const char*, const char*,
                                          DalMoAttributeValueContainer**) -> TevReturnT { _exit(0); };
}
