#ifndef FAKE_CLIENT_H
#define FAKE_CLIENT_H

#include <string>

#include "EnvironmentVariable.h"
#include "TempFolder.h"

namespace TevTest {

/// While it lives, a script is started wherever the program or its libraries start the SFTP client. The script connects
/// to nobody, asks for no password, and takes remote paths for paths of this machine. The state folder of transfers is
/// a fresh one, in which the key of the host 127.0.0.1 is known. There is one at a time.
class FakeClient {
public:
    FakeClient();
    ~FakeClient();
    FakeClient(const FakeClient&) = delete;
    FakeClient& operator=(const FakeClient&) = delete;

    /// The value of the option `name` ("-oPort", say) on the command line of the client that was started last; empty
    /// when it has none.
    std::string option(const std::string& name) const;

private:
    const TempFolder folder;
    const EnvironmentVariable stateFolder{"TEV_STATE_DIR", folder.path().string()};
};

}  // namespace TevTest

#endif
