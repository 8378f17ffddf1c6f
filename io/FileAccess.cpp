#include "io/FileAccess.h"

#include "io/FileDescriptor.h"
#include "io/FilePermissions.h"
#include "io/TemporaryFile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <new>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

fs::path folderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

// Memory that is not cleared first: reading a large file would otherwise write all of it twice.
class Buffer {
public:
    explicit Buffer(std::size_t capacity)
        : bytes(std::make_unique_for_overwrite<std::byte[]>(capacity)), size(capacity) {}

    // Room behind what is filled; at least one byte.
    std::span<std::byte> room() {
        if (filled == size) {
            Buffer larger(size + size / 2 + (std::size_t{64} << 10));
            std::memcpy(larger.bytes.get(), bytes.get(), filled);
            larger.filled = filled;
            *this = std::move(larger);
        }
        return {bytes.get() + filled, size - filled};
    }

    void fill(std::size_t count) { filled += count; }

    SharedBytes share() && { return {std::move(bytes), filled}; }

private:
    std::unique_ptr<std::byte[]> bytes;
    std::size_t size;
    std::size_t filled = 0;
};

bool readAll(int descriptor, Buffer& buffer) {
    for (;;) {
        const auto room = buffer.room();
        const ssize_t count = ::read(descriptor, room.data(), room.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        if (count == 0) {
            return true;
        }
        buffer.fill(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

bool writeAll(int descriptor, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return true;
}

using Parts = std::span<const std::span<const std::byte>>;

bool writeAll(int descriptor, Parts parts) {
    return std::ranges::all_of(
        parts, [&](std::span<const std::byte> part) { return writeAll(descriptor, part); });
}

std::size_t sizeOf(Parts parts) {
    std::size_t size = 0;
    for (const auto& part : parts) {
        size += part.size();
    }
    return size;
}

// Which of this process's open files a location such as /dev/stdout stands for. Opened by that name
// a file would be written from its beginning, or a redirected one replaced.
std::optional<int> ownDescriptor(fs::path location) {
    constexpr int mostLinks = 40; // as many as the kernel follows
    std::error_code error;
    const fs::path descriptors = fs::canonical("/proc/self/fd", error);
    for (int links = 0; !error && links < mostLinks; ++links) {
        const fs::path folder = fs::canonical(folderOf(location), error);
        const std::string name = location.filename().string();
        if (!error && folder == descriptors) {
            int number = -1;
            const auto [end, failed] =
                std::from_chars(name.data(), name.data() + name.size(), number);
            const bool isNumber = failed == std::errc{} && end == name.data() + name.size();
            return isNumber ? std::optional(number) : std::nullopt;
        }
        location = folder / fs::read_symlink(location, error);
    }
    return std::nullopt;
}

bool writeInto(FileDescriptor file, Parts parts) {
    return file.isOpen() && writeAll(file.get(), parts) && file.close();
}

// Makes a rename in this folder survive a power cut. The file itself is already complete, so a
// file system that cannot do it is no failure.
void syncFolder(const fs::path& folder) {
    const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen()) {
        (void)::fsync(descriptor.get());
    }
}

enum class Outcome { done, failed, folderRefuses };

// A folder that takes no files, or does not let go of this one, leaves the file itself writable.
Outcome refusal() {
    const bool refused = errno == EACCES || errno == EPERM || errno == EROFS || errno == EBUSY;
    return refused ? Outcome::folderRefuses : Outcome::failed;
}

Outcome writeBeside(const fs::path& target, bool mayReplace, const FilePermissions& permissions,
                    Parts parts) {
    const fs::path folder = folderOf(target);
    auto temporary = TemporaryFile::create(folder);
    if (!temporary) {
        return refusal();
    }
    if (!writeAll(temporary->descriptor(), parts) || ::fsync(temporary->descriptor()) != 0) {
        return Outcome::failed;
    }
    permissions.giveTo(temporary->descriptor());
    if (!temporary->close()) {
        return Outcome::failed;
    }
    if (!temporary->become(target, mayReplace)) {
        return refusal();
    }
    syncFolder(folder);
    return Outcome::done;
}

// Takes away what the file grants beyond the permissions.
bool narrow(int descriptor, const FilePermissions& permissions) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return false;
    }
    const bool isOwnersOrOurs = permissions.owner || status.st_uid == ::geteuid();
    const mode_t allowed = status.st_mode & permissions.mode;
    return isOwnersOrOurs &&
           ((status.st_mode & 07777) == allowed || ::fchmod(descriptor, allowed) == 0);
}

// The only way where the folder is closed to us. A disk without room is noticed beforehand.
bool writeInPlace(const fs::path& target, const FilePermissions& permissions, Parts parts) {
    FileDescriptor file(::open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW));
    const auto size = static_cast<off_t>(sizeOf(parts));
    if (!file.isOpen() || !narrow(file.get(), permissions)) {
        return false;
    }
    if (::fallocate(file.get(), FALLOC_FL_KEEP_SIZE, 0, size) != 0 && errno != EOPNOTSUPP) {
        return false;
    }
    return writeAll(file.get(), parts) && ::ftruncate(file.get(), size) == 0 &&
           ::fsync(file.get()) == 0 && file.close();
}

