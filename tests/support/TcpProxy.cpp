#include "TcpProxy.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <system_error>
#include <vector>

namespace TevTest {

namespace {

constexpr int holdCheck = 5;  // milliseconds

int makeSocket(bool isIpv6) {
    const int opened = socket(isIpv6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (opened < 0) {
        throw std::system_error(errno, std::generic_category(), "socket");
    }
    return opened;
}

/// The loopback address with `port` (0: a free one).
socklen_t fill(sockaddr_storage& address, bool isIpv6, const std::string& port) {
    const auto number = htons(static_cast<std::uint16_t>(std::stoi(port)));
    if (isIpv6) {
        auto& six = reinterpret_cast<sockaddr_in6&>(address);
        six.sin6_family = AF_INET6;
        six.sin6_port = number;
        six.sin6_addr = in6addr_loopback;
        return sizeof six;
    }
    auto& four = reinterpret_cast<sockaddr_in&>(address);
    four.sin_family = AF_INET;
    four.sin_port = number;
    four.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return sizeof four;
}

bool sendAll(int descriptor, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t sent = TEMP_FAILURE_RETRY(send(descriptor, data, size, MSG_NOSIGNAL));
        if (sent <= 0) {
            return false;
        }
        data += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

void reset(int descriptor) {
    const linger now{1, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

}  // namespace

TcpProxy::TcpProxy(const std::string& host, const std::string& port)
    : isIpv6(host == "[::1]"), targetPort(port), listener(makeSocket(isIpv6)) {
    const int on = 1;
    setsockopt(listener, isIpv6 ? IPPROTO_IPV6 : IPPROTO_IP, isIpv6 ? IPV6_RECVTCLASS : IP_RECVTOS, &on, sizeof on);
    sockaddr_storage address{};
    socklen_t length = fill(address, isIpv6, "0");
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(listener, 64) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0 || pipe2(wakeUp, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "listen");
    }
    portText = std::to_string(ntohs(isIpv6 ? reinterpret_cast<sockaddr_in6&>(address).sin6_port
                                           : reinterpret_cast<sockaddr_in&>(address).sin_port));
    acceptor = std::thread(&TcpProxy::acceptAll, this);
}

TcpProxy::~TcpProxy() {
    close(wakeUp[1]);
    acceptor.join();
    close(wakeUp[0]);
    close(listener);
}

void TcpProxy::cutAfter(std::size_t bytes, int connections) {
    cutLimit = bytes;
    cutsLeft = connections;
}

void TcpProxy::acceptAll() {
    std::vector<std::thread> workers;
    for (;;) {
        pollfd waiting[] = {{wakeUp[0], POLLIN, 0}, {listener, POLLIN, 0}};
        TEMP_FAILURE_RETRY(poll(waiting, 2, -1));
        if (waiting[0].revents != 0) {
            break;
        }
        const int client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0) {
            lastTrafficClass = readTrafficClass(client);
            ++count;
            workers.emplace_back(&TcpProxy::serve, this, client);
        }
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
}

int TcpProxy::readTrafficClass(int client) const {
    std::array<int, 64> words{};
    socklen_t length = sizeof words;
    if (getsockopt(client, isIpv6 ? IPPROTO_IPV6 : IPPROTO_IP, isIpv6 ? IPV6_2292PKTOPTIONS : IP_PKTOPTIONS,
                   words.data(), &length) != 0) {
        return -1;
    }
    // Not as headers: for IPv6 Linux gives a 32-bit program those of 64 bit. Level, type and value follow each other in
    // both; the value is a byte, or an int below 256.
    const std::array<int, 2> kind = {isIpv6 ? IPPROTO_IPV6 : IPPROTO_IP, isIpv6 ? IPV6_TCLASS : IP_TOS};
    const int* const end = words.data() + length / sizeof(int);
    const int* const found = std::search<const int*>(words.data(), end, kind.begin(), kind.end());
    return end - found > 2 ? found[2] & 0xFF : -1;
}

int TcpProxy::connectToTarget() const {
    const int opened = makeSocket(isIpv6);
    sockaddr_storage address{};
    const socklen_t length = fill(address, isIpv6, targetPort);
    if (connect(opened, reinterpret_cast<sockaddr*>(&address), length) != 0) {
        close(opened);
        return -1;
    }
    return opened;
}

void TcpProxy::serve(int client) {
    const int server = connectToTarget();
    std::size_t carried = 0;
    while (server >= 0 && carry(client, server, carried)) {
    }
    close(client);
    if (server >= 0) {
        close(server);
    }
}

/// One piece in each direction. Returns false when the connection is over.
bool TcpProxy::carry(int client, int server, std::size_t& carried) {
    char buffer[16384];
    const bool isHeld = carried >= holdLimit;
    pollfd waiting[] = {{wakeUp[0], POLLIN, 0}, {isHeld ? -1 : client, POLLIN, 0}, {isHeld ? -1 : server, POLLIN, 0}};
    TEMP_FAILURE_RETRY(poll(waiting, 3, isHeld ? holdCheck : -1));
    if (waiting[0].revents != 0) {
        return false;
    }
    if (waiting[2].revents != 0) {
        const ssize_t received = recv(server, buffer, sizeof buffer, 0);
        if (received <= 0 || !sendAll(client, buffer, static_cast<std::size_t>(received))) {
            return false;
        }
    }
    if (waiting[1].revents == 0) {
        return true;
    }
    const ssize_t received = recv(client, buffer, sizeof buffer, 0);
    if (received <= 0 || !sendAll(server, buffer, static_cast<std::size_t>(received))) {
        return false;
    }
    carried += static_cast<std::size_t>(received);
    total += static_cast<std::size_t>(received);
    if (carried >= cutLimit && cutsLeft-- > 0) {
        reset(client);
        reset(server);
        return false;
    }
    if (rate > 0) {
        std::this_thread::sleep_for(
            std::chrono::duration<double>(static_cast<double>(received) / static_cast<double>(rate)));
    }
    return true;
}

}  // namespace TevTest
