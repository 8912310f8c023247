// Preloaded into a program (LD_PRELOAD), makes some of the calls fail by which it changes files. The environment
// chooses them (FaultyWrites.h writes it):
//
//     FAULTY_MODE    full     no room: nothing is created, half of the first write succeeds, the others fail
//                    failing  an input/output error
//                    short    half of each write succeeds
//                    slow     20 ms later
//                    none     all succeed
//     FAULTY_FILES   the files concerned, as a pattern of fnmatch
//     FAULTY_FIRST   the number of the first call on them that fails, from 1
//     FAULTY_LAST    that of the last
//     FAULTY_LOG     the file in which each call on them is noted with a line "NAME PATH"
//
// A call is open (for writing), write, pwrite, ftruncate, fsync, fdatasync or rename (of the new name).

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#define PRELOADED extern "C" __attribute__((visibility("default")))

namespace {

constexpr long SLOW_NANOSECONDS = 20'000'000;

enum class Mode { NONE, FULL, FAILING, SHORT, SLOW };

// The definition that the program would call without this one.
template <typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

const char* variable(const char* name)
{
    const char* const pText = std::getenv(name);
    return (pText == nullptr) ? "" : pText;
}

Mode modeOfEnvironment()
{
    const struct {
        const char* name;
        Mode mode;
    } modes[] = {{"full", Mode::FULL}, {"failing", Mode::FAILING}, {"short", Mode::SHORT}, {"slow", Mode::SLOW}};
    for (const auto& entry : modes) {
        if (std::strcmp(variable("FAULTY_MODE"), entry.name) == 0) {
            return entry.mode;
        }
    }
    return Mode::NONE;
}

struct Plan {
    const Mode mode = modeOfEnvironment();
    const char* const pFiles = variable("FAULTY_FILES");
    const long first = std::strtol(variable("FAULTY_FIRST"), nullptr, 10);
    const long last = std::strtol(variable("FAULTY_LAST"), nullptr, 10);
    const int log =
        next<decltype(::open)>("open")(variable("FAULTY_LOG"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
};

const Plan& plan()
{
    static const Plan thePlan;
    return thePlan;
}

long numberOfCalls = 0;

// What happens to this call on `path`: NONE if it succeeds.
Mode fate(const char* name, const char* path)
{
    const Plan& thePlan = plan();
    if (::fnmatch(thePlan.pFiles, path, 0) != 0) {
        return Mode::NONE;
    }
    char line[PATH_MAX + 32];
    const int length = std::snprintf(line, sizeof line, "%s %s\n", name, path);
    static_cast<void>(next<decltype(::write)>("write")(thePlan.log, line, static_cast<std::size_t>(length)));
    const long number = __atomic_add_fetch(&numberOfCalls, 1, __ATOMIC_RELAXED);
    if ((number < thePlan.first) || (number > thePlan.last)) {
        return Mode::NONE;
    }
    if (thePlan.mode == Mode::SLOW) {
        const timespec pause = {0, SLOW_NANOSECONDS};
        ::nanosleep(&pause, nullptr);
    }
    return thePlan.mode;
}

Mode fate(const char* name, int file)
{
    char path[PATH_MAX];
    char link[32];
    static_cast<void>(std::snprintf(link, sizeof link, "/proc/self/fd/%d", file));
    const ssize_t length = ::readlink(link, path, sizeof path - 1);
    if (length < 0) {
        return Mode::NONE;
    }
    path[length] = '\0';
    return fate(name, path);
}

int failed(int error)
{
    errno = error;
    return -1;
}

bool exists(const char* path)
{
    struct stat status = {};
    return ::stat(path, &status) == 0;
}

bool isRoomLeft = true;  // for half a write

template <typename Write>
ssize_t faultyWrite(const char* name, int file, std::size_t size, Write write)
{
    const std::size_t half = (size + 1) / 2;
    switch (fate(name, file)) {
        case Mode::FAILING: return failed(EIO);
        case Mode::SHORT: return write(half);
        case Mode::FULL:
            if (__atomic_exchange_n(&isRoomLeft, false, __ATOMIC_RELAXED) && (size > 1)) {
                return write(half);
            }
            return failed(ENOSPC);
        case Mode::NONE:
        case Mode::SLOW: break;
    }
    return write(size);
}

int faultyOpen(const char* name, const char* path, int flags, mode_t mode)
{
    constexpr int CHANGING = O_WRONLY | O_RDWR | O_CREAT | O_TRUNC;
    const Mode theFate = ((flags & CHANGING) == 0) ? Mode::NONE : fate(name, path);
    if (theFate == Mode::FAILING) {
        return failed(EIO);
    }
    if ((theFate == Mode::FULL) && !exists(path)) {
        return failed(ENOSPC);
    }
    return next<int(const char*, int, ...)>(name)(path, flags, mode);
}

mode_t modeArgument(int flags, va_list arguments)
{
    return ((flags & O_CREAT) != 0) ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}

template <typename... Arguments>
int faultyCall(const char* name, int file, Arguments... arguments)
{
    return (fate(name, file) == Mode::FAILING) ? failed(EIO) : next<int(int, Arguments...)>(name)(file, arguments...);
}

}  // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library names them __fd and the like

PRELOADED int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeArgument(flags, arguments);
    va_end(arguments);
    return faultyOpen("open", path, flags, mode);
}

PRELOADED int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeArgument(flags, arguments);
    va_end(arguments);
    return faultyOpen("open64", path, flags, mode);
}

PRELOADED ssize_t write(int file, const void* bytes, std::size_t size)
{
    return faultyWrite("write", file, size,
                       [&](std::size_t count) { return next<decltype(::write)>("write")(file, bytes, count); });
}

PRELOADED ssize_t pwrite(int file, const void* bytes, std::size_t size, off_t offset)
{
    return faultyWrite("pwrite", file, size, [&](std::size_t count) {
        return next<decltype(::pwrite)>("pwrite")(file, bytes, count, offset);
    });
}

PRELOADED ssize_t pwrite64(int file, const void* bytes, std::size_t size, off64_t offset)
{
    return faultyWrite("pwrite64", file, size, [&](std::size_t count) {
        return next<decltype(::pwrite64)>("pwrite64")(file, bytes, count, offset);
    });
}

PRELOADED int ftruncate(int file, off_t size) noexcept
{
    return faultyCall("ftruncate", file, size);
}

PRELOADED int ftruncate64(int file, off64_t size) noexcept
{
    return faultyCall("ftruncate64", file, size);
}

PRELOADED int fsync(int file)
{
    return faultyCall("fsync", file);
}

PRELOADED int fdatasync(int file)
{
    return faultyCall("fdatasync", file);
}

PRELOADED int rename(const char* from, const char* to) noexcept
{
    return (fate("rename", to) == Mode::FAILING) ? failed(EIO) : next<decltype(::rename)>("rename")(from, to);
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
