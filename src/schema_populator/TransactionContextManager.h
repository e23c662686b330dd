#ifndef TRANSACTION_CONTEXT_MANAGER_H
#define TRANSACTION_CONTEXT_MANAGER_H

#include <Poco/Mutex.h>

#include <list>
#include <map>
#include <utility>
#include <vector>

#include "Log.h"

namespace TevSchemaPopulator {

/// Keeps, for every transaction, the memory that was handed to the framework in it and the iterators that were made
/// in it, until `cleanup` ends both.
///
/// Thread-safe: one lock, held for the whole of each operation.
class TransactionContextManager {
public:
    /// What one transaction holds. Destroying it leaves the registered blocks alone.
    struct TransactionContext {
        std::list<void*> memoryBlocks;       ///< in order of registration, from `malloc`
        std::vector<void*> iteratorHandles;  ///< in order of creation
    };

    /// First: the catalogue index of the next instance to return. Second: the transaction that the iterator lives in.
    using IteratorContext = std::pair<unsigned int, unsigned long>;
    using IteratorContexts = std::map<void*, IteratorContext>;

    /// Forgets one iterator. Not locked: it works inside the lock of `cleanup`.
    class DestroyIteratorContext {
    public:
        /// `contexts` is borrowed for the life of the object.
        explicit DestroyIteratorContext(IteratorContexts* contexts) : iteratorContexts(contexts) {}

        void operator()(void* itHandle) const {
            const std::size_t sizeBefore = iteratorContexts->size();
            iteratorContexts->erase(itHandle);
            if (iteratorContexts->size() == sizeBefore) {
                SCHEMA_TRACE(TraceDebug, "Could not erase iteratorContext with handle [%p]", itHandle);
            }
        }

    private:
        IteratorContexts* iteratorContexts;
    };

    TransactionContextManager() = default;

    /// Blocks of transactions that were never cleaned up are not freed: the framework may still read them.
    ~TransactionContextManager() = default;

    TransactionContextManager(const TransactionContextManager&) = delete;
    TransactionContextManager& operator=(const TransactionContextManager&) = delete;

    /// Gives `block`, which came from `malloc` or is null, to the transaction. When memory for that runs out, frees the
    /// block and throws std::bad_alloc.
    void addMemory(unsigned long txHandle, void* block);

    /// Makes an iterator that lives in the transaction. The handle is a unique address, never read or written.
    void* getNewIteratorHandle(unsigned long txHandle);

    /// The iterator's context, whose stored index then moves on by one. Throws `Tev::TevException` with code -1 when
    /// there is no such iterator, or no longer.
    IteratorContext getNextIteratorContext(void* itHandle);

    /// Ends the transaction: forgets its iterators and frees its blocks, both in the order in which they came.
    void cleanup(unsigned long txHandle);

private:
    // A member, because the trace of the function object above is written in this header.
    static constexpr const char* sourceFile = "src/schema_populator/TransactionContextManager";

    Poco::Mutex mutex;  ///< guards both maps
    std::map<unsigned long, TransactionContext> transactionContexts;
    IteratorContexts iteratorContexts;
};

}  // namespace TevSchemaPopulator

#endif
