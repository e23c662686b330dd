#ifndef FAKE_HOST_H
#define FAKE_HOST_H

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "DalMgmtSpiComponent.h"
#include "DalMgmtSpiThreadContext.h"
#include "DalOamSpiManagedObject.h"
#include "DalOamSpiModelRepository.h"
#include "DalOamSpiModelRepositoryExtension.h"
#include "DalOamSpiTransaction.h"
#include "DalPortal.h"

namespace TevTest {

/// A model as the fake repository reports it.
struct FakeModel {
    std::string name;
    std::optional<std::string> version{};
    std::optional<std::string> release{};
    std::optional<std::string> correction{};
    /// Values of the domain "ORVA"; an absent key gives -2, a key without a value gives 0 and a null text.
    std::map<std::string, std::optional<std::string>> orva{};
    std::optional<std::vector<std::string>> features{};  ///< no value: the repository gives a null list
    std::optional<std::string> file{};                   ///< no value: "/models/<name>.xml"
    bool nullName = false;                               ///< the repository gives 0 and a null name
    bool nullFile = false;                               ///< the extension gives 0 and a null path
};

/// A management framework made of fakes: portal, transaction service, thread context, model repository with its
/// extension, and the router. It speaks to a component only through the tables.
///
/// Every table operation counts as a call by its name ("getInterface", "getFirstMom", ...), is written down in
/// `calls`, and can be told to fail. Tables have no room for an object, so there is one host at a time. The table
/// operations may be called from several threads; models and faults are set while no call is under way.
class FakeHost {
public:
    FakeHost();
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    /// What is handed to `dalLCMinit`. It gives a portal for version "3" only, and none after `withoutPortal`.
    DalPortalAccessor* accessor();
    void withoutPortal();

    /// The `nth` call of `operation` from now on, 1 being the next, returns `code` and does nothing else.
    void failCall(const std::string& operation, TevReturnT code, unsigned int nth = 1);

    /// The `nth` call of `operation` from now on returns 0 and does nothing else: its output is left as it is.
    void leaveOutput(const std::string& operation, unsigned int nth = 1);

    /// The `nth` call of any operation from now on returns `code` and does nothing else.
    void failAnyCall(unsigned int nth, TevReturnT code);

    /// Does `action`, unless it is null, whenever `operation` is called, before anything else; what it throws goes to
    /// the caller.
    void whenCalled(const std::string& operation, std::function<void()> action);

    /// The interface is no longer offered: `getInterface` gives -2 for it.
    void withdraw(const std::string& interfaceName);

    std::vector<FakeModel> models;

    /// The DNs of the managed objects behind the router, parents included, in the order of their listings.
    std::vector<std::string> objects;

    /// Gives an object of the router an attribute. The values are borrowed for the host's life.
    void setAttribute(const std::string& dn, const std::string& name, const DalMoAttributeValueContainer& values);

    /// Gives an object of the router an attribute of strings.
    void setTexts(const std::string& dn, const std::string& name, const std::vector<std::string>& values);

    /// A second thread context is offered in place of the first from now on; `messages` are those posted to it.
    void changeThreadContext();

    /// Every call since construction or the last `clearCalls`: "operation" or "operation argument,argument".
    std::vector<std::string> calls() const;
    void clearCalls();

    /// The component that is registered at the moment, or null.
    DalMgmtSpiComponent_2* component() const;

    /// An interface table that the registered component offers, found by name; null when there is none.
    template <class Table>
    Table* offered(const std::string& interfaceName) const {
        return reinterpret_cast<Table*>(findOffered(interfaceName));
    }

    /// The participants of a transaction, in the order of their registration.
    std::vector<DalOamSpiTransactionalResource_2*> participants(unsigned long txHandle) const;

    /// The operator messages: category and text.
    std::vector<std::pair<std::int32_t, std::string>> messages() const;

private:
    struct Tables;

    DalMgmtSpiInterface_1* findOffered(const std::string& interfaceName) const;

    /// Writes the call down; returns the code that the call ends with at once, if it has to.
    std::optional<TevReturnT> note(const std::string& operation, const std::string& arguments = "");
    const FakeModel& model(std::uint64_t handle) const;
    const char* kept(const std::string& text);

    /// A listing of the router: the keys that are left, the next one last.
    using Listing = std::vector<std::string>;

    mutable std::mutex mutex;  // guards what follows
    bool hasPortal = true;
    std::vector<std::string> noted;
    std::map<std::string, unsigned int> counts;
    unsigned int totalCount = 0;
    std::map<std::pair<std::string, unsigned int>, TevReturnT> faults;
    std::map<unsigned int, TevReturnT> faultsOfAny;
    std::map<std::string, std::function<void()>> actions;
    std::set<std::string> withdrawn;
    DalMgmtSpiComponent_2* registered = nullptr;
    std::map<unsigned long, std::vector<DalOamSpiTransactionalResource_2*>> joined;
    std::vector<std::pair<std::int32_t, std::string>> posted[2];
    unsigned int threadContextInUse = 0;
    std::map<std::pair<std::string, std::string>, DalMoAttributeValueContainer> attributes;
    // What was handed out, kept for the host's life.
    std::set<std::string> texts;
    std::deque<Listing> listings;
    std::deque<std::vector<DalMoAttributeValue>> cells;
};

}  // namespace TevTest

#endif
