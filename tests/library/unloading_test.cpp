// Loads the library at run time, uses it and unloads it, again and again. Each round must leave the
// process as it was: the host of a plug-in may do this for weeks.
//
// Arguments: the library, then the libraries of Qt. These stay loaded all the time, since Qt leaves
// some memory behind whenever it is unloaded.
//
// Run it with GLIBC_TUNABLES=glibc.malloc.tcache_count=0: otherwise released blocks that the
// allocator keeps for the thread would count as in use.
//
// The program is linked only with the dynamic loader.

#include <dlfcn.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
#define HAS_OTHER_ALLOCATOR 1 // which keeps released memory for a while
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HAS_OTHER_ALLOCATOR 1
#endif
#endif
#ifndef HAS_OTHER_ALLOCATOR
#define HAS_OTHER_ALLOCATOR 0
#endif

namespace {

constexpr int WarmUpRounds = 10; // until every cache of the libraries below has its size
constexpr int Rounds = 100;

// Less than a block, or a tenth of a page, in each round.
constexpr long AllowedHeapBytes = Rounds * 24;
constexpr long AllowedPages = Rounds / 10;

const char* const Settings = ":/adexp/adexp.ini";
const char* const Message = "-TITLE IFPL -ARCID EIN21K -ADEP EIDW -NOSUCHFIELD X";

bool fail(const char* text)
{
    std::fprintf(stderr, "%s\n", text ? text : "");
    return false;
}

template <typename Function>
Function* symbol(void* library, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(library, name));
}

bool use(void* library)
{
    auto* const init = symbol<int(const char*, int)>(library, "init_adexp");
    auto* const clear = symbol<void()>(library, "clear_adexp");
    auto* const convert =
        symbol<const char*(const char*, unsigned, unsigned*)>(library, "convert_from_adexp");
    auto* const release = symbol<void(const char*)>(library, "free_adexp");
    if (!init || !clear || !convert || !release)
        return fail("a function is missing");
    if (init(Settings, static_cast<int>(std::strlen(Settings))) != 0)
        return fail("the rule set is not loaded");
    unsigned length = 0;
    const char* const document =
        convert(Message, static_cast<unsigned>(std::strlen(Message)), &length);
    const bool isConverted = document && length == std::strlen(document);
    release(document);
    clear();
    return isConverted || fail("the message is not converted");
}

bool loadUseAndUnload(const char* path)
{
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return fail(dlerror());
    const bool isUsable = use(library);
    if (dlclose(library) != 0)
        return fail(dlerror());
    return isUsable;
}

bool repeat(int rounds, const char* path)
{
    for (int i = 0; i < rounds; ++i)
        if (!loadUseAndUnload(path))
            return false;
    return true;
}

struct Memory
{
    long pages = 0;     // mapped, without those of the heap
    long heapBytes = 0; // in use

    static Memory now()
    {
        // How much of the heap the allocator gives back to the kernel depends on which block
        // happens to lie at its end, and so even on the length of the library's path.
        const struct mallinfo2 heap = mallinfo2();
        Memory memory;
        std::ifstream("/proc/self/statm") >> memory.pages;
        memory.pages -= static_cast<long>(heap.arena + heap.hblkhd) / sysconf(_SC_PAGESIZE);
        memory.heapBytes = static_cast<long>(heap.uordblks);
        return memory;
    }
};

bool isMapped(const std::string& path)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(path) != std::string::npos)
            return true;
    return false;
}

bool leavesNothing(const char* path)
{
    if (!repeat(WarmUpRounds, path))
        return false;
    const Memory before = Memory::now();
    if (!repeat(Rounds, path))
        return false;
    const Memory after = Memory::now();
    if (isMapped(path))
        return fail("the library is still mapped");
    std::printf("heap %ld -> %ld bytes, mapped %ld -> %ld pages\n", before.heapBytes,
                after.heapBytes, before.pages, after.pages);
    if (HAS_OTHER_ALLOCATOR)
        return true;
    if (after.heapBytes - before.heapBytes >= AllowedHeapBytes)
        return fail("memory in use grows");
    if (after.pages - before.pages >= AllowedPages)
        return fail("mapped memory grows");
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return 2;
    for (int i = 2; i < argc; ++i) {
        if (!dlopen(argv[i], RTLD_NOW | RTLD_GLOBAL)) {
            fail(dlerror());
            return 2;
        }
    }
    return leavesNothing(argv[1]) ? 0 : 1;
}
