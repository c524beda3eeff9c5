// The bench binary defines the malloc family itself; the dynamic linker then
// binds every caller in the process (the static library, libwbxml, libstdc++)
// to these wrappers, which count and forward to the next definition in lookup
// order: glibc's, or an allocator that is LD_PRELOADed or linked ahead of it
// (scudo, the handset's allocator). The aligned entry points and the C++
// operators are wrapped too, so that every block is counted the same way under
// any allocator and comes back to the allocator that made it. valloc and
// pvalloc (obsolete, used by nothing measured) are left to the allocator.
#include "alloc_count.h"

#include <dlfcn.h>
#include <malloc.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

namespace {

// The benchmarks run on one thread; plain counters keep the wrappers cheap.
size_t gAllocs;
size_t gFrees;
size_t gBytes;

void *Counted(void *p, size_t size) {
    if (p) {
        ++gAllocs;
        gBytes += size;
    }
    return p;
}

// ---- Bootstrap ---------------------------------------------------------------
// dlsym may allocate while it looks the next allocator up. Those few requests
// are carved from a static buffer that is never given back: a free of a block
// inside it is ignored, and nothing in it ever reaches the real allocator.

alignas(16) unsigned char gBoot[4096];
size_t gBootUsed;
constexpr size_t kBootHeader = 16;  // the block's size, keeping 16-byte alignment

bool InBoot(const void *p) {
    return static_cast<uintptr_t>(reinterpret_cast<const unsigned char *>(p) - gBoot) < sizeof gBoot;
}

void *BootAlloc(size_t size, size_t align = 16) {
    size_t start = (gBootUsed + kBootHeader + align - 1) & ~(align - 1);
    if (size > sizeof gBoot || start + size > sizeof gBoot)
        return nullptr;  // out of memory, as malloc says it
    memcpy(gBoot + start - sizeof size, &size, sizeof size);
    gBootUsed = start + size;
    return gBoot + start;  // zero already: the buffer is never reused
}

size_t BootSize(const void *p) {
    size_t size;
    memcpy(&size, static_cast<const unsigned char *>(p) - sizeof size, sizeof size);
    return size;
}

// ---- The next allocator ------------------------------------------------------
// Each entry starts as a stub that looks the whole table up on first use; after
// that a wrapper is one indirect call and the count.

struct Next {
    void *(*malloc)(size_t);
    void *(*calloc)(size_t, size_t);
    void *(*realloc)(void *, size_t);
    void (*free)(void *);
    int (*posix_memalign)(void **, size_t, size_t);
    void *(*aligned_alloc)(size_t, size_t);
    void *(*memalign)(size_t, size_t);
    size_t (*malloc_usable_size)(void *);
};

void *FirstMalloc(size_t size);
void *FirstCalloc(size_t count, size_t size);
void *FirstRealloc(void *old, size_t size);
void FirstFree(void *p);
int FirstPosixMemalign(void **out, size_t align, size_t size);
void *FirstAlignedAlloc(size_t align, size_t size);
void *FirstMemalign(size_t align, size_t size);
size_t FirstUsableSize(void *p);

Next gNext = {FirstMalloc,        FirstCalloc,       FirstRealloc,  FirstFree,
              FirstPosixMemalign, FirstAlignedAlloc, FirstMemalign, FirstUsableSize};
bool gResolving;

template <class Fn>
Fn Lookup(const char *name) {
    return reinterpret_cast<Fn>(dlsym(RTLD_NEXT, name));
}

// False while the lookup itself runs: the caller then serves the request from
// the bootstrap buffer.
bool Resolve() {
    if (gResolving) return false;
    gResolving = true;
    const Next next{Lookup<decltype(Next::malloc)>("malloc"),
                    Lookup<decltype(Next::calloc)>("calloc"),
                    Lookup<decltype(Next::realloc)>("realloc"),
                    Lookup<decltype(Next::free)>("free"),
                    Lookup<decltype(Next::posix_memalign)>("posix_memalign"),
                    Lookup<decltype(Next::aligned_alloc)>("aligned_alloc"),
                    Lookup<decltype(Next::memalign)>("memalign"),
                    Lookup<decltype(Next::malloc_usable_size)>("malloc_usable_size")};
    if (!next.malloc || !next.calloc || !next.realloc || !next.free || !next.posix_memalign ||
        !next.aligned_alloc || !next.memalign || !next.malloc_usable_size)
        abort();  // no allocator behind this binary: nothing to forward to
    gNext = next;
    gResolving = false;
    return true;
}

size_t BootAlign(size_t align) {
    return align < 16 ? 16 : align;
}

void *FirstMalloc(size_t size) {
    return Resolve() ? gNext.malloc(size) : BootAlloc(size);
}
void *FirstCalloc(size_t count, size_t size) {
    size_t total;
    if (!Resolve()) return __builtin_mul_overflow(count, size, &total) ? nullptr : BootAlloc(total);
    return gNext.calloc(count, size);
}
// realloc() hands bootstrap blocks to MoveBootBlock, so `old` is null here while resolving.
void *FirstRealloc(void *old, size_t size) {
    return Resolve() ? gNext.realloc(old, size) : BootAlloc(size);
}
void FirstFree(void *p) {
    if (Resolve()) gNext.free(p);
}
int FirstPosixMemalign(void **out, size_t align, size_t size) {
    if (Resolve()) return gNext.posix_memalign(out, align, size);
    *out = BootAlloc(size, BootAlign(align));
    return *out ? 0 : ENOMEM;
}
void *FirstAlignedAlloc(size_t align, size_t size) {
    return Resolve() ? gNext.aligned_alloc(align, size) : BootAlloc(size, BootAlign(align));
}
void *FirstMemalign(size_t align, size_t size) {
    return Resolve() ? gNext.memalign(align, size) : BootAlloc(size, BootAlign(align));
}
size_t FirstUsableSize(void *p) {
    return Resolve() ? gNext.malloc_usable_size(p) : 0;
}

// A bootstrap block grown or shrunk: a new block (from the real allocator once
// it is known) with the old contents; the old block stays where it is.
void *MoveBootBlock(void *old, size_t size) {
    void *p = gNext.malloc(size);
    if (p) memcpy(p, old, BootSize(old) < size ? BootSize(old) : size);
    return p;
}

}  // namespace

