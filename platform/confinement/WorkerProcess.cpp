#include "platform/confinement/WorkerProcess.h"

#include "core/ParallelFor.h"

#include <algorithm>
#include <csignal>
#include <new>
#include <poll.h>
#include <sys/wait.h>
#include <time.h>

namespace murkwell {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Programs start and libraries load in a second; a machine may be busy.
constexpr auto timeToStart = 20s;

// Its end needs no attention sooner than this.
constexpr WorkerProcess::Duration longestPatience = 60s;

// What one may be lent beyond the frame: the largest bitmap, twice.
constexpr std::size_t mostLent = std::size_t{4} << 30;

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
    : process(child), channel(std::move(socket)) {
    allow(timeToStart);
}

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
    processorTimeAtEnd = processorTimeOf(process).value_or(0ns) + processorTime;
    endOfWaiting = Clock::now() + 10 * processorTime;
}

WorkerProcess::Duration WorkerProcess::patience() const {
    const auto used = processorTimeOf(process);
    const auto now = Clock::now();
    if (!used || *used >= processorTimeAtEnd || now >= endOfWaiting) {
        return 0ms;
    }
    // On all processors at once.
    const auto soonest =
        (processorTimeAtEnd - *used) / static_cast<std::int64_t>(availableProcessors());
    const auto left = std::min<Clock::duration>(soonest, endOfWaiting - now);
    return std::min(std::chrono::ceil<Duration>(left), longestPatience);
}

bool WorkerProcess::send(const Message& message, int attached) const {
    for (;;) {
        switch (channel.trySend(message, attached)) {
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
        pollfd socket{descriptor(), POLLOUT, 0};
        ::poll(&socket, 1, milliseconds(wait));
    }
}

bool WorkerProcess::sendSource(const SharedMemory& file) const {
    Message message;
    message.kind = Message::Kind::source;
    message.size = file.size();
    return send(message, file.descriptor());
}

bool WorkerProcess::sendPicture(const Bitmap& picture) const {
    const auto copy = SharedMemory::sealedCopy(std::as_bytes(picture.pixels()));
    Message message;
    message.kind = Message::Kind::picture;
    message.width = picture.width();
    message.height = picture.height();
    return copy && send(message, copy->descriptor());
}

bool WorkerProcess::lend(std::size_t bytes) {
    const SharedMemory* lent = nullptr;
    if (bytes > SharedMemory::frameSize) {
        lent = lendLarge(bytes);
    } else if (bytes == SharedMemory::frameSize && !frame) {
        frame = SharedMemory::create(bytes);
        lent = frame ? &*frame : nullptr;
    } else {
        return false; // no honest one asks for that
    }
    Message reply;
    reply.kind = lent != nullptr ? Message::Kind::lent : Message::Kind::refused;
    return send(reply, lent != nullptr ? lent->descriptor() : -1);
}

const SharedMemory* WorkerProcess::lendLarge(std::size_t bytes) {
    std::size_t sum = 0;
    for (const SharedMemory& before : large) {
        sum += before.size();
    }
    auto made =
        sum <= mostLent && bytes <= mostLent - sum ? SharedMemory::create(bytes) : std::nullopt;
    return made ? &large.emplace_back(std::move(*made)) : nullptr;
}

WorkerProcess::Event WorkerProcess::next(Message& answer) {
    const auto message = channel.tryReceive();
    if (!message) {
        return Event::failed;
    }
    switch (message->kind) {
    case Message::Kind::ready:
        missing = message->index;
        return Event::nothing;
    case Message::Kind::lend:
        return lend(message->size) ? Event::nothing : Event::failed;
    case Message::Kind::done:
        answer = *message;
        return Event::answered;
    default:
        return Event::failed;
    }
}

std::optional<Message> WorkerProcess::answer() {
    for (auto wait = patience(); wait > 0ms; wait = patience()) {
        pollfd socket{descriptor(), POLLIN, 0};
        if (::poll(&socket, 1, milliseconds(wait)) <= 0) {
            continue;
        }
        Message message;
        switch (next(message)) {
        case Event::nothing:
            break;
        case Event::answered:
            return message;
        case Event::failed:
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::shared_ptr<const std::byte> WorkerProcess::view(std::size_t bytes) {
    if (bytes > SharedMemory::frameSize) {
        return !large.empty() && large.back().size() == bytes ? large.back().map() : nullptr;
    }
    if (frame && !frameView) {
        frameView = frame->map();
    }
    return frameView;
}

BitmapRef WorkerProcess::takeBitmap(const Message& answer) {
    const std::size_t bytes = Bitmap::sizeInBytes(answer.width, answer.height);
    if (bytes > SharedMemory::frameSize && !large.empty() && large.back().size() == bytes) {
        SharedMemory memory = std::move(large.back());
        large.pop_back();
        return Bitmap::over(answer.width, answer.height, SharedMemory::handOver(std::move(memory)));
    }
    // Whatever it still writes meanwhile, these are pixels and no more.
    const auto seen = bytes <= SharedMemory::frameSize
                          ? Bitmap::over(answer.width, answer.height, view(bytes))
                          : nullptr;
    return seen ? Bitmap::copy(*seen) : nullptr;
}

std::optional<std::vector<std::byte>> WorkerProcess::takeBytes(const Message& answer) {
    if (answer.size == 0) {
        return std::vector<std::byte>();
    }
    const auto seen = view(answer.size);
    try {
        return seen ? std::optional(std::vector(seen.get(), seen.get() + answer.size))
                    : std::nullopt;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

} // namespace murkwell
