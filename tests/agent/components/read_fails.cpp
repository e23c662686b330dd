// Reads nothing: for the attribute "version" it says that memory is short, for any other one something of its own.
#include <cstring>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long, const char*, const char* name,
                                          DalMoAttributeValueContainer**) {
        return TevReturnT{std::strcmp(name, "version") == 0 ? -10 : -13};
    };
}
