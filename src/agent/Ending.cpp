#include "Ending.h"

#include <exception>

#include "Diagnostics.h"
#include "Failure.h"
#include "Interruption.h"

namespace TevAgent {

ExitStatus Ending::of(const std::function<ExitStatus()>& command) {
    try {
        return command();
    } catch (const Failure& e) {
        if (e.status() != ExitStatus::ReaderGone) {
            Diagnostics::say(e.what());
        }
        return e.status();
    } catch (const Interrupted& e) {
        Diagnostics::say(e.what());
        return ExitStatus::Interrupted;
    } catch (const std::exception& e) {
        Diagnostics::say(e.what());
        return ExitStatus::OperationFailed;
    }
}

}  // namespace TevAgent
