#include "EmptyCall.h"

namespace TevBench {

void emptyCall() {}

}  // namespace TevBench
