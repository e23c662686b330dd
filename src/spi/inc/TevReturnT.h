#ifndef TEV_RETURN_T_H
#define TEV_RETURN_T_H

#include <stdint.h>

/// The code that every framework operation returns: 0 for success, anything else says why not.
typedef int32_t TevReturnT;

/// The return codes that framework and components share. An operation may also hand on another code that it was
/// given itself; only 0 means success.
enum {
    TevReturnOk = 0,
    TevReturnFailure = -1,
    TevReturnNotFound = -2,  ///< no such object, attribute, class, property or interface; the end of a list
    TevReturnInvalidArgument = -8,
    TevReturnNoMemory = -10,
    TevReturnNotStarted = 2  ///< the component is registered but not started
};

#endif
