// Lets one call of the system fail in a program that is started with this library in LD_PRELOAD.
//
//     ORVANTA_FAULT=CALL:N:ERRNO    the N-th call of that kind (from 1) fails with that number
//     ORVANTA_FAULT_IN=NAME         only in programs of that name; children inherit the variables
//     ORVANTA_FAULT_MARK=FILE       made when the call has failed: without it, the program makes fewer calls
//
// The kinds are those of the table at the end: every function of a kind counts by the same counter.

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct Fault {
    char call[16] = "";
    long number = 0;
    int error = 0;
};

// Read without allocating: malloc is among the calls.
Fault ReadFault() {
    Fault fault;
    const char* const text = std::getenv("ORVANTA_FAULT");
    const char* const program = std::getenv("ORVANTA_FAULT_IN");
    if (text != nullptr && program != nullptr && std::strcmp(program, program_invocation_short_name) == 0) {
        std::sscanf(text, "%15[a-z]:%ld:%d", fault.call, &fault.number, &fault.error);
    }
    return fault;
}

std::atomic<long> calls = 0;

bool Fails(const char* call) {
    static const Fault fault = ReadFault();
    if (fault.number == 0 || std::strcmp(fault.call, call) != 0 || ++calls != fault.number) {
        return false;
    }
    if (const char* const mark = std::getenv("ORVANTA_FAULT_MARK")) {
        syscall(SYS_close, syscall(SYS_open, mark, O_CREAT | O_WRONLY, 0600));
    }
    errno = fault.error;
    return true;
}

template <typename Function>
Function* Real(const char* name, Function*) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int ModeOf(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, int) : 0;
}

} // namespace

#define REAL(name) static const auto real = Real(#name, &name)

#define OPEN(name)                                                                                                     \
    extern "C" int name(const char* path, int flags, ...) {                                                            \
        REAL(name);                                                                                                    \
        va_list arguments;                                                                                             \
        va_start(arguments, flags);                                                                                    \
        const int mode = ModeOf(flags, arguments);                                                                     \
        va_end(arguments);                                                                                             \
        return Fails("open") ? -1 : real(path, flags, mode);                                                           \
    }

#define OPEN_AT(name)                                                                                                  \
    extern "C" int name(int folder, const char* path, int flags, ...) {                                                \
        REAL(name);                                                                                                    \
        va_list arguments;                                                                                             \
        va_start(arguments, flags);                                                                                    \
        const int mode = ModeOf(flags, arguments);                                                                     \
        va_end(arguments);                                                                                             \
        return Fails("open") ? -1 : real(folder, path, flags, mode);                                                   \
    }

// A function whose failure is told by its result and errno.
#define CALL(kind, type, failure, name, parameters, arguments)                                                         \
    extern "C" type name parameters {                                                                                  \
        REAL(name);                                                                                                    \
        return Fails(kind) ? failure : real arguments;                                                                 \
    }

// A function that returns its error number.
#define CALL_RETURNING_ERROR(kind, name, parameters, arguments)                                                        \
    extern "C" int name parameters {                                                                                   \
        REAL(name);                                                                                                    \
        return Fails(kind) ? errno : real arguments;                                                                   \
    }

OPEN(open)
OPEN(open64)
OPEN_AT(openat)
OPEN_AT(openat64)
CALL("open", FILE*, nullptr, fopen, (const char* path, const char* mode), (path, mode))
CALL("open", FILE*, nullptr, fopen64, (const char* path, const char* mode), (path, mode))
CALL("read", ssize_t, -1, read, (int file, void* data, size_t size), (file, data, size))
CALL("write", ssize_t, -1, write, (int file, const void* data, size_t size), (file, data, size))
CALL("rename", int, -1, rename, (const char* from, const char* to), (from, to))
CALL("rename", int, -1, renameat2, (int fromFolder, const char* from, int toFolder, const char* to, unsigned flags),
     (fromFolder, from, toFolder, to, flags))
CALL("mkdir", int, -1, mkdir, (const char* path, mode_t mode), (path, mode))
CALL("stat", int, -1, stat, (const char* path, struct stat* status), (path, status))
CALL("stat", int, -1, lstat, (const char* path, struct stat* status), (path, status))
CALL("stat", int, -1, fstat, (int file, struct stat* status), (file, status))
CALL("sync", int, -1, fsync, (int file), (file))
CALL("sync", int, -1, fdatasync, (int file), (file))
CALL("pipe", int, -1, pipe, (int ends[2]), (ends))
CALL("pipe", int, -1, pipe2, (int ends[2], int flags), (ends, flags))
CALL_RETURNING_ERROR("spawn", posix_spawn,
                     (pid_t * child, const char* path, const posix_spawn_file_actions_t* actions,
                      const posix_spawnattr_t* attributes, char* const words[], char* const variables[]),
                     (child, path, actions, attributes, words, variables))
CALL_RETURNING_ERROR("spawn", posix_spawnp,
                     (pid_t * child, const char* path, const posix_spawn_file_actions_t* actions,
                      const posix_spawnattr_t* attributes, char* const words[], char* const variables[]),
                     (child, path, actions, attributes, words, variables))
CALL_RETURNING_ERROR("thread", pthread_create,
                     (pthread_t * thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument),
                     (thread, attributes, run, argument))

// Not by dlsym, which allocates itself.
extern "C" void* __libc_malloc(size_t size);

extern "C" void* malloc(size_t size) {
    return Fails("alloc") ? nullptr : __libc_malloc(size);
}
