// The memory that pixels lie in, and the account of it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>

namespace murkwell {

// Linux lends more memory than there is and kills whoever then touches it. A document of a few
// kilobytes can ask for hundreds of huge pages, so whatever holds pixels takes a share first and is
// refused while the program can still say so: all shares together are at most three quarters of the
// machine's memory. A share is given back when it goes. Any thread.
class PixelShare {
public:
    // None when there is not so much left. In bytes.
    [[nodiscard]] static std::optional<PixelShare> take(std::size_t bytes);

    ~PixelShare();
    PixelShare(PixelShare&& other) noexcept;
    PixelShare& operator=(PixelShare&& other) noexcept;

private:
    explicit PixelShare(std::size_t taken) : bytes(taken) {}

    std::size_t bytes;
};

namespace PixelMemory {

enum class Content { zero, toBeOverwritten };

// Goes back to where it came from with its last owner.
using Block = std::shared_ptr<std::byte>;

// So many bytes with their share. Null when memory runs out.
[[nodiscard]] Block take(std::size_t bytes, Content content);

// Somebody else's memory for the pixels that this process makes.
class Lender {
public:
    virtual ~Lender() = default;

    // None when this block shall come from the process's own memory; null when there is no more.
    [[nodiscard]] virtual std::optional<Block> lend(std::size_t bytes, Content content) = 0;
};

// From now on take() asks the lender first, who is not owned; null ends that. Not while another
// thread may take.
void borrowFrom(Lender* lender);

} // namespace PixelMemory
} // namespace murkwell
