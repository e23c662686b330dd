// Takes every write, and refuses it when the transaction is validated.
#include <set>

#include "../EntryPoints.h"

static std::mutex mutex;
static std::set<unsigned long> invalid;

static TevReturnT take(unsigned long txHandle) {
    const std::lock_guard<std::mutex> lock(mutex);
    invalid.insert(txHandle);
    return TevReturnOk;
}

void damage(GoodComponent& component) {
    component.objects.setMoAttribute = [](unsigned long txHandle, const char*, const char*,
                                          DalMoAttributeValueContainer*) { return take(txHandle); };
    component.objects.createMo = [](unsigned long txHandle, const char*, const char*, const char*,
                                    DalMoAttributeValueContainer*) { return take(txHandle); };
    component.objects.deleteMo = [](unsigned long txHandle, const char*) { return take(txHandle); };
    component.resource.validate = [](unsigned long txHandle, bool* result) {
        const std::lock_guard<std::mutex> lock(mutex);
        *result = invalid.count(txHandle) == 0;
        return TevReturnT{TevReturnOk};
    };
}
