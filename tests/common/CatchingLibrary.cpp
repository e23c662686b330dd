#include <cstddef>
#include <cstdio>

#include "TevException.h"

/// Calls `function` and puts down the text of a Tev::TevException that it throws. Returns the exception's code, 1 when
/// nothing is thrown, 2 for any other exception.
extern "C" __attribute__((visibility("default"))) int catchTevException(void (*function)(), char* text,
                                                                        std::size_t size) {
    try {
        function();
    } catch (const Tev::TevException& exception) {
        std::snprintf(text, size, "%s", exception.what());
        return exception.getReturnCode();
    } catch (...) {
        return 2;
    }
    return 1;
}
