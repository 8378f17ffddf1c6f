// A worker, and the program's side of the conversation with it.
//
// What a worker says is not believed: every answer is checked, and one that lies, is silent for too
// long or breaks off has failed. Nothing here waits longer than the worker is allowed to take.
#pragma once

#include "core/Bitmap.h"
#include "platform/confinement/Channel.h"
#include "platform/confinement/SharedMemory.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <sys/types.h>
#include <vector>

namespace murkwell {

class WorkerProcess {
public:
    using Duration = std::chrono::milliseconds;

    // Does not wait until it is ready. Null when the program is missing or no process can be had.
    // The kernel ends a worker with the thread that started it.
    [[nodiscard]] static std::unique_ptr<WorkerProcess>
    start(const std::filesystem::path& program, std::vector<std::string> arguments = {});

    ~WorkerProcess(); // kills it
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    // Kills it, whatever another thread is waiting for. Any thread.
    void interrupt();

    // From now on it may use so much processor time, or be silent for ten times as long, before it
    // counts as hanging. The program watches that: one that was taken over can block its signals.
    void allow(Duration processorTime);
    // How long there is nothing to be asked but its descriptor; zero when its time is up.
    [[nodiscard]] Duration patience() const;
    // Becomes readable with its next message, or its end.
    [[nodiscard]] int descriptor() const { return channel.descriptor(); }

    // False when it does not take it in time, or is gone.
    [[nodiscard]] bool send(const Message& message, int attached = -1) const;
    [[nodiscard]] bool sendSource(const SharedMemory& file) const;
    [[nodiscard]] bool sendPicture(const Bitmap& picture) const;

    // Takes the message that the descriptor announced. Wishes for memory are answered on the spot.
    enum class Event { nothing, answered, failed };
    [[nodiscard]] Event next(Message& answer);
    // Waits for the next answer. None when it has failed.
    [[nodiscard]] std::optional<Message> answer();

    // What an answer speaks of. Null, or none, when it was not lent memory for that.
    [[nodiscard]] BitmapRef takeBitmap(const Message& answer);
    [[nodiscard]] std::optional<std::vector<std::byte>> takeBytes(const Message& answer);

    // After a failure: whether it ended by its own fault, rather than by being killed or for want
    // of memory. Ends it if it goes on.
    [[nodiscard]] bool hasCrashed();

    // As it said itself (Confinement.h); none before it was ready.
    [[nodiscard]] std::optional<int> missingWalls() const { return missing; }

private:
    WorkerProcess(pid_t child, Descriptor socket);

    [[nodiscard]] bool lend(std::size_t bytes);
    [[nodiscard]] const SharedMemory* lendLarge(std::size_t bytes);
    // The start of a result of that size; null when it was not lent memory for it.
    [[nodiscard]] std::shared_ptr<const std::byte> view(std::size_t bytes);
    void end();

    mutable std::mutex mutex; // of the process's number
    pid_t process;
    std::optional<int> exitStatus;
    Channel channel;
    std::chrono::nanoseconds processorTimeAtEnd{};
    std::chrono::steady_clock::time_point endOfWaiting;
    std::optional<int> missing;

    std::optional<SharedMemory> frame;
    std::shared_ptr<const std::byte> frameView;
    // Lent beyond the frame. It may still hold on to all but what it handed over, which leaves.
    std::vector<SharedMemory> large;
};

// Of the workers that are installed with the running program: in ../libexec/murkwell as seen from
// its folder.
[[nodiscard]] std::filesystem::path installedWorker(const char* name);

} // namespace murkwell
