#ifndef FAKE_RESOLVER_H
#define FAKE_RESOLVER_H

#include <netdb.h>

#include <cstddef>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace TevTest {

/// Takes the place of the system's `getaddrinfo` and `freeaddrinfo`, for the program and its libraries. While it lives
/// it answers for the names that it was told; addresses in digits are the system's business, and nobody asks the
/// network. There is one at a time. It answers several threads; a test sets and reads it while none asks.
class FakeResolver {
public:
    FakeResolver();
    ~FakeResolver();
    FakeResolver(const FakeResolver&) = delete;
    FakeResolver& operator=(const FakeResolver&) = delete;

    /// From now on `host` has addresses of these families, in this order.
    void setFamilies(const std::string& host, const std::vector<int>& families);

    /// From now on `host` cannot be resolved, for the reason `error` of `getaddrinfo`.
    void setError(const std::string& host, int error);

    /// The hosts that were asked for. A call with a service, or with hints that are not all zero, throws.
    std::vector<std::string> asked() const { return hosts; }

    /// How many lists were given and not yet freed.
    std::size_t held() const { return lists.size() + systemLists.size(); }

    /// What was freed, in order: "list" for one that was held, "null", or "unknown".
    std::vector<std::string> freed() const { return releases; }

    /// The diverted functions' way in.
    struct Hooks;

private:
    struct Answer {
        int error;
        std::vector<int> families;
    };

    std::map<std::string, Answer> answers;
    std::mutex mutex;  // held while what follows changes
    std::vector<std::string> hosts;
    std::vector<std::string> releases;
    std::list<std::vector<addrinfo>> lists;  // held
    std::list<addrinfo*> systemLists;        // held, of the system
};

}  // namespace TevTest

#endif
