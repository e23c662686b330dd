// Answers wrongly now and then while two transactions read.
#include <chrono>
#include <thread>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        static std::atomic<int> under{0};
        static std::atomic<unsigned long> last{0};
        const bool isMixed = ++under > 1 && last != txHandle;
        last = txHandle;
        std::this_thread::sleep_for(std::chrono::microseconds(50));
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnOk && isMixed) {
            (*result)->values[0].theString[0] = 'W';
        }
        --under;
        return code;
    };
}
