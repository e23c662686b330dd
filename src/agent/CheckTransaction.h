#ifndef TEV_AGENT_CHECK_TRANSACTION_H
#define TEV_AGENT_CHECK_TRANSACTION_H

#include <functional>
#include <string>
#include <vector>

#include "CheckHost.h"
#include "ScopedTransaction.h"

namespace TevAgent {

/// A transaction in which a checked component is called through its own tables, and which it has joined. What goes
/// wrong ends the item as failed; aborted at its end unless it was committed. Used by one thread.
class CheckTransaction {
public:
    /// The host's component is started, and outlives this object.
    explicit CheckTransaction(CheckHost& checkHost);

    unsigned long handle() const { return transaction.handle(); }

    /// Begins a listing of the checked class.
    void* list();

    /// The next key of a listing, null at its end.
    char* next(void* iterator);

    /// The keys of a listing, from where it is to its end, as the component hands them out.
    std::vector<char*> rest(void* iterator);

    /// The keys of a new listing. The item is skipped when there is none.
    std::vector<char*> someKeys();

    /// Whether a few listings in a row show the same keys: not so where instances come and go by themselves.
    bool isSteady();

    /// Reads an attribute. The container is there, of a known type, and has its cells.
    const DalMoAttributeValueContainer& read(const std::string& dn, const std::string& attribute);

    /// The values as texts; none for a struct, whose cells nobody tells how to read. Throws std::invalid_argument as
    /// `ValueText` does.
    static std::vector<std::string> texts(const DalMoAttributeValueContainer* container);

    void commit();

    /// Ends the component's part by itself, whatever it returns, and tells each operation once it is done, but for
    /// finish, which comes last.
    void end(bool isCommitted, const std::function<void(const char* operation)>& tell);

private:
    CheckHost& host;
    DalOamSpiManagedObject_1& objects;
    ScopedTransaction transaction;
};

}  // namespace TevAgent

#endif
