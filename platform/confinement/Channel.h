// One end of the socket between the program and a worker.
//
// Descriptors travel from the program to the worker only: what a worker attaches is dropped by the
// kernel, since the program receives without room for it.
#pragma once

#include "platform/confinement/Descriptor.h"
#include "platform/confinement/Message.h"

#include <array>
#include <chrono>
#include <functional>
#include <optional>

namespace murkwell {

// Where a worker finds its end.
constexpr int descriptorOfChannel = 3;

class Channel {
public:
    explicit Channel(Descriptor socket) : end(std::move(socket)) {}

    // Both ends, above the descriptors of standard input and output. Not open on failure.
    [[nodiscard]] static std::array<Descriptor, 2> pair();

    [[nodiscard]] int descriptor() const { return end.get(); }

    // A worker's way: waits as long as it takes. False, or none, when the program has gone.
    [[nodiscard]] bool send(const Message& message) const;
    [[nodiscard]] std::optional<Message> receive(Descriptor& attached) const;

    // The program's way: never waits.
    enum class Sent { yes, full, broken };
    [[nodiscard]] Sent trySend(const Message& message, int attached) const;
    // What is there. None when nothing is, when the other side has ended or when it sent anything
    // but a message.
    [[nodiscard]] std::optional<Message> tryReceive() const;

private:
    Descriptor end;
};

} // namespace murkwell
