// Leaves a thread behind at each start, which waits outside of its library.
#include <pthread.h>
#include <semaphore.h>

#include "EntryPoints.h"

static void* waitForEver(void*) {
    sem_t never;
    sem_init(&never, 0, 0);
    sem_wait(&never);
    return nullptr;
}

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        pthread_t thread{};
        pthread_create(&thread, nullptr, waitForEver, nullptr);
        return GoodComponent::start(reason);
    };
}
