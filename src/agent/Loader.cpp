#include "Loader.h"

#include <dlfcn.h>

namespace TevAgent {

namespace {

// The loader's functions are declared to throw nothing, but what a library runs while it is loaded or unloaded may
// throw all the same. Through a pointer that can change, the compiler cannot know whom it calls, and keeps the way
// open.
void* (*volatile loadLibrary)(const char*, int) = dlopen;
int (*volatile unloadLibrary)(void*) = dlclose;

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
    return reason.compare(0, prefix.size(), prefix) == 0 ? reason.substr(prefix.size()) : reason;
}

}  // namespace TevAgent
