#include "io/FileAccess.h"

#include "io/TemporaryFile.h"
#include "tests/support/FakeEngines.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

bool write(const fs::path& file, std::string_view content) {
    return writeFileAtomically(file, bytesOf(content));
}

TEST(ReadFile, BytesOfFilesOfAnySize) {
    const TemporaryFolder folder;
    for (const std::size_t size : {0U, 1U, 4096U, 300000U}) {
        const auto bytes = readFile(folder.write("file", std::string(size, 'x')));
        ASSERT_TRUE(bytes);
        EXPECT_TRUE(std::ranges::equal(bytes->bytes(), bytesOf(std::string(size, 'x'))));
    }
}

TEST(ReadFile, NoneForWhatIsNoFile) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(readFile(folder / "missing"));
    EXPECT_FALSE(readFile(folder.path));
    EXPECT_FALSE(readFile(folder / "pipe"));
    EXPECT_FALSE(readFile("/dev/zero"));
}

TEST(WriteFileAtomically, LeavesNothingOfALongerFile) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", std::string(10000, 's'));
    ASSERT_TRUE(write(file, "new"));
    EXPECT_EQ(contentOf(file), "new");
    EXPECT_EQ(folder.entryCount(), 1);
}

mode_t modeOf(const fs::path& file) {
    struct stat status {};
    EXPECT_EQ(::stat(file.c_str(), &status), 0) << file;
    return status.st_mode & 07777;
}

// As the kernel passes it; empty when there is none.
std::string accessListOf(const fs::path& file) {
    std::string list(1000, '\0');
    const ssize_t size =
        ::getxattr(file.c_str(), "system.posix_acl_access", list.data(), list.size());
    list.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return list;
}

// Lets the user 4711 read and write, others not at all. False where there are no such lists.
bool giveAccessList(const fs::path& file, const char* name) {
    const auto entry = [](char tag, char rights, std::string_view id = "\xFF\xFF\xFF\xFF") {
        return std::string{tag, 0, rights, 0}.append(id);
    };
    const std::string list = std::string("\2\0\0\0", 4) + entry(1, 6) +
                             entry(2, 6, std::string_view("\x67\x12\0\0", 4)) + entry(4, 4) +
                             entry(16, 6) + entry(32, 0);
    return ::setxattr(file.c_str(), name, list.data(), list.size(), 0) == 0;
}

TEST(WriteFileAtomically, AReplacedFileKeepsItsRightsAndLinks) {
    const TemporaryFolder folder;
    fs::create_symlink("file", folder / "link");
    for (const mode_t mode : {0600U, 0640U, 0666U, 0444U, 06755U}) {
        const auto file = folder.write("file", "old");
        ASSERT_EQ(::chmod(file.c_str(), mode), 0);
        ASSERT_TRUE(write(folder / "link", "new"));
        EXPECT_TRUE(fs::is_symlink(folder / "link"));
        EXPECT_EQ(contentOf(file), "new");
        EXPECT_EQ(modeOf(file), mode & 0777) << std::oct << mode;
        fs::remove(file);
    }
}

TEST(WriteFileAtomically, AccessListsDecideAsTheyDoForAnyOtherFile) {
    const TemporaryFolder folder;
    const auto listed = folder.write("listed", "old");
    const auto plain = folder.write("plain", "old");
    ::chmod(plain.c_str(), 0640);
    if (!giveAccessList(listed, "system.posix_acl_access") ||
        !giveAccessList(folder.path, "system.posix_acl_default")) {
        GTEST_SKIP() << "a file system without access lists";
    }
    const std::string list = accessListOf(listed);
    ASSERT_TRUE(write(listed, "new") && write(plain, "new") && write(folder / "new", "new"));
    EXPECT_EQ(accessListOf(listed), list);
    EXPECT_EQ(accessListOf(plain), "");
    EXPECT_EQ(modeOf(plain), 0640);
    const auto usual = folder.write("usual", "made by the library");
    EXPECT_EQ(accessListOf(folder / "new"), accessListOf(usual));
    EXPECT_EQ(modeOf(folder / "new"), modeOf(usual));
    // A file that is its owner's alone does not pass on what the list grants.
    const auto source = folder.write("source", "secret");
    ASSERT_EQ(::removexattr(source.c_str(), "system.posix_acl_access"), 0);
    ::chmod(source.c_str(), 0600);
    ASSERT_TRUE(writeContainerAtomically(listed, source, {}));
    EXPECT_EQ(accessListOf(listed), "");
    EXPECT_EQ(modeOf(listed), 0600);
}

TEST(WriteContainerAtomically, NobodyReadsItWhoMayNotReadWhatItHolds) {
    const TemporaryFolder folder;
    struct Case {
        std::optional<mode_t> before;
        std::optional<mode_t> source; // none: it has gone
        mode_t after;
    };
    for (const Case& c : {Case{{}, 0644, 0600},
                          {0644, 0600, 0600},
                          {0666, 0640, 0640},
                          {0640, 0644, 0640},
                          {0644, {}, 0600}}) {
        const auto file = folder / "file";
        const auto source = folder / "source";
        for (const auto& [path, mode] : {std::pair{file, c.before}, {source, c.source}}) {
            fs::remove(path);
            if (mode) {
                folder.write(path.filename().string(), "");
                ::chmod(path.c_str(), *mode);
            }
        }
        ASSERT_TRUE(writeContainerAtomically(file, source, {}));
        EXPECT_EQ(modeOf(file), c.after);
    }
}

