// Leaves a thread behind at each start, which waits outside of its library.
#include <pthread.h>
#include <semaphore.h>

#include "EntryPoints.h"

// Never released, because the thread never ends.
static sem_t* const never = new sem_t;

void damage(GoodComponent& component) {
    sem_init(never, 0, 0);
    component.component.start = [](DalStateChangeReason reason) {
        pthread_t thread{};
        pthread_create(
            &thread, nullptr,
            [](void* semaphore) -> void* {
                sem_wait(static_cast<sem_t*>(semaphore));
                return nullptr;
            },
            never);
        return GoodComponent::start(reason);
    };
}
