// A file that is written beside the one it shall become.
#pragma once

#include "io/FileDescriptor.h"

#include <filesystem>
#include <mutex>
#include <optional>

namespace murkwell {

// There is one at a time; other threads wait for their turn.
class TemporaryFile {
public:
    // A new, empty file that nobody but its owner may read. None when the folder takes no files;
    // errno tells why. Its short name fits wherever the name of what it becomes does.
    [[nodiscard]] static std::optional<TemporaryFile> create(const std::filesystem::path& folder);

    // Removes it, unless it has become something.
    ~TemporaryFile();
    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    TemporaryFile& operator=(TemporaryFile&&) = delete;

    [[nodiscard]] int descriptor() const { return file.get(); }
    [[nodiscard]] bool close() { return file.close(); }

    // Takes the name of the target, in the same folder. A file that has it is replaced only if that
    // is allowed. False, with errno, when it cannot be done.
    [[nodiscard]] bool become(const std::filesystem::path& target, bool mayReplace);

private:
    TemporaryFile(std::unique_lock<std::mutex> heldTurn, std::filesystem::path name, int descriptor)
        : turn(std::move(heldTurn)), path(std::move(name)), file(descriptor) {}

    std::unique_lock<std::mutex> turn;
    std::filesystem::path path; // empty once it has become something
    FileDescriptor file;
};

// From then on a signal that ends the program (INT, TERM, HUP, QUIT) removes the temporary file
// that there may be. Signals that are ignored stay so.
void removeTemporaryFileOnSignals();

} // namespace murkwell
