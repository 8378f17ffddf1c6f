#include "platform/confinement/CallFilter.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <linux/sched.h>
#include <memory>
#include <seccomp.h>
#include <span>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>
#include <vector>

namespace murkwell {
namespace {

// What nothing honest in a worker ever tries: there is no use in letting it go on.
constexpr int attacks[] = {
    SCMP_SYS(execve),
    SCMP_SYS(execveat),
    SCMP_SYS(fork),
    SCMP_SYS(vfork),
    SCMP_SYS(ptrace),
    SCMP_SYS(process_vm_readv),
    SCMP_SYS(process_vm_writev),
    SCMP_SYS(connect),
    SCMP_SYS(bind),
    SCMP_SYS(bpf),
    SCMP_SYS(perf_event_open),
    SCMP_SYS(userfaultfd),
    SCMP_SYS(io_uring_setup),
    SCMP_SYS(add_key),
    SCMP_SYS(keyctl),
    SCMP_SYS(unshare),
    SCMP_SYS(setns),
    SCMP_SYS(mount),
    SCMP_SYS(init_module),
    SCMP_SYS(finit_module),
    SCMP_SYS(kexec_load),
};

constexpr int always[] = {
    // memory
    SCMP_SYS(brk),
    SCMP_SYS(munmap),
    SCMP_SYS(mremap),
    SCMP_SYS(madvise),
    // messages, and descriptors that came with them
    SCMP_SYS(read),
    SCMP_SYS(write),
    SCMP_SYS(recvmsg),
    SCMP_SYS(sendmsg),
    SCMP_SYS(close),
    SCMP_SYS(fstat),
    SCMP_SYS(lseek),
    // clocks and what the C library asks about the machine
    SCMP_SYS(clock_gettime),
    SCMP_SYS(clock_nanosleep),
    SCMP_SYS(nanosleep),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(time),
    SCMP_SYS(getrandom),
    SCMP_SYS(sysinfo),
    SCMP_SYS(getcpu),
    SCMP_SYS(getpid),
    SCMP_SYS(gettid),
    // locks and the end
    SCMP_SYS(futex),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
};

constexpr int ofThreads[] = {
    SCMP_SYS(sched_yield), SCMP_SYS(sched_getaffinity), SCMP_SYS(set_robust_list),
    SCMP_SYS(rseq),        SCMP_SYS(rt_sigaction),
};

// As the C library starts one, and no new process.
constexpr std::uint64_t flagsOfThread = CLONE_VM | CLONE_FS | CLONE_FILES | CLONE_SIGHAND |
                                        CLONE_THREAD | CLONE_SYSVSEM | CLONE_SETTLS |
                                        CLONE_PARENT_SETTID | CLONE_CHILD_CLEARTID;

class Filter {
public:
    Filter() : context(::seccomp_init(SCMP_ACT_ERRNO(EPERM)), &::seccomp_release) {}

    void add(std::uint32_t action, std::span<const int> calls) {
        for (const int call : calls) {
            add(action, call);
        }
    }
    // Only for calls whose arguments are all as wanted.
    void add(std::uint32_t action, int call, const std::vector<scmp_arg_cmp>& wanted = {}) {
        isWhole =
            isWhole && context &&
            ::seccomp_rule_add_array(context.get(), action, call,
                                     static_cast<unsigned>(wanted.size()), wanted.data()) == 0;
    }

    [[nodiscard]] bool load() {
        constexpr std::uint32_t binaryTree = 2; // half the time of a list
        return isWhole && set(SCMP_FLTATR_CTL_TSYNC, 1) &&
               set(SCMP_FLTATR_CTL_OPTIMIZE, binaryTree) &&
               set(SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_KILL_PROCESS) &&
               ::seccomp_load(context.get()) == 0;
    }

private:
    [[nodiscard]] bool set(scmp_filter_attr attribute, std::uint32_t value) {
        return ::seccomp_attr_set(context.get(), attribute, value) == 0;
    }

    std::unique_ptr<void, void (*)(scmp_filter_ctx)> context;
    bool isWhole = true;
};

scmp_arg_cmp isEqual(unsigned argument, std::uint64_t value) {
    return {argument, SCMP_CMP_EQ, value, 0};
}

scmp_arg_cmp has(unsigned argument, std::uint64_t mask, std::uint64_t bits) {
    return {argument, SCMP_CMP_MASKED_EQ, mask, bits};
}

// Memory of its own, or what it was lent, but never code: neither now nor later.
void allowMemory(Filter& filter) {
    const auto notCode = has(2, PROT_EXEC, 0);
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(mmap), {notCode, has(3, MAP_SHARED, 0)});
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(mmap),
               {notCode, has(3, MAP_SHARED | MAP_ANONYMOUS, MAP_SHARED)});
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(mprotect), {notCode});
}

void allowThreads(Filter& filter) {
    filter.add(SCMP_ACT_ALLOW, ofThreads);
    constexpr std::uint64_t itself = 0;
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(sched_setaffinity), {isEqual(0, itself)});
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(clone), {isEqual(0, flagsOfThread)});
    // Its flags lie in memory, out of a filter's sight. The C library then takes the other one.
    filter.add(SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3));
}

} // namespace

bool filterCalls(bool startsThreads) {
    Filter filter;
    filter.add(SCMP_ACT_KILL_PROCESS, attacks);
    filter.add(SCMP_ACT_ALLOW, always);
    allowMemory(filter);
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(prctl), {isEqual(0, PR_SET_NAME)});
    // To abort.
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(tgkill),
               {isEqual(0, static_cast<std::uint64_t>(::getpid()))});
    if (startsThreads) {
        allowThreads(filter);
    }
    return filter.load();
}

} // namespace murkwell
