#include "io/FilePermissions.h"

#include <cerrno>
#include <cstring>
#include <linux/limits.h>
#include <linux/posix_acl.h>
#include <linux/posix_acl_xattr.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

constexpr const char* accessListName = "system.posix_acl_access";
constexpr const char* defaultListName = "system.posix_acl_default";
constexpr mode_t allRights = 0777;
constexpr mode_t ownersRights = 0700;

// Empty when there is none, or when the file system knows none.
std::vector<std::byte> listOf(const fs::path& file, const char* name) {
    std::vector<std::byte> list(XATTR_SIZE_MAX);
    const ssize_t size = ::getxattr(file.c_str(), name, list.data(), list.size());
    list.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return list;
}

// The list that a folder gives its files, without the right to execute them.
void forgetExecution(std::vector<std::byte>& list) {
    for (std::size_t at = sizeof(posix_acl_xattr_header);
         at + sizeof(posix_acl_xattr_entry) <= list.size(); at += sizeof(posix_acl_xattr_entry)) {
        posix_acl_xattr_entry entry{};
        std::memcpy(&entry, &list[at], sizeof entry);
        if (le16toh(entry.e_tag) != ACL_USER && le16toh(entry.e_tag) != ACL_GROUP) {
            entry.e_perm = htole16(le16toh(entry.e_perm) & ~ACL_EXECUTE);
            std::memcpy(&list[at], &entry, sizeof entry);
        }
    }
}

mode_t userMask() {
    // It cannot be read alone. What another thread makes meanwhile is too closed, not too open.
    const mode_t mask = ::umask(0077);
    ::umask(mask);
    return mask;
}

// For a group that is not the one which the rights were meant for: those that both the group and
// everybody else have.
mode_t forAnyGroup(mode_t mode) {
    const mode_t common = (mode >> 3) & mode & 07;
    return (mode & ownersRights) | common << 3 | common;
}

} // namespace

FilePermissions FilePermissions::usual(const fs::path& folder) {
    FilePermissions result{{}, {}, 0666 & ~userMask(), listOf(folder, defaultListName)};
    forgetExecution(result.accessList);
    return result;
}

std::optional<FilePermissions> FilePermissions::of(const fs::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return FilePermissions{status.st_uid, status.st_gid, status.st_mode & allRights,
                           listOf(file, accessListName)};
}

FilePermissions FilePermissions::limitedTo(const FilePermissions& others) const {
    if (accessList != others.accessList) {
        return ownerOnly();
    }
    FilePermissions result(*this);
    result.mode &= others.mode;
    if (owner != others.owner) {
        result.owner.reset(); // then whoever writes the file, who must have read the other, has it
    }
    if (group != others.group) {
        result.mode = accessList.empty() ? forAnyGroup(mode) & forAnyGroup(others.mode)
                                         : mode & others.mode & ownersRights;
        result.accessList.clear();
    }
    return result;
}

void FilePermissions::giveTo(int descriptor) const {
    struct stat own {};
    if (::fstat(descriptor, &own) != 0) {
        return;
    }
    if (owner && *owner != own.st_uid) {
        (void)!::fchown(descriptor, *owner, static_cast<gid_t>(-1)); // only root can
    }
    mode_t allowed = mode;
    bool takesList = !accessList.empty();
    if (group && *group != own.st_gid &&
        ::fchown(descriptor, static_cast<uid_t>(-1), *group) != 0) {
        allowed = takesList ? mode & ownersRights : forAnyGroup(mode);
        takesList = false;
    }
    if (takesList) {
        if (::fsetxattr(descriptor, accessListName, accessList.data(), accessList.size(), 0) == 0) {
            return; // the mode follows from it
        }
        allowed &= ownersRights;
    }
    // A list that came from the folder would come to life with the group's rights.
    if (::fremovexattr(descriptor, accessListName) == 0 || errno == ENODATA ||
        errno == EOPNOTSUPP) {
        (void)::fchmod(descriptor, allowed);
    }
}

} // namespace murkwell
