#include "Heap.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/socket.h>
#include <unistd.h>

// What is here takes the place of the C library's calls of these names, in every object of the
// process. Of the calls that the C library makes within itself, those for memory come here too, all
// others stay its own: what realloc() moves is not counted as copied.
#define STANDS_IN extern "C" __attribute__((visibility("default")))

// NOLINTBEGIN(bugprone-reserved-identifier,clang-analyzer-security.insecureAPI.bcopy)

// Other names of the same calls, which need no looking up.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
void bcopy(const void* from, void* to, std::size_t size);
}

namespace {

std::atomic<unsigned long> allocations;
std::atomic<unsigned long> copied;
std::atomic<long> inUse;
std::atomic<long> inUseAtStart;
std::atomic<long> mostInUse;
std::atomic<long> openAtStart;
std::atomic<long> mostOpen;

void Raise(std::atomic<long>& most, long value) {
    long known = most;
    while (value > known && !most.compare_exchange_weak(known, value)) {
    }
}

void* Counted(void* memory) {
    if (memory != nullptr) {
        ++allocations;
        Raise(mostInUse, inUse += static_cast<long>(malloc_usable_size(memory)));
    }
    return memory;
}

void Uncount(void* memory) {
    inUse -= static_cast<long>(malloc_usable_size(memory));
}

long OpenDescriptors() {
    constexpr int limit = 256;
    long open = 0;
    for (int descriptor = 0; descriptor < limit; ++descriptor) {
        open += fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
    }
    return open;
}

void* Copied(void* to, const void* from, std::size_t size) {
    copied += size;
    bcopy(from, to, size);
    return to;
}

ssize_t Transferred(ssize_t count) {
    if (count > 0) {
        copied += static_cast<unsigned long>(count);
    }
    return count;
}

} // namespace

// The C library's own function, found once.
#define NEXT(function) (*next_##function)
#define FIND(function)                                                                             \
    static const auto next_##function =                                                            \
        reinterpret_cast<decltype(&::function)>(dlsym(RTLD_NEXT, #function))

void BenchStart() {
    allocations = 0;
    copied = 0;
    inUseAtStart = inUse.load();
    mostInUse = inUse.load();
    openAtStart = OpenDescriptors();
    mostOpen = openAtStart.load();
}

BenchCounts BenchStop() {
    Raise(mostOpen, OpenDescriptors());
    return {allocations, static_cast<unsigned long>(mostInUse - inUseAtStart), copied,
            static_cast<unsigned long>(mostOpen - openAtStart)};
}

STANDS_IN void* malloc(std::size_t size) {
    return Counted(__libc_malloc(size));
}

STANDS_IN void* calloc(std::size_t count, std::size_t size) {
    return Counted(__libc_calloc(count, size));
}

STANDS_IN void* realloc(void* memory, std::size_t size) {
    const long before = static_cast<long>(malloc_usable_size(memory));
    void* const moved = __libc_realloc(memory, size);
    if (moved != nullptr || size == 0) {
        inUse -= before;
    }
    return Counted(moved);
}

STANDS_IN void* memalign(std::size_t alignment, std::size_t size) {
    return Counted(__libc_memalign(alignment, size));
}

STANDS_IN void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return Counted(__libc_memalign(alignment, size));
}

STANDS_IN int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = Counted(__libc_memalign(alignment, size));
    return *memory != nullptr ? 0 : ENOMEM;
}

STANDS_IN void free(void* memory) {
    Uncount(memory);
    __libc_free(memory);
}

STANDS_IN void* memcpy(void* to, const void* from, std::size_t size) {
    return Copied(to, from, size);
}

STANDS_IN void* memmove(void* to, const void* from, std::size_t size) {
    return Copied(to, from, size);
}

// As compilers write them that check sizes.
STANDS_IN void* __memcpy_chk(void* to, const void* from, std::size_t size, std::size_t) {
    return Copied(to, from, size);
}

STANDS_IN void* __memmove_chk(void* to, const void* from, std::size_t size, std::size_t) {
    return Copied(to, from, size);
}

STANDS_IN std::size_t fread(void* to, std::size_t size, std::size_t count, FILE* file) {
    FIND(fread);
    const std::size_t read = NEXT(fread)(to, size, count, file);
    copied += read * size;
    return read;
}

STANDS_IN ssize_t read(int descriptor, void* to, std::size_t size) {
    FIND(read);
    return Transferred(NEXT(read)(descriptor, to, size));
}

STANDS_IN ssize_t write(int descriptor, const void* from, std::size_t size) {
    FIND(write);
    return Transferred(NEXT(write)(descriptor, from, size));
}

STANDS_IN ssize_t recv(int descriptor, void* to, std::size_t size, int flags) {
    FIND(recv);
    return Transferred(NEXT(recv)(descriptor, to, size, flags));
}

STANDS_IN ssize_t recvmsg(int descriptor, msghdr* message, int flags) {
    FIND(recvmsg);
    return Transferred(NEXT(recvmsg)(descriptor, message, flags));
}

STANDS_IN ssize_t send(int descriptor, const void* from, std::size_t size, int flags) {
    FIND(send);
    return Transferred(NEXT(send)(descriptor, from, size, flags));
}

STANDS_IN ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
    FIND(sendmsg);
    return Transferred(NEXT(sendmsg)(descriptor, message, flags));
}

// The most descriptors are open just before one is closed.
STANDS_IN int close(int descriptor) {
    FIND(close);
    Raise(mostOpen, OpenDescriptors());
    return NEXT(close)(descriptor);
}

STANDS_IN int fclose(FILE* file) {
    FIND(fclose);
    Raise(mostOpen, OpenDescriptors());
    return NEXT(fclose)(file);
}

// NOLINTEND(bugprone-reserved-identifier,clang-analyzer-security.insecureAPI.bcopy)
