#include "tests/platform/confinement/Attempts.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <linux/bpf.h>
#include <linux/io_uring.h>
#include <linux/perf_event.h>
#include <linux/sched.h>
#include <linux/userfaultfd.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/personality.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <thread>
#include <unistd.h>

namespace murkwell {
namespace {

constexpr int channel = 3;
constexpr std::size_t page = 4096;

template <typename... Arguments>
long call(long number, Arguments... arguments) {
    return ::syscall(number, arguments...);
}

long orError(const void* pointer) {
    return pointer == MAP_FAILED || pointer == nullptr ? -1 : 0;
}

long mapMemory(std::size_t size, int protection, int flags) {
    return orError(::mmap(nullptr, size, protection, flags | MAP_ANONYMOUS, -1, 0));
}

long makeExecutable(long number) {
    void* const memory =
        ::mmap(nullptr, page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return call(number, memory, page, PROT_READ | PROT_EXEC, -1);
}

// A new process ends at once.
long asParent(long child) {
    if (child == 0) {
        ::_exit(0);
    }
    return child;
}

long readMemoryOf(pid_t victim) {
    static int value = 1; // at the same place in it
    int copy = 0;
    const iovec here{&copy, sizeof copy};
    const iovec there{&value, sizeof value};
    return ::process_vm_readv(victim, &here, 1, &there, 1, 0);
}

long newLimit(__rlimit_resource resource) {
    rlimit limit{};
    ::getrlimit(resource, &limit);
    limit.rlim_cur = limit.rlim_max;
    return ::setrlimit(resource, &limit);
}

long onAnotherThread() {
    long result = -1;
    int error = 0;
    std::thread([&] {
        result = ::open("/etc/passwd", O_RDONLY);
        error = errno;
    }).join();
    errno = error;
    return result;
}

long callOf32Bit() {
    long result = -1;
    constexpr long getpidOf32Bit = 20;
    asm volatile("int $0x80" : "=a"(result) : "a"(getpidOf32Bit) : "memory");
    return result;
}

constexpr auto root = Attempt::Succeeds::forRoot;
constexpr auto some = Attempt::Succeeds::onSomeKernels;

constexpr Attempt all[] = {
    // Files.
    {"open a file", [](pid_t) { return long{::open("/etc/passwd", O_RDONLY)}; }},
    {"open it on another thread", [](pid_t) { return onAnotherThread(); }},
    {"open a folder of libraries",
     [](pid_t) { return long{::open("/usr/lib", O_RDONLY | O_DIRECTORY)}; }},
    {"open the root", [](pid_t) { return long{::open("/", O_RDONLY | O_DIRECTORY)}; }},
    {"open a device", [](pid_t) { return long{::open("/dev/null", O_RDWR)}; }},
    {"read its own memory map", [](pid_t) { return long{::open("/proc/self/status", O_RDONLY)}; }},
    {"make a temporary file",
     [](pid_t) { return long{::open("/tmp", O_TMPFILE | O_WRONLY, 0600)}; }},
    {"openat2",
     [](pid_t) {
         const std::uint64_t how[3]{O_RDONLY, 0, 0};
         return call(SYS_openat2, AT_FDCWD, "/etc/passwd", how, sizeof how);
     }},
    {"stat",
     [](pid_t) {
         struct stat about {};
         return long{::stat("/etc/passwd", &about)};
     }},
    {"access", [](pid_t) { return long{::access("/etc/passwd", R_OK)}; }},
    {"statfs",
     [](pid_t) {
         struct statfs about {};
         return long{::statfs("/", &about)};
     }},
    {"readlink",
     [](pid_t) {
         char name[64];
         return static_cast<long>(::readlink("/proc/self/exe", name, sizeof name));
     }},
    {"getcwd",
     [](pid_t) {
         char name[64];
         return orError(::getcwd(name, sizeof name));
     }},
    {"chdir", [](pid_t) { return long{::chdir("/usr")}; }},
    {"chroot", [](pid_t) { return long{::chroot("/")}; }, root},
    {"mount", [](pid_t) { return call(SYS_mount, "none", "/", "", 0x44000, ""); }, root},
    {"inotify_init", [](pid_t) { return call(SYS_inotify_init1, 0); }},
    {"ioctl",
     [](pid_t) {
         int waiting = 0;
         return call(SYS_ioctl, channel, 0x541B /* FIONREAD */, &waiting);
     }},
    // Sockets and other ways out.
    {"a socket to the network", [](pid_t) { return long{::socket(AF_INET, SOCK_DGRAM, 0)}; }},
    {"a local socket", [](pid_t) { return long{::socket(AF_UNIX, SOCK_STREAM, 0)}; }},
    {"a socket to the kernel", [](pid_t) { return long{::socket(AF_NETLINK, SOCK_RAW, 0)}; }},
    {"socketpair",
     [](pid_t) {
         int ends[2];
         return long{::socketpair(AF_UNIX, SOCK_STREAM, 0, ends)};
     }},
    {"connect",
     [](pid_t) {
         // What is connected may be told to forget it.
         sockaddr nowhere{};
         nowhere.sa_family = AF_UNSPEC;
         return long{::connect(::socket(AF_INET, SOCK_DGRAM, 0), &nowhere, sizeof nowhere)};
     }},
    {"setsockopt",
     [](pid_t) {
         const int size = 1 << 16;
         return long{::setsockopt(channel, SOL_SOCKET, SO_SNDBUF, &size, sizeof size)};
     }},
    {"pipe",
     [](pid_t) {
         int ends[2];
         return long{::pipe(ends)};
     }},
    {"eventfd", [](pid_t) { return call(SYS_eventfd2, 0, 0); }},
    {"epoll", [](pid_t) { return call(SYS_epoll_create1, 0); }},
    {"dup", [](pid_t) { return long{::dup(channel)}; }},
    {"fcntl", [](pid_t) { return long{::fcntl(channel, F_DUPFD, 10)}; }},
    {"memfd", [](pid_t) { return long{::memfd_create("x", 0)}; }},
    {"shmget",
     [](pid_t) {
         const long made = call(SYS_shmget, IPC_PRIVATE, page, 0600);
         return made < 0 ? made : call(SYS_shmctl, made, IPC_RMID, nullptr);
     }},
    {"message queue",
     [](pid_t) {
         const long made = call(SYS_mq_open, "murkwell-probe", O_CREAT | O_RDWR, 0600, nullptr);
         return made < 0 ? made : call(SYS_mq_unlink, "murkwell-probe");
     }},
    // Other processes.
    {"signal the program", [](pid_t) { return long{::kill(::getppid(), 0)}; }, root},
    {"signal another process", [](pid_t victim) { return long{::kill(victim, 0)}; }},
    {"signal another thread", [](pid_t victim) { return call(SYS_tgkill, victim, victim, 0); }},
    {"pidfd_open", [](pid_t victim) { return call(SYS_pidfd_open, victim, 0); }},
    {"prlimit of another",
     [](pid_t victim) {
         rlimit limit{};
         return long{::prlimit(victim, RLIMIT_CPU, nullptr, &limit)};
     }},
    {"setpriority of another",
     [](pid_t victim) { return long{::setpriority(PRIO_PROCESS, static_cast<id_t>(victim), 19)}; }},
    {"sched_setaffinity of another",
     [](pid_t victim) {
         cpu_set_t all_;
         ::sched_getaffinity(0, sizeof all_, &all_);
         return long{::sched_setaffinity(victim, sizeof all_, &all_)};
     }},
    {"ptrace of another",
     [](pid_t victim) { return ::ptrace(PTRACE_SEIZE, victim, nullptr, nullptr); }},
    {"memory of another", readMemoryOf},
    {"run a program",
     [](pid_t) {
         char name[] = "probe";
         char task[] = "executed";
         char* const arguments[] = {name, task, nullptr};
         return long{::execve("/proc/self/exe", arguments, nullptr)};
     }},
    {"fork", [](pid_t) { return asParent(call(SYS_fork)); }},
    {"clone", [](pid_t) { return asParent(call(SYS_clone, SIGCHLD, 0, 0, 0, 0)); }},
    {"clone3",
     [](pid_t) {
         clone_args how{};
         how.exit_signal = SIGCHLD;
         return asParent(call(SYS_clone3, &how, sizeof how));
     }},
    {"a user namespace", [](pid_t) { return call(SYS_unshare, CLONE_NEWUSER); }, some},
    {"leave its files", [](pid_t) { return call(SYS_unshare, CLONE_FILES); }},
    // Its own walls.
    {"raise its limits", [](pid_t) { return newLimit(RLIMIT_DATA); }},
    {"outlive the program", [](pid_t) { return long{::prctl(PR_SET_PDEATHSIG, 0)}; }},
    {"become dumpable", [](pid_t) { return long{::prctl(PR_SET_DUMPABLE, 1)}; }},
    {"another personality", [](pid_t) { return long{::personality(READ_IMPLIES_EXEC)}; }},
    // Memory.
    {"memory to write and run",
     [](pid_t) { return mapMemory(page, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE); }},
    {"make memory code", [](pid_t) { return makeExecutable(SYS_mprotect); }},
    {"make memory code, by key", [](pid_t) { return makeExecutable(SYS_pkey_mprotect); }},
    {"memory that no limit counts",
     [](pid_t) { return mapMemory(page, PROT_READ | PROT_WRITE, MAP_SHARED); }},
    {"more memory than it may have",
     [](pid_t) {
         return mapMemory(std::size_t{64} << 30, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_NORESERVE);
     }},
    {"lock memory",
     [](pid_t) {
         static char memory[page];
         return long{::mlock(memory, page)};
     }},
    // Wide doors of the kernel.
    {"io_uring",
     [](pid_t) {
         io_uring_params how{};
         return call(SYS_io_uring_setup, 4, &how);
     },
     some},
    {"bpf",
     [](pid_t) {
         bpf_attr how{};
         how.map_type = BPF_MAP_TYPE_ARRAY;
         how.key_size = how.value_size = 4;
         how.max_entries = 1;
         return call(SYS_bpf, BPF_MAP_CREATE, &how, sizeof how);
     },
     some},
    {"perf_event_open",
     [](pid_t) {
         perf_event_attr how{};
         how.type = PERF_TYPE_SOFTWARE;
         how.size = sizeof how;
         how.exclude_kernel = 1;
         return call(SYS_perf_event_open, &how, 0, -1, -1, 0);
     },
     some},
    {"userfaultfd", [](pid_t) { return call(SYS_userfaultfd, UFFD_USER_MODE_ONLY); }, some},
    {"add_key", [](pid_t) { return call(SYS_keyctl, 0 /* get id */, -2 /* of process */, 1); },
     some},
    {"a call of 32 bits", [](pid_t) { return callOf32Bit(); }, some},
};

} // namespace

std::span<const Attempt> attempts() {
    return all;
}

} // namespace murkwell
