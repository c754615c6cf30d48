#include "support/RealtimeGuard.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cstdlib>

namespace {
thread_local int guards = 0;
thread_local int counted = 0;
} // namespace

namespace quorel::test {

RealtimeGuard::RealtimeGuard() {
    ++guards;
}
RealtimeGuard::~RealtimeGuard() {
    --guards;
}
int RealtimeGuard::offences() {
    return counted;
}

bool RealtimeGuard::isActive() {
#ifdef QUOREL_SANITIZED
    return false;
#else
    return true;
#endif
}

} // namespace quorel::test

#ifndef QUOREL_SANITIZED
// The C library's allocator and lock, with the counter in front: definitions in the program win
// over those of shared libraries, so libraries' calls are counted too.
namespace {
void note() {
    if (guards > 0)
        ++counted;
}
} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier, readability-inconsistent-declaration-parameter-name)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) {
    note();
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    note();
    return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
    note();
    return __libc_realloc(memory, size);
}
void free(void* memory) {
    note();
    __libc_free(memory);
}
int pthread_mutex_lock(pthread_mutex_t* mutex) {
    using Lock = int (*)(pthread_mutex_t*);
    static const Lock next = reinterpret_cast<Lock>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    note();
    return next(mutex);
}
}
// NOLINTEND(bugprone-reserved-identifier, readability-inconsistent-declaration-parameter-name)
#endif
