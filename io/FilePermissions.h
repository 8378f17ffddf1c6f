// Who may read and write a file: its owner and group, their rights, and access lists (POSIX ACLs).
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <sys/types.h>
#include <vector>

namespace murkwell {

struct FilePermissions {
    // None where they are those that a new file gets.
    std::optional<uid_t> owner;
    std::optional<gid_t> group;
    mode_t mode; // rights only, none of the bits above them
    // As the kernel passes it; empty when there is none. With one, the group's rights in the mode
    // are the most that anybody in the list has.
    std::vector<std::byte> accessList;

    // What a new file in the folder gets: by the folder's own list or by the user's mask.
    [[nodiscard]] static FilePermissions usual(const std::filesystem::path& folder);

    [[nodiscard]] static FilePermissions ownerOnly() { return {{}, {}, 0600, {}}; }

    // None when the file is not there. Links are followed.
    [[nodiscard]] static std::optional<FilePermissions> of(const std::filesystem::path& file);

    // These, without whatever would let somebody in whom the others keep out.
    [[nodiscard]] FilePermissions limitedTo(const FilePermissions& others) const;

    // Gives them to a file that so far is its owner's alone, as far as the system allows. What it
    // does not allow leaves the file closed to those it was meant for, never open to others.
    void giveTo(int descriptor) const;
};

} // namespace murkwell
