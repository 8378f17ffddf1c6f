#include "io/TemporaryFile.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

std::mutex turns;

// What the signal handler removes. It may run at any moment, on any thread.
std::array<char, PATH_MAX> livingPath;
std::atomic<bool> isLiving{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void endBy(int signal) {
    if (isLiving.load()) {
        ::unlink(livingPath.data());
    }
    ::raise(signal); // which does now what it did before it had a handler
}

// Cannot be guessed: the handler may remove the file by its name while it is being made, and must
// never find somebody else's.
fs::path unguessablePath(const fs::path& folder) {
    std::uint64_t bits = 0;
    if (::getrandom(&bits, sizeof bits, 0) != static_cast<ssize_t>(sizeof bits)) {
        return {};
    }
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(bits));
    return folder / (std::string(".murkwell-") + digits.data());
}

// For file systems that cannot rename without replacing: the name is taken first.
bool renameToFreeName(const char* from, const char* to) {
    FileDescriptor reserved(::open(to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!reserved.isOpen()) {
        return false;
    }
    if (!reserved.close() || ::rename(from, to) != 0) {
        ::unlink(to);
        return false;
    }
    return true;
}

bool renameWithoutReplacing(const char* from, const char* to) {
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return true;
    }
    return (errno == EINVAL || errno == ENOSYS) && renameToFreeName(from, to);
}

} // namespace

std::optional<TemporaryFile> TemporaryFile::create(const fs::path& folder) {
    std::unique_lock turn(turns);
    fs::path path = unguessablePath(folder);
    if (path.empty() || path.native().size() >= livingPath.size()) {
        errno = ENAMETOOLONG;
        return std::nullopt;
    }
    std::memcpy(livingPath.data(), path.c_str(), path.native().size() + 1);
    isLiving = true; // before it is: a signal in between must find it
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        isLiving = false;
        return std::nullopt;
    }
    return TemporaryFile(std::move(turn), std::move(path), descriptor);
}

TemporaryFile::~TemporaryFile() {
    if (!path.empty()) {
        ::unlink(path.c_str());
        isLiving = false;
    }
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : turn(std::move(other.turn)), path(std::exchange(other.path, {})),
      file(std::move(other.file)) {}

bool TemporaryFile::become(const fs::path& target, bool mayReplace) {
    const bool renamed = mayReplace ? ::rename(path.c_str(), target.c_str()) == 0
                                    : renameWithoutReplacing(path.c_str(), target.c_str());
    if (renamed) {
        path.clear();
        isLiving = false;
    }
    return renamed;
}

void removeTemporaryFileOnSignals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction present {};
        if (::sigaction(signal, nullptr, &present) != 0 || present.sa_handler == SIG_IGN) {
            continue;
        }
        struct sigaction ending {};
        ending.sa_handler = endBy;
        ending.sa_flags = static_cast<int>(SA_RESETHAND);
        ::sigaction(signal, &ending, nullptr);
    }
}

} // namespace murkwell
