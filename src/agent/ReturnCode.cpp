#include "ReturnCode.h"

namespace TevAgent {

namespace {

const char* meaningOf(TevReturnT code) {
    switch (code) {
        case TevReturnFailure:
            return " (failure)";
        case TevReturnNotFound:
            return " (not found)";
        case TevReturnInvalidArgument:
            return " (invalid argument)";
        case TevReturnNoMemory:
            return " (no memory)";
        case TevReturnNotStarted:
            return " (not started)";
        default:
            return "";
    }
}

}  // namespace

std::string ReturnCode::text(TevReturnT code) {
    return std::to_string(code) + meaningOf(code);
}

}  // namespace TevAgent
