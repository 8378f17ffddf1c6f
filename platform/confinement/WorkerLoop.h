// A worker's main loop: walls first, then one request after the other.
#pragma once

#include "core/Bitmap.h"
#include "platform/confinement/Channel.h"
#include "platform/confinement/Profiles.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>

namespace murkwell {

// Bitmaps that are made while it runs lie in memory of the program's where possible, so that a
// result need not be copied.
class WorkerLoop final : private PixelMemory::Lender {
public:
    // Answers a request with a message of kind done.
    using Work = std::function<Message(WorkerLoop&, const Message&)>;

    // The whole of main(). Loads everything in `prepare`, on this thread or others; no file can be
    // opened any more when `work` is called. Ends the process when the program has gone.
    [[noreturn]] static void run(const Profile& profile, const std::function<void()>& prepare,
                                 const Work& work);

    // What the program sent last; empty or null when it sent none. The bytes of a source stay where
    // they are until it sends another.
    [[nodiscard]] std::span<const std::byte> source() const { return {file.get(), fileSize}; }
    [[nodiscard]] BitmapRef takePicture() { return std::exchange(picture, nullptr); }

    // Answers that carry a result, of which this is the last reference, or how it went without one:
    // none when the program has no memory for it.
    [[nodiscard]] std::optional<Message> done(BitmapRef bitmap);
    [[nodiscard]] std::optional<Message> done(std::span<const std::byte> bytes);
    [[nodiscard]] static Message done(std::int32_t index);

private:
    explicit WorkerLoop(Descriptor socket) : channel(std::move(socket)) {}

    [[noreturn]] void serve(const Work& work);
    bool keep(const Message& message, const Descriptor& attached);
    [[nodiscard]] std::optional<PixelMemory::Block> lend(std::size_t bytes,
                                                         PixelMemory::Content content) override;
    [[nodiscard]] PixelMemory::Block borrow(std::size_t bytes);
    [[nodiscard]] PixelMemory::Block askFor(std::size_t bytes);
    [[nodiscard]] PixelMemory::Block borrowLarge(std::size_t bytes);
    [[nodiscard]] PixelMemory::Block borrowFrame();

    Channel channel;
    std::shared_ptr<const std::byte> file;
    std::size_t fileSize = 0;
    BitmapRef picture;

    std::mutex mutex; // bitmaps may be made on any thread, during a request
    PixelMemory::Block frame;
    bool frameIsFresh = true; // and zero
    bool frameIsInUse = false;
    const std::byte* large = nullptr; // start of what was lent last beyond the frame
};

} // namespace murkwell
