// The bench binary defines the malloc family itself; the dynamic linker then
// binds every caller in the process (the static library, libwbxml, libstdc++)
// to these wrappers, which count and forward to glibc's own entry points.
// memalign/posix_memalign/aligned_alloc are left to glibc: nothing measured
// uses them, and their blocks still come back through free() here.
#include "alloc_count.h"

extern "C" {
void *__libc_malloc(size_t);
void *__libc_calloc(size_t, size_t);
void *__libc_realloc(void *, size_t);
void __libc_free(void *);
}

namespace {
// The benchmarks run on one thread; plain counters keep the wrappers cheap.
size_t gAllocs;
size_t gFrees;
size_t gBytes;
}  // namespace

extern "C" {

void *malloc(size_t size) {
    void *p = __libc_malloc(size);
    if (p) {
        ++gAllocs;
        gBytes += size;
    }
    return p;
}

void *calloc(size_t count, size_t size) {
    void *p = __libc_calloc(count, size);
    if (p) {
        ++gAllocs;
        gBytes += count * size;
    }
    return p;
}

void *realloc(void *old, size_t size) {
    void *p = __libc_realloc(old, size);
    if (p) {
        ++gAllocs;
        gBytes += size;
        if (old) ++gFrees;
    }
    return p;
}

void free(void *p) {
    if (p) ++gFrees;
    __libc_free(p);
}

}  // extern "C"

namespace bench {

AllocStats AllocSnapshot() {
    return {gAllocs, gFrees, gBytes};
}

}  // namespace bench
