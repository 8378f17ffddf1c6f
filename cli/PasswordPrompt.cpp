#include "cli/PasswordPrompt.h"

#include <array>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

namespace murkwell::cli {
namespace {

class Descriptor {
public:
    explicit Descriptor(int given) : number(given) {}
    ~Descriptor() {
        if (number >= 0) {
            ::close(number);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int number;
};

// Signals that would end or stop the program wait for as long as this lives; those that end it can
// be polled for.
class HeldSignals {
public:
    HeldSignals() {
        sigset_t ending;
        ::sigemptyset(&ending);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
            ::sigaddset(&ending, signal);
        }
        sigset_t all = ending;
        ::sigaddset(&all, SIGTSTP);
        ::pthread_sigmask(SIG_BLOCK, &all, &before);
        descriptor = ::signalfd(-1, &ending, SFD_CLOEXEC);
    }
    ~HeldSignals() {
        ::close(descriptor);
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    int descriptor;

private:
    sigset_t before{};
};

// The terminal shows no more than the end of the line.
class WithoutEcho {
public:
    explicit WithoutEcho(int given) : terminal(given) {
        isOff = ::tcgetattr(terminal, &before) == 0;
        if (isOff) {
            termios silent = before;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            silent.c_lflag |= ICANON | ECHONL;
            isOff = ::tcsetattr(terminal, TCSAFLUSH, &silent) == 0;
        }
    }
    ~WithoutEcho() {
        if (isOff) {
            ::tcsetattr(terminal, TCSAFLUSH, &before);
        }
    }
    WithoutEcho(const WithoutEcho&) = delete;
    WithoutEcho& operator=(const WithoutEcho&) = delete;

    bool isOff;

private:
    int terminal;
    termios before{};
};

// The terminal hands over whole lines, edited there.
std::optional<Secret> readLine(int terminal) {
    std::array<char, Secret::longest + 1> line{};
    const ssize_t count = ::read(terminal, line.data(), line.size());
    Secret secret;
    const bool isUsable = count > 1 && line[static_cast<std::size_t>(count) - 1] == '\n' &&
                          secret.append({line.data(), static_cast<std::size_t>(count) - 1});
    ::explicit_bzero(line.data(), line.size());
    return isUsable ? std::optional(std::move(secret)) : std::nullopt;
}

} // namespace

std::optional<Secret> promptForPassword(std::string_view prompt) {
    const Descriptor terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (terminal.number < 0) {
        return std::nullopt;
    }
    const HeldSignals signals;
    const WithoutEcho silence(terminal.number);
    if (!silence.isOff || ::write(terminal.number, prompt.data(), prompt.size()) !=
                              static_cast<ssize_t>(prompt.size())) {
        return std::nullopt;
    }
    std::array<pollfd, 2> events{pollfd{terminal.number, POLLIN, 0},
                                 pollfd{signals.descriptor, POLLIN, 0}};
    const bool isTyped = ::poll(events.data(), events.size(), -1) > 0 && events[1].revents == 0;
    return isTyped ? readLine(terminal.number) : std::nullopt;
}

} // namespace murkwell::cli
