// Remembers the DNs that were asked for last.
#include "../EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        static std::deque<std::string> last;
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnOk) {
            const std::lock_guard<std::mutex> lock(GoodComponent::current->mutex);
            last.emplace_back(dn);
            if (last.size() > 4000) {
                last.pop_front();
            }
        }
        return code;
    };
}
