// Any bytes as what a worker says, and as what it leaves in the memory that it was lent.
#include "platform/confinement/Conversation.h"
#include "platform/confinement/Lines.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using namespace murkwell;

void takeAll(Conversation& conversation, const Message& answer) {
    if (const auto bitmap = conversation.takeBitmap(answer)) {
        if (bitmap->pixels().size_bytes() != Bitmap::sizeInBytes(answer.width, answer.height)) {
            std::abort();
        }
    }
    if (const auto bytes = conversation.takeBytes(answer)) {
        if (bytes->size() != answer.size) {
            std::abort();
        }
        (void)linesFrom(*bytes);
        (void)boxesFrom(*bytes);
    }
}

// The bytes as messages, the last one short of its size.
void converse(std::span<const std::byte> bytes) {
    auto [ours, theirs] = Channel::pair();
    Conversation conversation(std::move(ours));
    const Channel worker(std::move(theirs));
    while (!bytes.empty()) {
        Message message;
        const std::size_t size = std::min(bytes.size(), sizeof message);
        std::memcpy(&message, bytes.data(), size);
        bytes = bytes.subspan(size);
        // Kinds that a worker may use are rare among all numbers.
        const auto first = static_cast<std::uint32_t>(Message::Kind::ready);
        message.kind =
            static_cast<Message::Kind>(first + static_cast<std::uint32_t>(message.kind) % 4);
        message.size %= 3 * SharedMemory::frameSize;
        Message answer;
        if (worker.trySend(message, -1) != Channel::Sent::yes) {
            return;
        }
        switch (conversation.next(answer)) {
        case Conversation::Event::failed:
            return;
        case Conversation::Event::answered:
            takeAll(conversation, answer);
            break;
        case Conversation::Event::nothing:
            break;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    if (const auto lines = linesFrom(bytes); lines && !linesFrom(toBytes(*lines))) {
        std::abort();
    }
    if (const auto boxes = boxesFrom(bytes); boxes && toBytes(*boxes).size() != size) {
        std::abort();
    }
    converse(bytes);
    return 0;
}
