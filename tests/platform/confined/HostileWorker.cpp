// Stands in for a worker that was taken over. What it does is named by the file "behaviour" beside
// the name it is called by.
#include "core/Bitmap.h"
#include "platform/confinement/Channel.h"
#include "platform/confinement/SharedMemory.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace murkwell;
using Kind = Message::Kind;

std::minstd_rand& generator() {
    static std::minstd_rand shared(static_cast<unsigned>(::getpid()));
    return shared;
}

std::uint32_t random() {
    return static_cast<std::uint32_t>(generator()());
}

class Hostile {
public:
    void tell(const Message& message) const {
        if (!channel.send(message)) {
            std::_Exit(0);
        }
    }
    void tell(Kind kind, std::int32_t index, std::int32_t width = 0, std::int32_t height = 0,
              std::uint64_t size = 0) const {
        Message message;
        message.kind = kind;
        message.index = index;
        message.width = width;
        message.height = height;
        message.size = size;
        tell(message);
    }

    // The answer to its wish for memory, whatever was sent before; null when that is refused.
    std::shared_ptr<std::byte> borrow(std::uint64_t size) const {
        tell(Kind::lend, 0, 0, 0, size);
        for (;;) {
            Descriptor attached;
            const auto reply = channel.receive(attached);
            if (!reply) {
                std::_Exit(0);
            }
            if (reply->kind == Kind::refused) {
                return nullptr;
            }
            if (reply->kind == Kind::lent) {
                return mapLent(attached, size, Access::write);
            }
        }
    }

    // Every answer there could be to a request that there could be.
    void answerEverything(std::int32_t width, std::int32_t height, std::uint64_t size) const {
        for (const std::int32_t index : {3, 0, 0, 0, 0}) {
            tell(Kind::done, index, width, height, size);
        }
    }

    void sendRaw(const void* data, std::size_t size) const {
        if (::send(channel.descriptor(), data, size, MSG_NOSIGNAL) < 0) {
            std::_Exit(0);
        }
    }

    void sendDescriptor() const {
        Message message;
        message.kind = Kind::done;
        message.index = 3;
        if (channel.trySend(message, descriptorOfChannel) == Channel::Sent::broken) {
            std::_Exit(0);
        }
    }

private:
    Channel channel{Descriptor(descriptorOfChannel)};
};

[[noreturn]] void rest() {
    for (;;) {
        ::pause();
    }
}

constexpr std::uint64_t frame = SharedMemory::frameSize;

struct Behaviour {
    const char* name;
    void (*run)(const Hostile&);
};

constexpr Behaviour behaviours[] = {
    {"silent", [](const Hostile&) {}},
    {"ends", [](const Hostile&) { std::_Exit(1); }},
    {"crashes", [](const Hostile&) { std::abort(); }},
    {"closes", [](const Hostile&) { ::close(descriptorOfChannel); }},
    {"spins",
     [](const Hostile&) {
         sigset_t all;
         ::sigfillset(&all);
         ::sigprocmask(SIG_BLOCK, &all, nullptr);
         for (volatile bool goesOn = true; goesOn;) {
         }
     }},
    {"babbles",
     [](const Hostile& worker) {
         for (;;) {
             std::array<std::uint32_t, sizeof(Message) / 4> words{};
             for (auto& word : words) {
                 word = random();
             }
             words[0] %= 24;
             worker.sendRaw(words.data(), sizeof words);
         }
     }},
    {"odd sizes",
     [](const Hostile& worker) {
         const std::array<char, 4096> bytes{};
         for (;;) {
             worker.sendRaw(bytes.data(), random() % bytes.size());
         }
     }},
    {"always ready",
     [](const Hostile& worker) {
         for (;;) {
             worker.tell(Kind::ready, 7);
         }
     }},
    {"always done",
     [](const Hostile& worker) {
         for (;;) {
             worker.tell(Kind::done, 1);
         }
     }},
    {"many pages", [](const Hostile& worker) { worker.tell(Kind::done, 2147483647); }},
    {"less than no pages", [](const Hostile& worker) { worker.tell(Kind::done, -5); }},
    {"nothing was lent", [](const Hostile& worker) { worker.answerEverything(10, 10, 100); }},
    {"absurd sizes",
     [](const Hostile& worker) {
         worker.answerEverything(2147483647, 2147483647, ~std::uint64_t{0});
     }},
    {"small wishes",
     [](const Hostile& worker) {
         for (;;) {
             worker.tell(Kind::lend, 0, 0, 0, 400);
         }
     }},
    {"endless wishes",
     [](const Hostile& worker) {
         for (const std::uint64_t size : {std::uint64_t{1} << 62, ~std::uint64_t{0}}) {
             (void)worker.borrow(size);
         }
         worker.answerEverything(10, 10, 100);
     }},
    {"hoards",
     [](const Hostile& worker) {
         std::vector<std::shared_ptr<std::byte>> all;
         while (auto memory = worker.borrow(frame + 4096)) {
             memory.get()[0] = std::byte{1};
             all.push_back(std::move(memory));
         }
         worker.answerEverything(10, 10, 100);
         rest();
     }},
    {"more than was lent",
     [](const Hostile& worker) {
         const auto memory = worker.borrow(frame + 4096);
         worker.answerEverything(4096, 4098, frame + 8192);
     }},
    {"does not let go",
     [](const Hostile& worker) {
         const auto memory = worker.borrow(sizeof(Rgba) * 4096 * 4097);
         worker.answerEverything(4096, 4097, 0);
         for (std::size_t i = 0;; ++i) {
             memory.get()[i % frame] = static_cast<std::byte>(i);
         }
     }},
    {"scribbles",
     [](const Hostile& worker) {
         const auto memory = worker.borrow(frame);
         worker.answerEverything(4096, 4096, 4000);
         for (std::size_t i = 0;; ++i) {
             memory.get()[i % frame] = static_cast<std::byte>(random());
         }
     }},
    {"noise",
     [](const Hostile& worker) {
         const auto memory = worker.borrow(frame);
         for (std::size_t i = 0; i < 4000; ++i) {
             memory.get()[i] = static_cast<std::byte>(random());
         }
         worker.answerEverything(10, 10, 4000);
     }},
    {"counts beyond its bytes",
     [](const Hostile& worker) {
         const auto memory = worker.borrow(frame);
         std::memset(memory.get(), 0x7F, 4000);
         worker.answerEverything(10, 10, 4000);
     }},
    {"sends descriptors",
     [](const Hostile& worker) {
         for (;;) {
             worker.sendDescriptor();
         }
     }},
};

} // namespace

int main(int /*argc*/, char** argv) {
    std::string wanted;
    std::getline(std::ifstream(std::filesystem::path(argv[0]).parent_path() / "behaviour"), wanted);
    const Hostile worker;
    for (const Behaviour& behaviour : behaviours) {
        if (wanted == behaviour.name) {
            behaviour.run(worker);
        }
    }
    rest();
}
