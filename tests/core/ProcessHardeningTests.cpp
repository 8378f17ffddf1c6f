#include "core/ProcessHardening.h"

#include "core/Bitmap.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace murkwell {
namespace {

// In a process of its own; what became of it.
int statusOf(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

TEST(ProcessHardening, NoCoreIsDumpedAndOneThatIsHoldsNoPage) {
    const TemporaryFolder folder;
    const auto crash = [&](bool hardened) {
        return statusOf([&] {
            const ::rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
            ::setrlimit(RLIMIT_CORE, &unlimited);
            if (hardened) {
                hardenProcess();
            }
            const auto page = Bitmap::create(1000, 1000);
            std::ranges::fill(page->pixels(), Rgba{'p', 'a', 'g', 'e'});
            if (::chdir(folder.path.c_str()) == 0) {
                ::signal(SIGABRT, SIG_DFL);
                ::abort();
            }
        });
    };
    if (!WCOREDUMP(crash(false)) || folder.entryCount() != 1) {
        GTEST_SKIP() << "no core is dumped into a file here";
    }
    const auto core = *std::filesystem::directory_iterator(folder.path);
    const std::string dumped = contentOf(core.path());
    std::filesystem::remove(core.path());
    EXPECT_EQ(dumped.find("pagepage"), std::string::npos);
    EXPECT_GT(dumped.size(), 10000U);
    const int status = crash(true);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_FALSE(WCOREDUMP(status));
    EXPECT_EQ(folder.entryCount(), 0);
}

TEST(ProcessHardening, ClosedStandardStreamsAreNotTakenByFiles) {
    EXPECT_EQ(statusOf([] {
                  for (const int stream : {0, 1, 2}) {
                      ::close(stream);
                  }
                  hardenProcess();
                  char byte = 0;
                  const bool works = ::open("/dev/null", O_WRONLY) > 2 && ::read(0, &byte, 1) < 0 &&
                                     ::write(1, &byte, 1) < 0;
                  ::_exit(works ? 0 : 1);
              }),
              0);
}

TEST(ProcessHardening, AClosedPipeDoesNotEndTheProgram) {
    EXPECT_EQ(statusOf([] {
                  hardenProcess();
                  int ends[2];
                  (void)!::pipe(ends);
                  ::close(ends[0]);
                  ::_exit(::write(ends[1], "x", 1) < 0 ? 0 : 1);
              }),
              0);
}

TEST(Bitmap, NothingOfAPageOutlivesIt) {
    auto page = Bitmap::create(1024, 1024);
    std::ranges::fill(page->pixels(), Rgba{'p', 'a', 'g', 'e'});
    const auto place = reinterpret_cast<off_t>(page->pixels().data());
    page.reset();
    // Reads whatever is mapped there now, if anything is.
    const int memory = ::open("/proc/self/mem", O_RDONLY);
    std::string now(std::size_t{4} << 20, '\0');
    (void)!::pread(memory, now.data(), now.size(), place);
    ::close(memory);
    EXPECT_EQ(now.find("page"), std::string::npos);
}

} // namespace
} // namespace murkwell
