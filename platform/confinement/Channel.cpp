#include "platform/confinement/Channel.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>

namespace murkwell {
namespace {

// Calls again what a signal interrupted.
template <typename Call>
auto uninterrupted(const Call& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

// A header for one message and, where there is one, one descriptor.
struct Envelope {
    // Sending only reads it.
    explicit Envelope(const Message& message)
        : content{const_cast<Message*>(&message), sizeof message} {
        header.msg_iov = &content;
        header.msg_iovlen = 1;
    }
    Envelope(const Envelope&) = delete;
    Envelope& operator=(const Envelope&) = delete;

    void makeRoomForDescriptor() {
        header.msg_control = control.data();
        header.msg_controllen = control.size();
    }
    void attach(int descriptor) {
        makeRoomForDescriptor();
        cmsghdr* const item = CMSG_FIRSTHDR(&header);
        item->cmsg_level = SOL_SOCKET;
        item->cmsg_type = SCM_RIGHTS;
        item->cmsg_len = CMSG_LEN(sizeof descriptor);
        std::memcpy(CMSG_DATA(item), &descriptor, sizeof descriptor);
    }
    [[nodiscard]] Descriptor attached() {
        const cmsghdr* const item = CMSG_FIRSTHDR(&header);
        if (item == nullptr || item->cmsg_type != SCM_RIGHTS) {
            return {};
        }
        int descriptor = -1;
        std::memcpy(&descriptor, CMSG_DATA(item), sizeof descriptor);
        return Descriptor(descriptor);
    }

    msghdr header{};
    iovec content;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
};

} // namespace

std::array<Descriptor, 2> Channel::pair() {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        return {};
    }
    // A program that was started without standard output must not print into the socket.
    const Descriptor first(ends[0]);
    const Descriptor second(ends[1]);
    constexpr int aboveStandard = 4;
    return {Descriptor(::fcntl(first.get(), F_DUPFD_CLOEXEC, aboveStandard)),
            Descriptor(::fcntl(second.get(), F_DUPFD_CLOEXEC, aboveStandard))};
}

bool Channel::send(const Message& message) const {
    const Envelope envelope(message);
    return uninterrupted([&] { return ::sendmsg(end.get(), &envelope.header, MSG_NOSIGNAL); }) ==
           sizeof message;
}

std::optional<Message> Channel::receive(Descriptor& attached) const {
    Message message;
    Envelope envelope(message);
    envelope.makeRoomForDescriptor();
    const auto size =
        uninterrupted([&] { return ::recvmsg(end.get(), &envelope.header, MSG_CMSG_CLOEXEC); });
    if (size != sizeof message) {
        return std::nullopt;
    }
    attached = envelope.attached();
    return message;
}

Channel::Sent Channel::trySend(const Message& message, int attached) const {
    Envelope envelope(message);
    if (attached >= 0) {
        envelope.attach(attached);
    }
    const auto size = uninterrupted(
        [&] { return ::sendmsg(end.get(), &envelope.header, MSG_NOSIGNAL | MSG_DONTWAIT); });
    if (size == sizeof message) {
        return Sent::yes;
    }
    return size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK) ? Sent::full : Sent::broken;
}

std::optional<Message> Channel::tryReceive() const {
    Message message;
    // Without MSG_TRUNC a longer one would look as if it fitted.
    const auto size = uninterrupted(
        [&] { return ::recv(end.get(), &message, sizeof message, MSG_DONTWAIT | MSG_TRUNC); });
    return size == sizeof message ? std::optional(message) : std::nullopt;
}

} // namespace murkwell
