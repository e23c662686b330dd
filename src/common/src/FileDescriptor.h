#ifndef TEV_FILE_DESCRIPTOR_H
#define TEV_FILE_DESCRIPTOR_H

namespace Tev {

/// Owns an open file descriptor; -1 when it owns none.
class FileDescriptor {
public:
    FileDescriptor() = default;

    /// Takes over `descriptor`, which is close-on-exec, and moves it to 10 or above: a host may have closed its
    /// standard streams, and the numbers below are those that a child process is given. A negative one, the result of a
    /// call that failed, throws std::system_error with `errno` and `what`.
    FileDescriptor(int descriptor, const char* what);
    ~FileDescriptor();
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;

    int get() const { return descriptor; }
    void close() noexcept;

private:
    int descriptor = -1;
};

}  // namespace Tev

#endif
