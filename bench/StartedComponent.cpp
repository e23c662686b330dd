#include "StartedComponent.h"

#include <stdexcept>

#include "Heap.h"
#include "Stopwatch.h"

namespace TevBench {

StartedComponent::StartedComponent(Framework& host) : library(TevTest::Component::get()), framework(host) {
    TevReturnT result = library->init(&framework.accessor(), nullptr);
    if (result == TevReturnOk) {
        bytes = -heapBytes();
        seconds = processorSecondsOf([&] { result = framework.component()->start(DalStateChangeReasonUnspecified); });
        bytes += heapBytes();
    }
    if (result != TevReturnOk) {
        throw std::runtime_error("the component does not start");
    }
    // In the order in which the component offers them; each table begins with its descriptor.
    DalMgmtSpiInterface_1** const offered = framework.component()->interfaceArray;
    transactionTable = reinterpret_cast<const DalOamSpiTransactionalResource_2*>(offered[0]);
    objectTable = reinterpret_cast<const DalOamSpiManagedObject_1*>(offered[1]);
}

StartedComponent::~StartedComponent() {
    framework.component()->stop(DalStateChangeReasonUnspecified);
    library->terminate();
}

}  // namespace TevBench
