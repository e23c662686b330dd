// Knows a transaction only in the thread that it was joined in.
#include <thread>

#include "EntryPoints.h"

static std::mutex mutex;
static std::map<unsigned long, std::thread::id> threads;

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(mutex);
        threads[txHandle] = std::this_thread::get_id();
        return GoodComponent::join(txHandle);
    };
    component.resource.finish = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(mutex);
        threads.erase(txHandle);
        return GoodComponent::finish(txHandle);
    };
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        const std::lock_guard<std::mutex> lock(mutex);
        const bool isAtHome = threads[txHandle] == std::this_thread::get_id();
        return code == TevReturnOk && !isAtHome ? GoodComponent::refused : code;
    };
}
