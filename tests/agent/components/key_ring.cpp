// Hands keys out in buffers that it uses again.
#include <array>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void* iterator, char** result) {
        static std::array<std::array<char, 8>, 63> ring;
        static std::atomic<std::size_t> next{0};
        const TevReturnT code = GoodComponent::nextMo(iterator, result);
        if (code == TevReturnOk && *result != nullptr) {
            char* const place = ring[next++ % ring.size()].data();
            *result = std::strcpy(place, *result);
        }
        return code;
    };
}
