#include "core/ProcessHardening.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace murkwell {
namespace {

// The kernel does not obey a limit of 0 when dumps go to a program, as desktops set it up. Of one
// byte it makes no dump, to a program or to a file. The process stays "dumpable" otherwise: desktop
// portals look into /proc to learn who asks, and would refuse the file panels of one that is not.
void forbidCoreDumps() {
    const ::rlimit limit{1, 1};
    if (::setrlimit(RLIMIT_CORE, &limit) != 0) {
        const ::rlimit none{0, 0}; // where the hard limit is 0 already
        ::setrlimit(RLIMIT_CORE, &none);
    }
}

// A program may be started without them. The next file to be opened would take the number, and
// messages would be written into it. What is put in their place refuses to be read or written, so
// that results which nobody can get count as not written.
void occupyStandardStreams() {
    constexpr std::array accessModes{O_WRONLY, O_RDONLY, O_WRONLY};
    for (int descriptor = 0; descriptor < 3; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) == -1) {
            // Takes the lowest free number, which is this one.
            (void)::open("/dev/null", accessModes.at(static_cast<std::size_t>(descriptor)));
        }
    }
}

} // namespace

void hardenProcess() {
    forbidCoreDumps();
    occupyStandardStreams();
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        ::signal(signal, SIG_IGN);
    }
}

} // namespace murkwell
