// Refuses a read while another one of the same transaction is under way.
#include <chrono>
#include <set>
#include <thread>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        static std::mutex mutex;
        static std::set<unsigned long> reading;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (!reading.insert(txHandle).second) {
                return GoodComponent::refused;
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(50));
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        const std::lock_guard<std::mutex> lock(mutex);
        reading.erase(txHandle);
        return code;
    };
}
