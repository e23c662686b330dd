#include "FakeResolver.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace TevTest {

struct FakeResolver::Hooks {
    static FakeResolver* current;

    static int give(const char* host, const char* service, const addrinfo* hints, addrinfo** result) {
        const addrinfo none{};
        if (current == nullptr || service != nullptr || hints == nullptr ||
            std::memcmp(hints, &none, sizeof none) != 0) {
            throw std::logic_error("getaddrinfo was called in another way than expected");
        }
        const std::lock_guard<std::mutex> lock(current->mutex);
        current->hosts.emplace_back(host);
        const auto answer = current->answers.find(host);
        if (answer == current->answers.end()) {
            return giveSystems(host, result);
        }
        if (answer->second.error == 0) {
            std::vector<addrinfo> list(answer->second.families.size());
            for (std::size_t i = 0; i < list.size(); ++i) {
                list[i].ai_family = answer->second.families[i];
                list[i].ai_next = i + 1 < list.size() ? &list[i + 1] : nullptr;
            }
            *result = current->lists.emplace_back(std::move(list)).data();
        }
        return answer->second.error;
    }

    static int giveSystems(const char* host, addrinfo** result) {
        static auto* const systems = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
        addrinfo hints{};
        hints.ai_flags = AI_NUMERICHOST;
        addrinfo*& list = current->systemLists.emplace_back();
        const int error = systems(host, nullptr, &hints, &list);
        if (error == 0) {
            *result = list;
        } else {
            current->systemLists.pop_back();
        }
        return error;
    }

    static void take(addrinfo* list) {
        const std::lock_guard<std::mutex> lock(current->mutex);
        static auto* const systems = reinterpret_cast<decltype(&freeaddrinfo)>(dlsym(RTLD_NEXT, "freeaddrinfo"));
        const auto ours = std::find_if(current->lists.begin(), current->lists.end(),
                                       [list](const std::vector<addrinfo>& given) { return given.data() == list; });
        const auto system = std::find(current->systemLists.begin(), current->systemLists.end(), list);
        if (list == nullptr) {
            current->releases.emplace_back("null");
        } else if (ours != current->lists.end()) {
            current->lists.erase(ours);
            current->releases.emplace_back("list");
        } else if (system != current->systemLists.end()) {
            systems(list);
            current->systemLists.erase(system);
            current->releases.emplace_back("list");
        } else {
            current->releases.emplace_back("unknown");
        }
    }
};

FakeResolver* FakeResolver::Hooks::current = nullptr;

FakeResolver::FakeResolver() {
    if (Hooks::current != nullptr) {
        throw std::logic_error("there is a resolver already");
    }
    Hooks::current = this;
    releases.reserve(1000);  // nothing may be thrown when a list is freed
}

FakeResolver::~FakeResolver() {
    Hooks::current = nullptr;
}

void FakeResolver::setFamilies(const std::string& host, const std::vector<int>& families) {
    answers[host] = {0, families};
}

void FakeResolver::setError(const std::string& host, int error) {
    answers[host] = {error, {}};
}

}  // namespace TevTest

extern "C" {

__attribute__((visibility("default"))) int getaddrinfo(const char* host, const char* service, const addrinfo* hints,
                                                       addrinfo** result) {
    return TevTest::FakeResolver::Hooks::give(host, service, hints, result);
}

__attribute__((visibility("default"))) void freeaddrinfo(addrinfo* list) noexcept {
    TevTest::FakeResolver::Hooks::take(list);
}
}
