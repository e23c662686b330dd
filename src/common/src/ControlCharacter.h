#ifndef TEV_CONTROL_CHARACTER_H
#define TEV_CONTROL_CHARACTER_H

namespace Tev {

/// Whether `byte` is one of ASCII's control characters.
inline bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f;
}

}  // namespace Tev

#endif
