// A worker with the walls of one that is shipped, which does from inside what it is asked to.
//
// usage: probe PROFILE USER WALLS
//   PROFILE  pdf, image or recognition
//   USER     root or ordinary
//   WALLS    walls, or control for none
#include "platform/confinement/Channel.h"
#include "platform/confinement/WorkerLoop.h"
#include "tests/platform/confinement/Attempts.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

using namespace murkwell;
using Kind = Message::Kind;

Profile profileOf(std::string_view name) {
    return name == "pdf"     ? Profiles::pdf()
           : name == "image" ? Profiles::image()
                             : Profiles::recognition({});
}

void becomeOrdinary() {
    constexpr unsigned nobody = 65534;
    if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) {
        ::_exit(1);
    }
}

// Another process of the same user, for as long as this one lives. The kernel would not end it: a
// dying worker must not send it a signal either.
pid_t makeVictim() {
    int ends[2];
    if (::pipe(ends) != 0) {
        ::_exit(1);
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[1]);
        ::close(descriptorOfChannel);
        char nothing = 0;
        ::_exit(::read(ends[0], &nothing, 1) == 0 ? 0 : 1);
    }
    return child;
}

// The error it met, 0 for none.
Message tryAttempt(const Message& request, pid_t victim) {
    errno = 0;
    const auto& attempt = attempts()[static_cast<std::size_t>(request.index)];
    return WorkerLoop::done(attempt.run(victim) >= 0 ? 0 : errno == 0 ? -1 : errno);
}

[[noreturn]] void serveWithoutWalls(pid_t victim) {
    const Channel channel{Descriptor(descriptorOfChannel)};
    for (;;) {
        Descriptor attached;
        const auto request = channel.receive(attached);
        if (!request || !channel.send(tryAttempt(*request, victim))) {
            ::_exit(0);
        }
    }
}

// The names of all variables, and the numbers of all open descriptors.
std::string describeSurroundings() {
    std::string text;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        text += std::string(*variable).substr(0, std::string_view(*variable).find('=')) + ' ';
    }
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) >= 0) {
            text += std::to_string(descriptor) + ' ';
        }
    }
    return text;
}

Message work(WorkerLoop& loop, const Message& request, pid_t victim,
             const std::string& surroundings) {
    switch (request.kind) {
    case Kind::decode: // the picture comes back, by way of a bitmap of its own
        return loop.done(Bitmap::copy(*loop.takePicture())).value_or(WorkerLoop::done(1));
    case Kind::encode: // the source comes back
        return loop.done(loop.source()).value_or(WorkerLoop::done(1));
    case Kind::isUsable:
        return loop.done(std::as_bytes(std::span(surroundings))).value_or(WorkerLoop::done(1));
    case Kind::readText: // runs out of memory
        throw std::bad_alloc();
    case Kind::findFaces: // breaks
        std::abort();
    case Kind::open: // hangs
        for (volatile bool goesOn = true; goesOn;) {
        }
        [[fallthrough]];
    default:
        return tryAttempt(request, victim);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2) { // an attempt to run a program that succeeded
        return Channel{Descriptor(descriptorOfChannel)}.send(WorkerLoop::done(0)) ? 0 : 1;
    }
    if (std::string_view(argv[2]) == "ordinary") {
        becomeOrdinary();
    }
    const std::string surroundings = describeSurroundings();
    ::prctl(PR_SET_DUMPABLE, 1); // again, for the victim: another user's ceases to be
    const pid_t victim = makeVictim();
    if (std::string_view(argv[3]) == "control") {
        serveWithoutWalls(victim);
    }
    WorkerLoop::run(
        profileOf(argv[1]), [] {},
        [&](WorkerLoop& loop, const Message& request) {
            return work(loop, request, victim, surroundings);
        });
}
