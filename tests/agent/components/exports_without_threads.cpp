// Has four instances, "0" to "3". The first two exports meet; from then on the process gets no further thread. The
// first one ends at once, the second one a moment later, and fails when a third one comes meanwhile. The others tell
// whether the main thread carries them out.
#include <pthread.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "DalMgmtSpiThreadContext.h"
#include "EntryPoints.h"

static std::mutex mutex;
static std::condition_variable isChanged;
static int begun = 0;

/// No system has room for such a stack.
static void allowNoThreads() {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, SIZE_MAX / 16 * 15);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
}

static const char* takePart() {
    std::unique_lock<std::mutex> lock(mutex);
    const int before = begun++;
    isChanged.notify_all();
    if (before == 0) {
        const bool isMet = isChanged.wait_for(lock, std::chrono::seconds(30), [] { return begun == 2; });
        allowNoThreads();
        return isMet ? "in company" : "alone";
    }
    if (before == 1) {
        const bool isCrowd = isChanged.wait_for(lock, std::chrono::milliseconds(200), [] { return begun > 2; });
        return isCrowd ? "in a crowd" : "in company";
    }
    return gettid() == getpid() ? "by the main thread" : "by another thread";
}

static TevReturnT act(unsigned long, const char*, const char*, DalMoAttributeValueContainer**,
                      DalMoAttributeValueContainer** result) {
    static DalMoAttributeValueContainer nothing = {DalMoTypeVoid, 0, nullptr};
    GoodComponent::current
        ->find<DalMgmtSpiThreadContext_2>("DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2")
        ->addMessage(1, takePart());
    *result = &nothing;
    return TevReturnOk;
}

void damage(GoodComponent& component) {
    component.objects.action = act;
    component.objects.nextMo = [](void*, char** result) {
        static char keys[4][2] = {"0", "1", "2", "3"};
        static int next = 0;
        *result = next < 4 ? keys[next++] : nullptr;
        return TevReturnT{TevReturnOk};
    };
}
