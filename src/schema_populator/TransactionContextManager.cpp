#include "TransactionContextManager.h"

#include <Poco/ScopedLock.h>

#include <algorithm>
#include <cstdlib>

#include "TevException.h"

namespace TevSchemaPopulator {

namespace {

constexpr std::size_t iteratorBlockSize = 4;

using Lock = Poco::ScopedLock<Poco::Mutex>;

}  // namespace

void TransactionContextManager::addMemory(unsigned long txHandle, void* block) {
    const Lock lock(mutex);
    transactionContexts[txHandle].memoryBlocks.push_back(block);
}

void* TransactionContextManager::getNewIteratorHandle(unsigned long txHandle) {
    const Lock lock(mutex);
    TransactionContext& context = transactionContexts[txHandle];
    void* const itHandle = std::malloc(iteratorBlockSize);
    context.iteratorHandles.push_back(itHandle);
    context.memoryBlocks.push_back(itHandle);
    iteratorContexts[itHandle] = {0, txHandle};
    return itHandle;
}

TransactionContextManager::IteratorContext TransactionContextManager::getNextIteratorContext(void* itHandle) {
    const Lock lock(mutex);
    const auto found = iteratorContexts.find(itHandle);
    if (found == iteratorContexts.end()) {
        throw Tev::TevException(TevReturnFailure, "Iterator handle is not valid");
    }
    const IteratorContext context = found->second;
    ++found->second.first;
    return context;
}

void TransactionContextManager::cleanup(unsigned long txHandle) {
    const Lock lock(mutex);
    const auto found = transactionContexts.find(txHandle);
    if (found == transactionContexts.end()) {
        SCHEMA_TRACE(TraceDebug, "Could not find transaction context [%lu] to clean up", txHandle);
        return;
    }
    const TransactionContext& context = found->second;
    std::for_each(context.iteratorHandles.begin(), context.iteratorHandles.end(),
                  DestroyIteratorContext(&iteratorContexts));
    std::for_each(context.memoryBlocks.begin(), context.memoryBlocks.end(), std::free);
    if (transactionContexts.erase(txHandle) == 0) {
        // Out of reach: the entry was found under this very lock.
        SCHEMA_TRACE(TraceDebug, "Could not erease transactionContext with handle[%lu]", txHandle);
    }
}

}  // namespace TevSchemaPopulator
