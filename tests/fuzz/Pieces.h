#ifndef PIECES_H
#define PIECES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace TevFuzz {

/// An input made of several texts, which may hold any byte: a line that begins with "|" begins a new one.
class Pieces {
public:
    Pieces(const std::uint8_t* data, std::size_t size) : rest(reinterpret_cast<const char*>(data), size) {}

    /// The next text; empty when there is none left.
    std::string next() {
        const std::size_t end = rest.find(separator);
        const std::string piece = rest.substr(0, end);
        rest = end == std::string::npos ? "" : rest.substr(end + std::string(separator).size());
        return piece;
    }

private:
    static constexpr const char* separator = "\n|";

    std::string rest;
};

}  // namespace TevFuzz

#endif
