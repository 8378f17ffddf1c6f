// A worker's process. Nothing here waits longer than it is allowed to take.
#pragma once

#include "platform/confinement/Conversation.h"

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

    // Does not wait until it is ready, nor allow it any time yet. Null when the program is missing
    // or no process can be had. The kernel ends a worker with the thread that started it.
    [[nodiscard]] static std::unique_ptr<WorkerProcess>
    start(const std::filesystem::path& program, std::vector<std::string> arguments = {});

    ~WorkerProcess(); // kills it
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    // Kills it, whatever another thread is waiting for. Any thread.
    void interrupt();

    // From now on it may use so much processor time. It also counts as hanging when it uses none at
    // all for three times as long, but at most half a minute, and after forty times as long: not
    // sooner, since other programs may keep the machine busy. The program watches that itself: one
    // that was taken over can block its signals.
    void allow(Duration processorTime);
    // False when it does not take it in time, or is gone.
    [[nodiscard]] bool send(const Message& message, int attached = -1);
    [[nodiscard]] bool sendSource(const SharedMemory& file);
    [[nodiscard]] bool sendPicture(const Bitmap& picture);

    // Waits for the next answer. None when it has failed: said what cannot be, ended, or let its
    // time pass.
    [[nodiscard]] std::optional<Message> answer();
    // What an answer speaks of (Conversation.h).
    [[nodiscard]] BitmapRef takeBitmap(const Message& answer) {
        return conversation.takeBitmap(answer);
    }
    [[nodiscard]] std::optional<std::vector<std::byte>> takeBytes(const Message& answer) {
        return conversation.takeBytes(answer);
    }

    // After a failure: whether its time was up.
    [[nodiscard]] bool isLate() { return patience() == Duration::zero(); }
    // After a failure: whether it ended by its own fault, rather than by being killed or for want
    // of memory. Ends it if it goes on.
    [[nodiscard]] bool hasCrashed();

    // As it said itself (Walls.h); none before it was ready.
    [[nodiscard]] std::optional<int> missingWalls() const { return conversation.missingWalls(); }

private:
    WorkerProcess(pid_t child, Descriptor socket);

    // How long nothing but its descriptor needs attention; zero when its time is up.
    [[nodiscard]] Duration patience();
    void end();

    mutable std::mutex mutex; // of the process's number
    pid_t process;
    std::optional<int> exitStatus;
    Conversation conversation;
    std::chrono::nanoseconds used{}; // processor time, when last looked at
    std::chrono::nanoseconds mostUsed{};
    std::chrono::nanoseconds longestSilence{};
    std::chrono::steady_clock::time_point lastProgress; // it had used more than before
    std::chrono::steady_clock::time_point endOfWaiting;
};

// Where those are that come with the running program: ../libexec/murkwell as seen from its folder.
[[nodiscard]] std::filesystem::path installedWorkers();

} // namespace murkwell
