#include "FakeClient.h"

#include <dlfcn.h>
#include <spawn.h>
#include <sys/stat.h>

#include <cstring>
#include <fstream>
#include <stdexcept>

namespace TevTest {

namespace {

std::string script;  // the path; empty while there is no stand-in

}  // namespace

FakeClient::FakeClient() {
    if (!script.empty()) {
        throw std::logic_error("there is a stand-in for the SFTP client already");
    }
    folder.write("known_hosts", "127.0.0.1 a key\n");
    script = folder.write("client", "#!/bin/sh\nprintf '%s\\n' \"$@\" >" + (folder.path() / "words").string() + R"(
while IFS='"' read -r command from between to rest; do
    case $command in
    version) echo 'SFTP protocol version 3' ;;
    -put*) cat "$from" >"$to" ;;
    -rename*) mv "$from" "$to" ;;
    esac
done
)");
    chmod(script.c_str(), 0700);
}

FakeClient::~FakeClient() {
    script.clear();
}

std::string FakeClient::option(const std::string& name) const {
    std::ifstream words(folder.path() / "words");
    for (std::string word; std::getline(words, word);) {
        if (word.compare(0, name.size() + 1, name + "=") == 0) {
            return word.substr(name.size() + 1);
        }
    }
    return "";
}

}  // namespace TevTest

__attribute__((visibility("default"))) int posix_spawn(pid_t* pid, const char* path,
                                                       const posix_spawn_file_actions_t* actions,
                                                       const posix_spawnattr_t* attributes, char* const words[],
                                                       char* const environment[]) {
    static auto* const systems = reinterpret_cast<decltype(&posix_spawn)>(dlsym(RTLD_NEXT, "posix_spawn"));
    const bool isClient = !TevTest::script.empty() && std::strcmp(path, "/usr/bin/sftp") == 0;
    return systems(pid, isClient ? TevTest::script.c_str() : path, actions, attributes, words, environment);
}
