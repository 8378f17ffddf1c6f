// An open file, closed with the object that holds it.
#pragma once

#include <unistd.h>
#include <utility>

namespace murkwell {

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

} // namespace murkwell
