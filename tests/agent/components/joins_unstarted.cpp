// Joins transactions before it is started.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long txHandle) {
        return GoodComponent::current
            ->find<DalOamSpiTransaction_2>("DalOamSpiTransactionService", "DalOamSpiTransaction", "2")
            ->registerParticipant(txHandle, &GoodComponent::current->resource);
    };
}
