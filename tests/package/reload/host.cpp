// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Loads a plug-in, has it use the library, and unloads it; twice. Ends with 0 when both times went well.
//
// usage: reload-host PLUGIN

#include <dlfcn.h>

#include <iostream>

namespace {

/// False, with a word on standard error, when a step fails.
bool useOnce(char const* plugin) {
    void* const loaded = ::dlopen(plugin, RTLD_NOW | RTLD_LOCAL);
    if (loaded == nullptr) {
        std::cerr << "loading fails: " << ::dlerror() << '\n';
        return false;
    }
    auto* const use = reinterpret_cast<char const* (*)()>(::dlsym(loaded, "useReader"));
    char const* const problem = use == nullptr ? ::dlerror() : use();
    if (problem != nullptr) {
        std::cerr << "using fails: " << problem << '\n';
        return false;
    }
    ::dlclose(loaded);
    if (::dlopen(plugin, RTLD_NOW | RTLD_NOLOAD) != nullptr) {
        std::cerr << "the plug-in itself stays loaded, so nothing is shown\n";
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: reload-host PLUGIN\n";
        return 2;
    }
    return useOnce(argv[1]) && useOnce(argv[1]) ? 0 : 1;
}
