#ifndef TEV_COMMON_API_H
#define TEV_COMMON_API_H

/// Marks what `libtev_common.so` exports. An exception type must be exported by exactly one library, or a catch in
/// another library misses it.
#define TEV_COMMON_API __attribute__((visibility("default")))

#endif
