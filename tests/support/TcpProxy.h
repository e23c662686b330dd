#ifndef TCP_PROXY_H
#define TCP_PROXY_H

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>

namespace TevTest {

/// A loopback port that hands every connection on to another one, counts, and can be told to break. The operations may
/// be called while connections are there.
class TcpProxy {
public:
    /// `host` is 127.0.0.1 or [::1]; the proxy listens on the same.
    TcpProxy(const std::string& host, const std::string& port);
    ~TcpProxy();
    TcpProxy(const TcpProxy&) = delete;
    TcpProxy& operator=(const TcpProxy&) = delete;

    const std::string& port() const { return portText; }

    /// Resets a connection once it has carried `bytes` from the client; the next `connections` of them.
    void cutAfter(std::size_t bytes, int connections = 1);

    /// Hands nothing on any more once a connection has carried `bytes` from the client, until `resume`.
    void holdAfter(std::size_t bytes) { holdLimit = bytes; }
    void resume() { holdLimit = noLimit; }

    /// Hands on so many bytes from the client in a second.
    void slowDownTo(std::size_t bytesPerSecond) { rate = bytesPerSecond; }

    /// What all connections have carried from the client.
    std::size_t bytes() const { return total; }

    int connections() const { return count; }

    /// The traffic-class byte of the last connection's first packets.
    int trafficClass() const { return lastTrafficClass; }

private:
    static constexpr std::size_t noLimit = static_cast<std::size_t>(-1);

    void acceptAll();
    void serve(int client);
    bool carry(int client, int server, std::size_t& carried);
    int connectToTarget() const;
    int readTrafficClass(int client) const;

    bool isIpv6;
    std::string targetPort;
    std::string portText;
    int listener = -1;
    int wakeUp[2] = {-1, -1};  // a pipe whose writing end is closed at the end
    std::atomic<std::size_t> cutLimit{noLimit};
    std::atomic<int> cutsLeft{0};
    std::atomic<std::size_t> holdLimit{noLimit};
    std::atomic<std::size_t> rate{0};
    std::atomic<std::size_t> total{0};
    std::atomic<int> count{0};
    std::atomic<int> lastTrafficClass{-1};
    std::thread acceptor;
};

}  // namespace TevTest

#endif
