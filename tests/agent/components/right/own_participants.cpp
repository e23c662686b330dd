// Takes part with a table for each transaction, not with the one that it offers.
#include "../EntryPoints.h"

static std::mutex mutex;
static std::map<unsigned long, DalOamSpiTransactionalResource_2> participants;
static std::vector<unsigned long> finished;

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(mutex);
        finished.push_back(txHandle);
        return GoodComponent::finish(txHandle);
    };
    component.resource.join = [](unsigned long txHandle) {
        if (!GoodComponent::current->isStarted) {
            return TevReturnT{TevReturnNotStarted};
        }
        const std::lock_guard<std::mutex> lock(mutex);
        // Its own finish has to return before a table may go.
        for (const unsigned long handle : finished) {
            participants.erase(handle);
        }
        finished.clear();
        auto* const service = GoodComponent::current->find<DalOamSpiTransaction_2>("DalOamSpiTransactionService",
                                                                                   "DalOamSpiTransaction", "2");
        return service->registerParticipant(
            txHandle, &participants.emplace(txHandle, GoodComponent::current->resource).first->second);
    };
}
