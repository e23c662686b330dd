#ifndef EMPTY_CALL_H
#define EMPTY_CALL_H

namespace TevBench {

/// A call into another shared library that does nothing.
__attribute__((visibility("default"))) void emptyCall();

}  // namespace TevBench

#endif
