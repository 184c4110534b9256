// Functions of the C library, defined anew. The headers that declare them are not included, since
// they rename and inline some of them.

#include "FaultyCalls.h"

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <dlfcn.h>
#include <sys/syscall.h>

namespace {

using Brenmoor::TavoRemotingLib::Torture::faultyCalls;
using Brenmoor::TavoRemotingLib::Torture::FaultyCalls;

/// Counts the call, and says whether it is to fail; then `error` is the reason.
bool Fails(const char* name, int error) {
    FaultyCalls& all = faultyCalls;
    if (!all.areCounted) {
        return false;
    }
    int i = 0;
    while (all.names[i] != nullptr && all.names[i] != name) {
        ++i;
    }
    all.names[i] = name;
    ++all.callsByName[i];
    const long number = all.calls++;
    const bool isLater = number > all.failedNumber && all.isEachLaterFailed;
    if (all.failedNumber < 0 || !(number == all.failedNumber || isLater)) {
        return false;
    }
    if (all.firstFailed == nullptr) {
        all.firstFailed = name;
    }
    errno = error;
    return true;
}

/// The C library's own function. dlsym() may need memory.
template <typename Function>
Function* Real(Function*, const char* name) {
    const bool wereCounted = faultyCalls.areCounted;
    faultyCalls.areCounted = false;
    void* const found = dlsym(RTLD_NEXT, name);
    faultyCalls.areCounted = wereCounted;
    return reinterpret_cast<Function*>(found);
}

void* Obtained(void* memory) {
    faultyCalls.liveBlocks += memory != nullptr ? 1 : 0;
    return memory;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier, bugprone-macro-parentheses): the C library's names.
extern "C" {

// The allocator behind malloc(), for those that replace it.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);
long syscall(long number, ...);
int fileno(void* stream);

#define EXPORTED __attribute__((visibility("default")))

EXPORTED void* malloc(std::size_t size) {
    return Fails("malloc", ENOMEM) ? nullptr : Obtained(__libc_malloc(size));
}

EXPORTED void* calloc(std::size_t count, std::size_t size) {
    return Fails("calloc", ENOMEM) ? nullptr : Obtained(__libc_calloc(count, size));
}

EXPORTED void* realloc(void* memory, std::size_t size) {
    if (memory != nullptr) {
        return Fails("realloc", ENOMEM) ? nullptr : __libc_realloc(memory, size);
    }
    return Fails("realloc", ENOMEM) ? nullptr : Obtained(__libc_realloc(memory, size));
}

EXPORTED void free(void* memory) {
    faultyCalls.liveBlocks -= memory != nullptr ? 1 : 0;
    __libc_free(memory);
}

// A function that fails without having done anything.
#define FAILING(result, name, parameters, arguments, failure, error)                               \
    EXPORTED result name parameters {                                                              \
        static const auto real = Real(&name, #name);                                               \
        return Fails(#name, error) ? (failure) : real arguments;                                   \
    }

FAILING(long, read, (int descriptor, void* data, std::size_t size), (descriptor, data, size), -1,
        EIO)
FAILING(long, write, (int descriptor, const void* data, std::size_t size), (descriptor, data, size),
        -1, ENOSPC)
FAILING(int, unlink, (const char* path), (path), (++faultyCalls.failedUnlinks, -1), EACCES)
FAILING(void*, fopen, (const char* path, const char* mode), (path, mode), nullptr, EMFILE)
FAILING(void*, fopen64, (const char* path, const char* mode), (path, mode), nullptr, EMFILE)
FAILING(int, stat, (const char* path, void* status), (path, status), -1, EACCES)
FAILING(int, stat64, (const char* path, void* status), (path, status), -1, EACCES)
FAILING(int, fstat, (int descriptor, void* status), (descriptor, status), -1, EIO)
FAILING(int, fstat64, (int descriptor, void* status), (descriptor, status), -1, EIO)
FAILING(int, socket, (int domain, int type, int protocol), (domain, type, protocol), -1, EMFILE)
FAILING(int, socketpair, (int domain, int type, int protocol, int* pair),
        (domain, type, protocol, pair), -1, EMFILE)
FAILING(int, connect, (int socket, const void* address, unsigned size), (socket, address, size), -1,
        ECONNREFUSED)
FAILING(long, send, (int socket, const void* data, std::size_t size, int flags),
        (socket, data, size, flags), -1, ECONNRESET)
FAILING(long, recv, (int socket, void* data, std::size_t size, int flags),
        (socket, data, size, flags), -1, ECONNRESET)
FAILING(int, poll, (void* polled, unsigned long count, int timeout), (polled, count, timeout), -1,
        ENOMEM)
FAILING(int, select, (int count, void* read, void* write, void* exception, void* timeout),
        (count, read, write, exception, timeout), -1, ENOMEM)
FAILING(int, getsockname, (int socket, void* address, unsigned* size), (socket, address, size), -1,
        ENOBUFS)
FAILING(int, getpeername, (int socket, void* address, unsigned* size), (socket, address, size), -1,
        ENOBUFS)
FAILING(int, getsockopt, (int socket, int level, int name, void* value, unsigned* size),
        (socket, level, name, value, size), -1, ENOBUFS)
FAILING(int, setsockopt, (int socket, int level, int name, const void* value, unsigned size),
        (socket, level, name, value, size), -1, ENOBUFS)

// With an argument that is not always there. A whole register is passed on in any case.
#define FAILING_WITH_MORE(name, parameters, last, arguments, error)                                \
    EXPORTED int name parameters {                                                                 \
        static const auto real = Real(&name, #name);                                               \
        va_list more;                                                                              \
        va_start(more, last);                                                                      \
        void* const argument = va_arg(more, void*);                                                \
        va_end(more);                                                                              \
        return Fails(#name, error) ? -1 : real arguments;                                          \
    }

FAILING_WITH_MORE(open, (const char* path, int flags, ...), flags, (path, flags, argument), EMFILE)
FAILING_WITH_MORE(open64, (const char* path, int flags, ...), flags, (path, flags, argument),
                  EMFILE)
FAILING_WITH_MORE(fcntl, (int descriptor, int command, ...), command,
                  (descriptor, command, argument), EINVAL)

/// Linux releases the descriptor even when it tells of an error.
EXPORTED int close(int descriptor) {
    static const auto real = Real(&close, "close");
    const int result = real(descriptor);
    return Fails("close", EIO) ? -1 : result;
}

/// Has the C library read from a descriptor that it cannot read from, so that it notes the error.
EXPORTED std::size_t fread(void* data, std::size_t size, std::size_t count, void* stream) {
    static const auto real = Real(&fread, "fread");
    if (!Fails("fread", EIO)) {
        return real(data, size, count, stream);
    }
    constexpr int writeOnly = 1;
    const int descriptor = fileno(stream);
    const long kept = syscall(SYS_dup, descriptor);
    const long other = syscall(SYS_openat, -100, "/dev/null", writeOnly);
    syscall(SYS_dup3, other, descriptor, 0);
    const std::size_t result = real(data, size, count, stream);
    syscall(SYS_dup3, kept, descriptor, 0);
    syscall(SYS_close, other);
    syscall(SYS_close, kept);
    return result;
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier, bugprone-macro-parentheses)
