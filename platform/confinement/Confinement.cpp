#include "platform/confinement/Confinement.h"

#include "platform/confinement/CallFilter.h"
#include "platform/confinement/Descriptor.h"
#include "platform/confinement/Sanitized.h"

#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <linux/landlock.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace murkwell {
namespace {

bool limit(__rlimit_resource resource, rlim_t value) {
    const rlimit both{value, value};
    return ::setrlimit(resource, &both) == 0;
}

bool setLimits(const Profile& profile) {
    constexpr rlim_t mostDescriptors = 64;
    return limit(RLIMIT_CORE, 0) && limit(RLIMIT_FSIZE, 0) && limit(RLIMIT_MEMLOCK, 0) &&
           limit(RLIMIT_NOFILE, mostDescriptors) &&
           (isSanitized || limit(RLIMIT_DATA, profile.privateMemory));
}

// Better a worker than the program with the user's work in it.
void goFirstWhenMemoryRunsOut() {
    const Descriptor file(::open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC));
    constexpr std::string_view first = "1000";
    [[maybe_unused]] const auto written = ::write(file.get(), first.data(), first.size());
}

// What a kernel of this Landlock version can forbid. The headers of Debian 12 know version 2.
struct Forbidden {
    std::uint64_t files = 0;
    std::uint64_t network = 0;
    std::uint64_t scope = 0;
};

Forbidden allThatIsKnownTo(long version) {
    const auto bits = [](int count) { return (std::uint64_t{1} << count) - 1; };
    constexpr int filesOfVersion[] = {13, 14, 15, 15,
                                      16}; // one more for REFER, TRUNCATE, IOCTL_DEV
    Forbidden all;
    all.files = bits(filesOfVersion[version < 5 ? version - 1 : 4]);
    all.network = version >= 4 ? bits(2) : 0; // bind and connect
    all.scope = version >= 6 ? bits(2) : 0;   // abstract sockets and signals
    return all;
}

std::size_t sizeKnownTo(long version) {
    return sizeof(std::uint64_t) * (version >= 6 ? 3 : version >= 4 ? 2 : 1);
}

// Places that do not exist are skipped.
bool allowReading(const Descriptor& rules, const std::filesystem::path& path) {
    const Descriptor place(::open(path.c_str(), O_PATH | O_CLOEXEC));
    struct stat about {};
    if (!place.isOpen() || ::fstat(place.get(), &about) != 0) {
        return true;
    }
    landlock_path_beneath_attr rule{LANDLOCK_ACCESS_FS_READ_FILE, place.get()};
    if (S_ISDIR(about.st_mode)) {
        rule.allowed_access |= LANDLOCK_ACCESS_FS_READ_DIR;
    }
    return ::syscall(SYS_landlock_add_rule, rules.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0U) ==
           0;
}

bool restrictFiles(const std::vector<std::filesystem::path>& readable) {
    const long version =
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) {
        return false;
    }
    const Forbidden forbidden = allThatIsKnownTo(version);
    const Descriptor rules(static_cast<int>(
        ::syscall(SYS_landlock_create_ruleset, &forbidden, sizeKnownTo(version), 0U)));
    if (!rules.isOpen()) {
        return false;
    }
    for (const auto& path : readable) {
        if (!allowReading(rules, path)) {
            return false;
        }
    }
    return ::syscall(SYS_landlock_restrict_self, rules.get(), 0U) == 0;
}

} // namespace

int restrain(const Profile& profile) {
    // Should the program be gone already, the first look at the socket tells.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    goFirstWhenMemoryRunsOut(); // while what is in /proc/self is still its own
    int missing = setLimits(profile) ? 0 : Walls::limits;
    ::prctl(PR_SET_DUMPABLE, 0);
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || !restrictFiles(profile.readable)) {
        missing |= Walls::files;
    }
    return missing;
}

int enclose(const Profile& profile) {
    return isSanitized || filterCalls(profile.startsThreads) ? 0 : Walls::calls;
}

} // namespace murkwell
