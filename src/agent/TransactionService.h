#ifndef TEV_AGENT_TRANSACTION_SERVICE_H
#define TEV_AGENT_TRANSACTION_SERVICE_H

#include <cstddef>
#include <map>
#include <set>
#include <vector>

#include "AnnotatedMutex.h"
#include "DalOamSpiTransaction.h"
#include "OnlyOne.h"

namespace TevAgent {

/// Keeps the transactions: their participants, and their end.
///
/// Handles begin at 1 and are never used again. Thread-safe; one transaction is used by one thread at a time.
/// Participants are called without a lock held.
class TransactionService : public OnlyOne<TransactionService> {
public:
    static constexpr const char* componentName = "DalOamSpiTransactionService";

    /// The table that components are given.
    static DalOamSpiTransaction_2* table();

    /// Begins a transaction and returns its handle.
    unsigned long begin();

    /// Makes `participant` (borrowed until its `finish`) take part; again changes nothing. Returns 0, -2 when there is
    /// no such transaction or its participants are being told to finish, -8 when the participant's table is faulty, and
    /// says how then.
    TevReturnT registerParticipant(unsigned long txHandle, DalOamSpiTransactionalResource_2* participant);

    /// To be called before a call into the component that offers `resource`: tells it to join unless it has joined the
    /// transaction. Returns 0, -2 when there is no such transaction, or the code of its `join`.
    TevReturnT join(unsigned long txHandle, DalOamSpiTransactionalResource_2& resource);

    /// Whether anybody takes part in the transaction.
    bool hasParticipant(unsigned long txHandle) const;

    /// Ends the transaction: validate, prepare and commit, or abort from where one of the first two fails; in the end
    /// every participant is told to finish, whatever happened. Returns 0, -2 when there is no such transaction, or the
    /// first code that was not 0 (-1 for one that finds the transaction invalid). Says what failed.
    TevReturnT commit(unsigned long txHandle);

    /// Ends the transaction: abort, then finish, as above.
    TevReturnT abort(unsigned long txHandle);

private:
    struct Table;
    using Resource = DalOamSpiTransactionalResource_2;
    using Operation = TevReturnT (*Resource::*)(unsigned long);
    enum class AtFailure { Stop, GoOn };

    struct State {
        std::vector<Resource*> participants;
        std::set<Resource*> joined;
        bool isFinishing = false;
    };

    bool isOpen(unsigned long txHandle) const;

    /// The participant of that place in the order of registration, or null: more may register while it ends.
    Resource* participant(unsigned long txHandle, std::size_t index) const;

    TevReturnT validate(unsigned long txHandle) const;
    TevReturnT tellAll(unsigned long txHandle, const char* name, Operation operation, AtFailure atFailure) const;
    TevReturnT finish(unsigned long txHandle);

    mutable Tev::AnnotatedMutex mutex;
    unsigned long lastHandle TEV_GUARDED_BY(mutex) = 0;
    std::map<unsigned long, State> open TEV_GUARDED_BY(mutex);
};

}  // namespace TevAgent

#endif
