#include "io/FileAccess.h"

#include <algorithm>
#include <cerrno>
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

class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor) : value(descriptor) {}
    ~FileDescriptor() { (void)close(); }
    FileDescriptor(FileDescriptor&& other) noexcept : value(std::exchange(other.value, -1)) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    FileDescriptor& operator=(FileDescriptor&&) = delete;

    [[nodiscard]] bool isOpen() const { return value >= 0; }
    [[nodiscard]] int get() const { return value; }

    // Some file systems report a failed write only here.
    [[nodiscard]] bool close() {
        const int descriptor = std::exchange(value, -1);
        return descriptor < 0 || ::close(descriptor) == 0;
    }

private:
    int value;
};

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

bool writeDirectly(const fs::path& location, Parts parts) {
    FileDescriptor file(::open(location.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
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

// A new file beside the target, for this process alone. Its short name fits wherever the target's
// does. Empty path on failure.
std::pair<FileDescriptor, fs::path> createTemporary(const fs::path& folder) {
    constexpr int attempts = 100;
    for (int i = 0; i < attempts; ++i) {
        const fs::path path =
            folder / (".murkwell-" + std::to_string(::getpid()) + "-" + std::to_string(i));
        FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (file.isOpen()) {
            return {std::move(file), path};
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return {FileDescriptor(-1), fs::path()};
}

// Permissions: those of the file that is replaced; none for a new file, which gets the usual ones.
bool replaceFile(const fs::path& target, std::optional<mode_t> permissions, Parts parts) {
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    auto [file, temporary] = createTemporary(folder);
    if (!file.isOpen()) {
        return false;
    }
    const bool replaced = writeAll(file.get(), parts) &&
                          (!permissions || ::fchmod(file.get(), *permissions) == 0) &&
                          ::fsync(file.get()) == 0 && file.close() &&
                          ::rename(temporary.c_str(), target.c_str()) == 0;
    if (!replaced) {
        ::unlink(temporary.c_str());
        return false;
    }
    syncFolder(folder);
    return true;
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

bool writeFileAtomically(const fs::path& location, std::span<const std::byte> bytes) {
    return writeFileAtomically(location, Parts(&bytes, 1));
}

bool writeFileAtomically(const fs::path& location, Parts parts) {
    std::error_code error;
    const fs::path resolved = fs::canonical(location, error);
    struct stat status {};
    if (error || ::stat(resolved.c_str(), &status) != 0) {
        return replaceFile(location, std::nullopt, parts);
    }
    if (S_ISREG(status.st_mode)) {
        return replaceFile(resolved, status.st_mode & 07777, parts);
    }
    return !S_ISDIR(status.st_mode) && writeDirectly(resolved, parts);
}

} // namespace murkwell