bool replaceFile(const fs::path& target, const FilePermissions& permissions, Parts parts) {
    const Outcome outcome = writeBeside(target, true, permissions, parts);
    return outcome == Outcome::done ||
           (outcome == Outcome::folderRefuses && writeInPlace(target, permissions, parts));
}

// A file that is there, or what a link to it names.
bool replaceExisting(const fs::path& location, const fs::path* contained, Parts parts) {
    std::error_code error;
    const fs::path target = fs::canonical(location, error);
    auto permissions = FilePermissions::of(target);
    if (error || !permissions) {
        return false;
    }
    if (contained != nullptr) {
        const auto others = FilePermissions::of(*contained);
        permissions = others ? permissions->limitedTo(*others) : FilePermissions::ownerOnly();
    }
    return replaceFile(target, *permissions, parts);
}

bool createNew(const Destination& destination, bool isPrivate, Parts parts) {
    std::error_code ignored;
    if (fs::is_symlink(destination.location, ignored)) {
        return false; // leads nowhere
    }
    const auto permissions = isPrivate ? FilePermissions::ownerOnly()
                                       : FilePermissions::usual(folderOf(destination.location));
    return writeBeside(destination.location, destination.mayReplace, permissions, parts) ==
           Outcome::done;
}

bool writeFile(const Destination& destination, const fs::path* contained, Parts parts) {
    const fs::path& location = destination.location;
    if (const auto descriptor = ownDescriptor(location)) {
        return writeInto(FileDescriptor(::fcntl(*descriptor, F_DUPFD_CLOEXEC, 0)), parts);
    }
    struct stat status {};
    if (::stat(location.c_str(), &status) != 0) {
        return errno == ENOENT && createNew(destination, contained != nullptr, parts);
    }
    if (S_ISREG(status.st_mode)) {
        return destination.mayReplace && replaceExisting(location, contained, parts);
    }
    return !S_ISDIR(status.st_mode) &&
           writeInto(FileDescriptor(::open(location.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY)),
                     parts);
}

} // namespace

std::optional<SharedBytes> readFile(const fs::path& location) {
    // Without O_NONBLOCK, opening a pipe would wait for somebody to write to it.
    const FileDescriptor file(
        ::open(location.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    try {
        // One byte more than the size, so that the read that finds the end needs no new memory.
        Buffer buffer(static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1);
        if (!readAll(file.get(), buffer)) {
            return std::nullopt;
        }
        return std::move(buffer).share();
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

bool replacesFile(const fs::path& location) {
    std::error_code ignored;
    return fs::is_regular_file(location, ignored) && !ownDescriptor(location);
}

bool writeFileAtomically(const Destination& destination, std::span<const std::byte> bytes) {
    return writeFile(destination, nullptr, Parts(&bytes, 1));
}

bool writeContainerAtomically(const Destination& destination, const fs::path& contained,
                              Parts parts) {
    return writeFile(destination, &contained, parts);
}

} // namespace murkwell
