#include "platform/confinement/WorkerLoop.h"

#include "platform/confinement/Confinement.h"
#include "platform/confinement/SharedMemory.h"

#include <cstring>
#include <new>
#include <unistd.h>

namespace murkwell {
namespace {

using Kind = Message::Kind;

Message plain(Kind kind, std::int32_t index = 0) {
    Message message;
    message.kind = kind;
    message.index = index;
    return message;
}

[[noreturn]] void leave() {
    ::_exit(0); // the program has gone: there is nobody to tell, and nothing to put away
}

} // namespace

void WorkerLoop::run(const Profile& profile, const std::function<void()>& prepare,
                     const Work& work) {
    int missing = restrain(profile);
    // Never destroyed, as threads of libraries may outlive main().
    auto& loop = *new WorkerLoop(Descriptor(descriptorOfChannel));
    prepare();
    missing |= enclose(profile);
    if (!loop.channel.send(plain(Kind::ready, missing))) {
        leave();
    }
    PixelMemory::borrowFrom(&loop);
    try {
        loop.serve(work);
    } catch (const std::bad_alloc&) {
        ::_exit(exitedForMemory);
    }
}

void WorkerLoop::serve(const Work& work) {
    for (;;) {
        Descriptor attached;
        const auto message = channel.receive(attached);
        if (!message || (!keep(*message, attached) && !channel.send(work(*this, *message)))) {
            leave();
        }
    }
}

// False when the message is a request.
bool WorkerLoop::keep(const Message& message, const Descriptor& attached) {
    if (message.kind == Kind::source) {
        file = message.size > 0 ? mapLent(attached, message.size, Access::read) : nullptr;
        fileSize = file ? message.size : 0;
        return true;
    }
    if (message.kind == Kind::picture) {
        const std::size_t bytes = Bitmap::sizeInBytes(message.width, message.height);
        picture =
            Bitmap::over(message.width, message.height, mapLent(attached, bytes, Access::read));
        return true;
    }
    return false;
}

std::optional<PixelMemory::Block> WorkerLoop::lend(std::size_t bytes,
                                                   PixelMemory::Content content) {
    const std::lock_guard lock(mutex);
    if (bytes > SharedMemory::frameSize) {
        return borrowLarge(bytes);
    }
    if (frameIsInUse) {
        return std::nullopt;
    }
    const bool isZero = frameIsFresh;
    auto block = borrowFrame();
    if (block && !isZero && content == PixelMemory::Content::zero) {
        std::memset(block.get(), 0, bytes);
    }
    return block;
}

PixelMemory::Block WorkerLoop::askFor(std::size_t bytes) {
    Message request = plain(Kind::lend);
    request.size = bytes;
    Descriptor attached;
    const auto reply = channel.send(request) ? channel.receive(attached) : std::nullopt;
    if (!reply) {
        leave();
    }
    return reply->kind == Kind::lent ? mapLent(attached, bytes, Access::write) : nullptr;
}

PixelMemory::Block WorkerLoop::borrowLarge(std::size_t bytes) {
    auto block = askFor(bytes);
    large = block.get();
    return block;
}

// The frame as a block that is in use until its last owner goes. Null when there is no memory.
PixelMemory::Block WorkerLoop::borrowFrame() {
    if (!frame) {
        frame = askFor(SharedMemory::frameSize);
    }
    if (!frame) {
        return nullptr;
    }
    frameIsInUse = true;
    frameIsFresh = false;
    return {frame.get(), [this](std::byte*) {
                const std::lock_guard lock(mutex);
                frameIsInUse = false;
            }};
}

PixelMemory::Block WorkerLoop::borrow(std::size_t bytes) {
    const std::lock_guard lock(mutex);
    return bytes > SharedMemory::frameSize ? borrowLarge(bytes) : borrowFrame();
}

std::optional<Message> WorkerLoop::done(BitmapRef bitmap) {
    Message message = plain(Kind::done);
    message.width = bitmap->width();
    message.height = bitmap->height();
    const auto pixels = std::as_bytes(bitmap->pixels());
    const std::byte* const expected = pixels.size() > SharedMemory::frameSize ? large : frame.get();
    if (pixels.data() != expected) {
        const auto block = borrow(pixels.size());
        if (!block) {
            return std::nullopt;
        }
        std::memcpy(block.get(), pixels.data(), pixels.size());
    }
    return message;
}

std::optional<Message> WorkerLoop::done(std::span<const std::byte> bytes) {
    Message message = plain(Kind::done);
    message.size = bytes.size();
    if (bytes.empty()) {
        return message;
    }
    const auto block = borrow(bytes.size());
    if (!block) {
        return std::nullopt;
    }
    std::memcpy(block.get(), bytes.data(), bytes.size());
    return message;
}

Message WorkerLoop::done(std::int32_t index) {
    return plain(Kind::done, index);
}

} // namespace murkwell
