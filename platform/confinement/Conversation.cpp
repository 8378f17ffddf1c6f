#include "platform/confinement/Conversation.h"

#include <new>

namespace murkwell {
namespace {

// What one worker may be lent beyond the frame: the largest bitmap, twice.
constexpr std::size_t mostLent = std::size_t{4} << 30;

} // namespace

Conversation::Event Conversation::next(Message& answer) {
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

bool Conversation::lend(std::size_t bytes) {
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
    // Who asks has taken everything that was sent before.
    return trySend(reply, lent != nullptr ? lent->descriptor() : -1) == Channel::Sent::yes;
}

const SharedMemory* Conversation::lendLarge(std::size_t bytes) {
    std::size_t sum = 0;
    for (const SharedMemory& before : large) {
        sum += before.size();
    }
    auto made =
        sum <= mostLent && bytes <= mostLent - sum ? SharedMemory::create(bytes) : std::nullopt;
    return made ? &large.emplace_back(std::move(*made)) : nullptr;
}

std::shared_ptr<const std::byte> Conversation::view(std::size_t bytes) {
    if (bytes > SharedMemory::frameSize) {
        return !large.empty() && large.back().size() == bytes ? large.back().map() : nullptr;
    }
    if (frame && !frameView) {
        frameView = frame->map();
    }
    return frameView;
}

BitmapRef Conversation::takeBitmap(const Message& answer) {
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

std::optional<std::vector<std::byte>> Conversation::takeBytes(const Message& answer) {
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
