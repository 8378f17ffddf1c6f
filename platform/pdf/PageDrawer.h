// One thread's view of a document, which draws its pages one at a time.
#pragma once

#include "io/PdfRenderer.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <variant>

namespace murkwell {

struct PageLimits {
    std::chrono::nanoseconds openingTime; // processor time; kept by who can end the process
    std::chrono::nanoseconds pageTime;    // the same
    // Of large blocks, decoded streams and pictures, in bytes: in one, and in all of the drawers
    // that there are.
    std::size_t largestBlock;
    std::size_t allLargeBlocks;
    std::size_t drawers = 1; // at the same time, at most
};

struct DrawnPdfPage {
    enum class End : std::uint8_t {
        drawn,    // without an image: the file makes the page impossible
        stopped,  // by a limit of ours
        repaired, // the file is damaged: what has been read of it so far need not be what it holds
    };

    End end;
    BitmapRef image = nullptr; // null unless drawn
    bool isComplete = true;
};

// What comes out depends on the file and the page alone, not on what was drawn before.
class PageDrawer {
public:
    virtual ~PageDrawer() = default;

    [[nodiscard]] virtual std::size_t pageCount() const = 0;
    [[nodiscard]] virtual DrawnPdfPage draw(std::size_t page) = 0;
};

using OpenedDrawer = std::variant<std::unique_ptr<PageDrawer>, LoadFailure>;

// How the file is read: by its own table of contents, or by one that is made from what is found in
// it, which is the way to read a damaged one.
enum class FileReading : std::uint8_t { plain, repaired };

// Called on any thread, and on several at once.
using OpenDrawer = std::function<OpenedDrawer(const PageLimits&, FileReading)>;

} // namespace murkwell
