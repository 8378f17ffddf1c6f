// What the program and one worker say to each other, from the program's side, without waiting.
//
// What a worker says is not believed: every answer is checked, and one that lies has failed.
#pragma once

#include "core/Bitmap.h"
#include "platform/confinement/Channel.h"
#include "platform/confinement/SharedMemory.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace murkwell {

class Conversation {
public:
    explicit Conversation(Descriptor socket) : channel(std::move(socket)) {}

    // Becomes readable with the next message, or the worker's end.
    [[nodiscard]] int descriptor() const { return channel.descriptor(); }

    [[nodiscard]] Channel::Sent trySend(const Message& message, int attached = -1) const {
        return channel.trySend(message, attached);
    }

    // Takes the message that the descriptor announced. Wishes for memory are answered on the spot.
    enum class Event { nothing, answered, failed };
    [[nodiscard]] Event next(Message& answer);

    // What an answer speaks of. Null, or none, when the worker was not lent memory for that.
    [[nodiscard]] BitmapRef takeBitmap(const Message& answer);
    [[nodiscard]] std::optional<std::vector<std::byte>> takeBytes(const Message& answer);

    // As the worker said (Walls.h); none before it was ready.
    [[nodiscard]] std::optional<int> missingWalls() const { return missing; }

private:
    [[nodiscard]] bool lend(std::size_t bytes);
    [[nodiscard]] const SharedMemory* lendLarge(std::size_t bytes);
    // The start of a result of that size; null when there is no memory lent for it.
    [[nodiscard]] std::shared_ptr<const std::byte> view(std::size_t bytes);

    Channel channel;
    std::optional<int> missing;
    std::optional<SharedMemory> frame;
    std::shared_ptr<const std::byte> frameView;
    // Lent beyond the frame. It may still hold on to all but what it handed over, which leaves.
    std::vector<SharedMemory> large;
};

} // namespace murkwell
