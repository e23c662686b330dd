#ifndef HEAP_H
#define HEAP_H

#include <malloc.h>

#include <cstdlib>

namespace TevBench {

/// The bytes that the program has from the heap.
inline double heapBytes() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// Joins what was freed in small pieces, so that what is measured next does not have to.
inline void joinFreedPieces() {
    void* volatile const large = std::malloc(1 << 16);  // volatile, or there is no call
    std::free(large);
}

}  // namespace TevBench

#endif