extern "C" {

void *malloc(size_t size) {
    return Counted(gNext.malloc(size), size);
}

void *calloc(size_t count, size_t size) {
    return Counted(gNext.calloc(count, size), count * size);
}

void *realloc(void *old, size_t size) {
    void *p = __builtin_expect(InBoot(old), 0) ? MoveBootBlock(old, size) : gNext.realloc(old, size);
    if (p) {
        ++gAllocs;
        gBytes += size;
        if (old) ++gFrees;
    }
    return p;
}

void free(void *p) {
    if (!p) return;
    ++gFrees;
    if (__builtin_expect(InBoot(p), 0)) return;
    gNext.free(p);
}

int posix_memalign(void **out, size_t align, size_t size) {
    const int err = gNext.posix_memalign(out, align, size);
    if (err == 0) Counted(*out, size);
    return err;
}

void *aligned_alloc(size_t align, size_t size) {
    return Counted(gNext.aligned_alloc(align, size), size);
}

void *memalign(size_t align, size_t size) {
    return Counted(gNext.memalign(align, size), size);
}

size_t malloc_usable_size(void *p) {
    if (!p) return 0;
    if (__builtin_expect(InBoot(p), 0)) return BootSize(p);
    return gNext.malloc_usable_size(p);
}

}  // extern "C"

// ---- C++ operators -------------------------------------------------------------
// libstdc++'s operators call malloc and so would be counted anyway, but an
// allocator that brings its own (scudo does) takes them over uncounted. These
// replacements send every C++ block through the wrappers above.

