#include "Loader.h"

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <optional>

#include "OpenFile.h"

namespace TevAgent {

namespace {

// The loader's functions are declared to throw nothing, but what a library runs while it is loaded or unloaded may
// throw all the same. Through a pointer that can change, the compiler cannot know whom it calls, and keeps the way
// open.
void* (*volatile loadLibrary)(const char*, int) = dlopen;
int (*volatile unloadLibrary)(void*) = dlclose;

/// What a file begins with if it is a program or a library; nothing when it cannot be read.
std::optional<Elf64_Ehdr> headOf(const char* file) {
    const OpenFile opened(file, O_RDONLY | O_NONBLOCK);
    Elf64_Ehdr head{};
    // As far as it is the same for every width.
    const ssize_t size = pread(opened.descriptor, &head, offsetof(Elf64_Ehdr, e_version), 0);
    return size == -1 ? std::nullopt : std::optional(head);
}

/// What is wrong with a file that could not be loaded, where the loader does not tell; it takes one for another machine
/// for a file that is not there.
std::string hintFor(const std::string& file) {
    const auto head = headOf(file.c_str());
    const auto own = headOf("/proc/self/exe");
    if (!head || !own) {
        return "";
    }
    if (std::memcmp(head->e_ident, ELFMAG, SELFMAG) != 0) {
        return "; it is no shared library, so name the component's .so file";
    }
    const bool isOfThisMachine = head->e_ident[EI_CLASS] == own->e_ident[EI_CLASS] &&
                                 head->e_ident[EI_DATA] == own->e_ident[EI_DATA] && head->e_machine == own->e_machine;
    return isOfThisMachine ? "" : "; it is made for another machine than this program, so build it for this one";
}

}  // namespace

void* Loader::load(const std::string& file) {
    return loadLibrary(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

int Loader::unload(void* library) {
    return unloadLibrary(library);
}

void* Loader::find(void* library, const char* symbol) {
    return dlsym(library, symbol);
}

std::string Loader::lastError(const std::string& file) {
    const char* const text = dlerror();
    const std::string reason = text == nullptr ? "no reason given" : text;
    const std::string prefix = file + ": ";
    return (reason.compare(0, prefix.size(), prefix) == 0 ? reason.substr(prefix.size()) : reason) + hintFor(file);
}

}  // namespace TevAgent
