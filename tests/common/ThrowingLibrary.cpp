#include "TevException.h"

extern "C" __attribute__((visibility("default"))) void throwTevException() {
    throw Tev::TevException(-8, "thrown in %s", "another library");
}
