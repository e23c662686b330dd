// Leaves a thread behind at each start, which never runs any code of its library.
#include <pthread.h>
#include <unistd.h>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        // By way of a type for any function, so that the compiler takes it.
        auto* const wait = reinterpret_cast<void (*)()>(pause);
        pthread_t thread{};
        pthread_create(&thread, nullptr, reinterpret_cast<void* (*)(void*)>(wait), nullptr);
        return GoodComponent::start(reason);
    };
}
