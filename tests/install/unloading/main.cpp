// SPDX-License-Identifier: MIT

// Loads the library that is named first, has it write the file that is named second, lets go of it,
// and says whether it is gone. Twice, since a library that was gone must come back whole.

#include <cstddef>
#include <cstdio>
#include <dlfcn.h>
#include <string_view>

namespace {

template <class Function>
Function *find(void *library, const char *name) {
    auto *symbol = reinterpret_cast<Function *>(::dlsym(library, name));
    if (symbol == nullptr) {
        std::printf("no %s\n", name);
    }
    return symbol;
}

/// Uses what keeps state for the whole process: the log, the queue, the keys.
bool use(void *library, const char *path) {
    auto *create = find<void *(const char *)>(library, "GPXCreate");
    auto *close = find<void(void *)>(library, "GPXClose");
    auto *log = find<void(std::string_view) noexcept>(
        library, "_ZN8pelluvia7logLineESt17basic_string_viewIcSt11char_traitsIcEE");
    auto *drain = find<std::size_t()>(library, "_ZN8pelluvia10mainThread5drainEv");
    auto *makeKey = find<void(void *, std::string_view)>(
        library, "_ZN8pelluvia3KeyC1ESt17basic_string_viewIcSt11char_traitsIcEE");
    if (create == nullptr || close == nullptr || log == nullptr || drain == nullptr ||
        makeKey == nullptr) {
        return false;
    }
    unsigned key = 0;
    makeKey(&key, "of nobody else");
    log("a test loads and unloads the library");
    void *document = create(path);
    if (document == nullptr || drain() != 0) {
        return false;
    }
    close(document);
    return true;
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc != 3) {
        return 2;
    }
    for (int round = 0; round < 2; ++round) {
        void *library = ::dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            std::printf("%s\n", ::dlerror());
            return 1;
        }
        if (!use(library, argv[2]) || ::dlclose(library) != 0) {
            return 1;
        }
        if (::dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) != nullptr) {
            std::puts("still loaded");
            return 1;
        }
    }
    std::puts("unloaded");
    return 0;
}