TEST(WriteFileAtomically, ANewFileGetsThePermissionsThatTheUserGivesFiles) {
    const TemporaryFolder folder;
    const mode_t mask = ::umask(027);
    const bool written = write(folder / "file", "new");
    ::umask(mask);
    ASSERT_TRUE(written);
    EXPECT_EQ(fs::status(folder / "file").permissions(), fs::perms(0640));
}

TEST(WriteFileAtomically, WithoutLeaveNothingIsReplaced) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", "old");
    const auto bytes = bytesOf("new");
    EXPECT_FALSE(writeFileAtomically(Destination(file, false), bytes));
    // One that comes while the new bytes are written.
    EXPECT_FALSE(TemporaryFile::create(folder.path)->become(file, false));
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_EQ(folder.entryCount(), 1);
    EXPECT_TRUE(writeFileAtomically(Destination(folder / "free", false), bytes));
}

TEST(WriteFileAtomically, AFileInAClosedFolderIsOverwritten) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", std::string(1000, 'o'));
    ::chmod(file.c_str(), 0666);
    ::chmod(folder.path.c_str(), 0555);
    const uid_t nobody = 65534;
    const bool isRoot = ::geteuid() == 0 && ::seteuid(nobody) == 0; // whom no rights hold back
    const bool written = write(file, "new");
    const bool made = write(folder / "other", "new");
    if (isRoot) {
        EXPECT_EQ(::seteuid(0), 0);
    }
    ::chmod(folder.path.c_str(), 0755);
    EXPECT_TRUE(written);
    EXPECT_FALSE(made);
    EXPECT_EQ(contentOf(file), "new");
}

TEST(TemporaryFile, IsItsOwnersAloneAndGoneAfterASignal) {
    const TemporaryFolder folder;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::umask(0);
            removeTemporaryFileOnSignals();
            const auto file = TemporaryFile::create(folder.path);
            struct stat status {};
            if (file && ::fstat(file->descriptor(), &status) == 0 &&
                (status.st_mode & 07777) == 0600) {
                ::raise(signal);
            }
            ::_exit(1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_EQ(folder.entryCount(), 0);
    }
}

TEST(WriteFileAtomically, FailuresLeaveEverythingAsItWas) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "folder");
    EXPECT_FALSE(write(folder / "folder", "new"));
    EXPECT_FALSE(write(folder / "missing" / "file", "new"));
    EXPECT_FALSE(write(folder / std::string(300, 'n'), "new"));
    fs::create_symlink("nowhere", folder / "dangling");
    fs::create_symlink("loop", folder / "loop");
    EXPECT_FALSE(write(folder / "dangling", "new"));
    EXPECT_FALSE(write(folder / "loop", "new"));
    EXPECT_TRUE(fs::is_symlink(folder / "loop"));
    EXPECT_EQ(folder.entryCount(), 3);
}

TEST(WriteFileAtomically, AWriteThatBreaksOffLeavesTheOldFile) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", "old");
    // Stands for a full disk: no file of this process may grow beyond 1,000 bytes.
    ::rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const ::rlimit small{1000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    auto* const handler = ::signal(SIGXFSZ, SIG_IGN);
    const bool written = write(file, std::string(5000, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written);
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_EQ(folder.entryCount(), 1);
}

TEST(WriteFileAtomically, AFullDiskLeavesTheOldFile) {
    const TemporaryFolder folder;
    if (::mount("tmpfs", folder.path.c_str(), "tmpfs", 0, "size=64k") != 0) {
        GTEST_SKIP() << "only root may mount a small file system";
    }
    const auto file = folder.write("file", "old");
    EXPECT_FALSE(write(file, std::string(200000, 'x')));
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_EQ(folder.entryCount(), 1);
    ::umount(folder.path.c_str());
}

TEST(WriteFileAtomically, WhatIsNoFileOrOpenIsWrittenToAndNeverReplaced) {
    const TemporaryFolder folder;
    EXPECT_TRUE(write("/dev/null", "anything"));
    EXPECT_FALSE(write("/dev/full", "anything"));
    EXPECT_TRUE(fs::is_character_file("/dev/null") && fs::is_character_file("/dev/full"));
    // As a shell passes >>file on, under its usual name and behind a link.
    const auto file = folder.write("file", "before ");
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_APPEND);
    const fs::path name = "/dev/fd/" + std::to_string(descriptor);
    fs::create_symlink(name, folder / "link");
    EXPECT_TRUE(write(name, "one ") && write(folder / "link", "two"));
    EXPECT_FALSE(replacesFile(name) || replacesFile("/dev/null"));
    ::close(descriptor);
    EXPECT_FALSE(write(name, "anything"));
    EXPECT_EQ(contentOf(file), "before one two");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
}

} // namespace
} // namespace murkwell
