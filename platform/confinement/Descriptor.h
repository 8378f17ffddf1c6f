// A file descriptor with one owner.
#pragma once

#include <unistd.h>
#include <utility>

namespace murkwell {

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor() {
        if (isOpen()) {
            ::close(number);
        }
    }
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, closed)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }

    [[nodiscard]] bool isOpen() const { return number >= 0; }
    [[nodiscard]] int get() const { return number; }

private:
    static constexpr int closed = -1;

    int number = closed;
};

} // namespace murkwell
