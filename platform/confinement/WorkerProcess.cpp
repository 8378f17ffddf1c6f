#include "platform/confinement/WorkerProcess.h"

#include "core/ParallelFor.h"

#include <algorithm>
#include <csignal>
#include <poll.h>
#include <sys/wait.h>
#include <time.h>

namespace murkwell {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// None when it has ended.
std::optional<std::chrono::nanoseconds> processorTimeOf(pid_t process) {
    clockid_t clock{};
    timespec used{};
    if (::clock_getcpuclockid(process, &clock) != 0 || ::clock_gettime(clock, &used) != 0) {
        return std::nullopt;
    }
    return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

int milliseconds(WorkerProcess::Duration duration) {
    return static_cast<int>(duration.count());
}

} // namespace

WorkerProcess::WorkerProcess(pid_t child, Descriptor socket)
    : process(child), conversation(std::move(socket)) {}

WorkerProcess::~WorkerProcess() {
    end();
}

void WorkerProcess::interrupt() {
    const std::lock_guard lock(mutex);
    if (!exitStatus) {
        ::kill(process, SIGKILL);
    }
}

void WorkerProcess::end() {
    const std::lock_guard lock(mutex);
    if (!exitStatus) {
        ::kill(process, SIGKILL);
        int status = 0;
        ::waitpid(process, &status, 0);
        exitStatus = status;
    }
}

bool WorkerProcess::hasCrashed() {
    end();
    const int status = *exitStatus;
    return WIFSIGNALED(status) ? WTERMSIG(status) != SIGKILL
                               : WEXITSTATUS(status) != exitedForMemory;
}

void WorkerProcess::allow(Duration processorTime) {
    const auto now = Clock::now();
    used = processorTimeOf(process).value_or(used);
    mostUsed = used + processorTime;
    lastProgress = now;
    longestSilence = std::min<std::chrono::nanoseconds>(3 * processorTime, 30s);
    endOfWaiting = now + 40 * processorTime;
}

WorkerProcess::Duration WorkerProcess::patience() {
    constexpr auto leastProgress = 1ms;
    const auto usedNow = processorTimeOf(process);
    const auto now = Clock::now();
    if (usedNow && *usedNow >= used + leastProgress) {
        used = *usedNow;
        lastProgress = now;
    }
    const auto end = std::min<Clock::time_point>(endOfWaiting, lastProgress + longestSilence);
    if (!usedNow || *usedNow >= mostUsed || now >= end) {
        return 0ms;
    }
    // On all processors at once.
    const auto soonest = (mostUsed - *usedNow) / static_cast<std::int64_t>(availableProcessors());
    return std::chrono::ceil<Duration>(std::min<Clock::duration>(soonest, end - now));
}

bool WorkerProcess::send(const Message& message, int attached) {
    for (;;) {
        switch (conversation.trySend(message, attached)) {
        case Channel::Sent::yes:
            return true;
        case Channel::Sent::broken:
            return false;
        case Channel::Sent::full:
            break;
        }
        const auto wait = patience();
        if (wait == 0ms) {
            return false;
        }
        pollfd socket{conversation.descriptor(), POLLOUT, 0};
        ::poll(&socket, 1, milliseconds(wait));
    }
}

bool WorkerProcess::sendSource(const SharedMemory& file) {
    Message message;
    message.kind = Message::Kind::source;
    message.size = file.size();
    return send(message, file.descriptor());
}

bool WorkerProcess::sendPicture(const Bitmap& picture) {
    const auto copy = SharedMemory::sealedCopy(std::as_bytes(picture.pixels()));
    Message message;
    message.kind = Message::Kind::picture;
    message.width = picture.width();
    message.height = picture.height();
    return copy && send(message, copy->descriptor());
}

std::optional<Message> WorkerProcess::answer() {
    for (auto wait = patience(); wait > 0ms; wait = patience()) {
        pollfd socket{conversation.descriptor(), POLLIN, 0};
        if (::poll(&socket, 1, milliseconds(wait)) <= 0) {
            continue;
        }
        Message message;
        switch (conversation.next(message)) {
        case Conversation::Event::nothing:
            break;
        case Conversation::Event::answered:
            return message;
        case Conversation::Event::failed:
            return std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace murkwell