namespace {

void *NewBlock(size_t size, size_t align) {
    if (size == 0) size = 1;
    for (;;) {
        void *p = align <= __STDCPP_DEFAULT_NEW_ALIGNMENT__
                      ? malloc(size)
                      : aligned_alloc(align, (size + align - 1) & ~(align - 1));
        if (p) return p;
        const std::new_handler handler = std::get_new_handler();
        if (!handler) throw std::bad_alloc();
        handler();
    }
}

void *NewBlockOrNull(size_t size, size_t align) noexcept {
    try {
        return NewBlock(size, align);
    } catch (...) {
        return nullptr;
    }
}

size_t Align(std::align_val_t align) {
    return static_cast<size_t>(align);
}

}  // namespace

void *operator new(size_t n) {
    return NewBlock(n, 0);
}
void *operator new[](size_t n) {
    return NewBlock(n, 0);
}
void *operator new(size_t n, const std::nothrow_t &) noexcept {
    return NewBlockOrNull(n, 0);
}
void *operator new[](size_t n, const std::nothrow_t &) noexcept {
    return NewBlockOrNull(n, 0);
}
void *operator new(size_t n, std::align_val_t a) {
    return NewBlock(n, Align(a));
}
void *operator new[](size_t n, std::align_val_t a) {
    return NewBlock(n, Align(a));
}
void *operator new(size_t n, std::align_val_t a, const std::nothrow_t &) noexcept {
    return NewBlockOrNull(n, Align(a));
}
void *operator new[](size_t n, std::align_val_t a, const std::nothrow_t &) noexcept {
    return NewBlockOrNull(n, Align(a));
}
void operator delete(void *p) noexcept {
    free(p);
}
void operator delete[](void *p) noexcept {
    free(p);
}
void operator delete(void *p, size_t) noexcept {
    free(p);
}
void operator delete[](void *p, size_t) noexcept {
    free(p);
}
void operator delete(void *p, const std::nothrow_t &) noexcept {
    free(p);
}
void operator delete[](void *p, const std::nothrow_t &) noexcept {
    free(p);
}
void operator delete(void *p, std::align_val_t) noexcept {
    free(p);
}
void operator delete[](void *p, std::align_val_t) noexcept {
    free(p);
}
void operator delete(void *p, size_t, std::align_val_t) noexcept {
    free(p);
}
void operator delete[](void *p, size_t, std::align_val_t) noexcept {
    free(p);
}
void operator delete(void *p, std::align_val_t, const std::nothrow_t &) noexcept {
    free(p);
}
void operator delete[](void *p, std::align_val_t, const std::nothrow_t &) noexcept {
    free(p);
}

namespace bench {

AllocStats AllocSnapshot() {
    return {gAllocs, gFrees, gBytes};
}

std::string AllocatorName() {
    if (gNext.malloc == FirstMalloc) free(malloc(1));
    Dl_info info;
    if (!dladdr(reinterpret_cast<void *>(gNext.malloc), &info) || !info.dli_fname) return "unknown";
    const char *slash = strrchr(info.dli_fname, '/');
    const std::string file = slash ? slash + 1 : info.dli_fname;
    static const struct {
        const char *fragment;
        const char *name;
    } kKnown[] = {{"libc.so", "glibc"},
                  {"scudo", "scudo"},
                  {"jemalloc", "jemalloc"},
                  {"tcmalloc", "tcmalloc"},
                  {"mimalloc", "mimalloc"}};
    std::string name = file;
    for (const auto &k : kKnown)
        if (file.find(k.fragment) != std::string::npos) name = k.name;
    if (file.find("libc.so") != std::string::npos) return name;
    const char *preload = getenv("LD_PRELOAD");
    const bool preloaded = preload && strstr(preload, file.c_str());
    return name + " (" + (preloaded ? "LD_PRELOAD " : "linked ") + file + ")";
}

}  // namespace bench
