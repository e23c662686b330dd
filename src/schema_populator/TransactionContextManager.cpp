#include "TransactionContextManager.h"

#include <Poco/ScopedLock.h>

#include <cstdlib>
#include <memory>

#include "TevException.h"

namespace TevSchemaPopulator {

namespace {

constexpr std::size_t iteratorBlockSize = 4;

using Lock = Poco::ScopedLock<Poco::Mutex>;

/// A block from `malloc` that is freed unless a transaction has taken it over.
struct FreeBlock {
    void operator()(void* block) const { std::free(block); }
};
using Block = std::unique_ptr<void, FreeBlock>;

}  // namespace

void TransactionContextManager::addMemory(unsigned long txHandle, void* block) {
    Block unregistered(block);
    const Lock lock(mutex);
    transactionContexts[txHandle].memoryBlocks.push_back(block);
    static_cast<void>(unregistered.release());
}

void* TransactionContextManager::getNewIteratorHandle(unsigned long txHandle) {
    const Lock lock(mutex);
    TransactionContext& context = transactionContexts[txHandle];
    Block unregistered(std::malloc(iteratorBlockSize));
    void* const itHandle = unregistered.get();
    context.memoryBlocks.push_back(itHandle);
    static_cast<void>(unregistered.release());
    context.iteratorHandles.push_back(itHandle);
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
    const DestroyIteratorContext destroyIteratorContext(&iteratorContexts);
    for (void* const itHandle : context.iteratorHandles) {
        destroyIteratorContext(itHandle);
    }
    for (void* const block : context.memoryBlocks) {
        std::free(block);
    }
    if (transactionContexts.erase(txHandle) == 0) {
        // GCOVR_EXCL_START: out of reach, since the entry was found under this very lock.
        SCHEMA_TRACE(TraceDebug, "Could not erease transactionContext with handle[%lu]", txHandle);
        // GCOVR_EXCL_STOP
    }
}

}  // namespace TevSchemaPopulator
