#include "io/FileAccess.h"

#include "tests/support/FakeEngines.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
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

TEST(WriteFileAtomically, KeepsPermissionsAndLinks) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", "old");
    fs::permissions(file, fs::perms(0640));
    fs::create_symlink("file", folder / "link");
    ASSERT_TRUE(write(folder / "link", "new"));
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(contentOf(file), "new");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
}

TEST(WriteFileAtomically, ANewFileGetsThePermissionsThatTheUserGivesFiles) {
    const TemporaryFolder folder;
    const mode_t mask = ::umask(027);
    const bool written = write(folder / "file", "new");
    ::umask(mask);
    ASSERT_TRUE(written);
    EXPECT_EQ(fs::status(folder / "file").permissions(), fs::perms(0640));
}

TEST(WriteFileAtomically, FailuresLeaveEverythingAsItWas) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "folder");
    EXPECT_FALSE(write(folder / "folder", "new"));
    EXPECT_FALSE(write(folder / "missing" / "file", "new"));
    EXPECT_FALSE(write(folder / std::string(300, 'n'), "new"));
    EXPECT_EQ(folder.entryCount(), 1);
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

TEST(WriteFileAtomically, WritesToADeviceInsteadOfReplacingIt) {
    EXPECT_TRUE(write("/dev/null", "anything"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

} // namespace
} // namespace murkwell
