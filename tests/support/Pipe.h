#ifndef PIPE_H
#define PIPE_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

namespace TevTest {

/// The two ends of a pipe; an end that is closed has the number -1.
class Pipe {
public:
    explicit Pipe(int flags) {
        if (pipe2(ends.data(), O_CLOEXEC | flags) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
    }
    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int reading() const { return ends[0]; }
    int writing() const { return ends[1]; }

    void closeReading() { closeEnd(0); }
    void closeWriting() { closeEnd(1); }

    /// Returns once nothing more fits in, or fails when nobody can write any more.
    void waitUntilFull() const {
        const int capacity = fcntl(ends[0], F_GETPIPE_SZ);
        for (;;) {
            int filled = 0;
            ASSERT_EQ(ioctl(ends[0], FIONREAD, &filled), 0);
            if (filled >= capacity) {
                return;
            }
            pollfd writers{ends[0], 0, 0};
            ASSERT_EQ(poll(&writers, 1, 1), 0) << "no writer is left";
        }
    }

    /// Reads until nobody can write any more.
    std::string readAll() const {
        std::string all;
        std::array<char, 5000> piece{};
        for (;;) {
            pollfd waited{ends[0], POLLIN, 0};
            poll(&waited, 1, -1);
            const ssize_t length = read(ends[0], piece.data(), piece.size());
            if (length == 0) {
                return all;
            }
            if (length > 0) {
                all.append(piece.data(), static_cast<std::size_t>(length));
            }
        }
    }

private:
    void closeEnd(std::size_t end) {
        if (ends[end] >= 0) {
            close(ends[end]);
            ends[end] = -1;
        }
    }

    std::array<int, 2> ends{-1, -1};
};

}  // namespace TevTest

#endif
