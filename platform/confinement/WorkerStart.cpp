#include "platform/confinement/Sanitized.h"
#include "platform/confinement/WorkerProcess.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <system_error>

namespace murkwell {
namespace {

// What a worker may know of its surroundings: where models and language data lie, which it cannot
// read any more when it sees the first foreign byte.
std::vector<std::string> environmentOfWorker() {
    std::vector<std::string> kept{"LC_ALL=C.UTF-8"};
    for (const char* const name :
         {"HOME", "XDG_CACHE_HOME", "MURKWELL_MODELS", "TESSDATA_PREFIX", "ASAN_OPTIONS",
          "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* const value = std::getenv(name)) {
            kept.push_back(std::string(name) + "=" + value);
        }
    }
    return kept;
}

// As exec wants it: refers to the strings.
std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> result;
    for (std::string& string : strings) {
        result.push_back(string.data());
    }
    result.push_back(nullptr);
    return result;
}

class FileActions {
public:
    // Standard input and output are /dev/null, then comes the channel, then nothing.
    explicit FileActions(const Descriptor& channel) {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDWR, 0);
        ::posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDOUT_FILENO);
        if (!isSanitized) {
            ::posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDERR_FILENO);
        }
        ::posix_spawn_file_actions_adddup2(&actions, channel.get(), descriptorOfChannel);
        ::posix_spawn_file_actions_addclosefrom_np(&actions, descriptorOfChannel + 1);
        ::posix_spawn_file_actions_addchdir_np(&actions, "/");
    }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    posix_spawn_file_actions_t actions{};
};

// Signals as a fresh program has them, whatever this one has made of them.
class Attributes {
public:
    Attributes() {
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_init(&attributes);
        ::posix_spawnattr_setsigmask(&attributes, &none);
        ::posix_spawnattr_setsigdefault(&attributes, &all);
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~Attributes() { ::posix_spawnattr_destroy(&attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    posix_spawnattr_t attributes{};
};

} // namespace

std::unique_ptr<WorkerProcess> WorkerProcess::start(const std::filesystem::path& program,
                                                    std::vector<std::string> arguments) {
    auto [ours, theirs] = Channel::pair();
    if (!ours.isOpen() || !theirs.isOpen()) {
        return nullptr;
    }
    arguments.insert(arguments.begin(), program.string());
    auto environment = environmentOfWorker();
    const FileActions files(theirs);
    const Attributes signals;
    pid_t child = -1;
    if (::posix_spawn(&child, program.c_str(), &files.actions, &signals.attributes,
                      pointers(arguments).data(), pointers(environment).data()) != 0) {
        return nullptr;
    }
    return std::unique_ptr<WorkerProcess>(new WorkerProcess(child, std::move(ours)));
}

std::filesystem::path installedWorkers() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return program.parent_path().parent_path() / "libexec" / "murkwell";
}

} // namespace murkwell
