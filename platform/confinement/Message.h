// What the program and a worker say to each other: records of one size. Whatever has no place in
// one lies in memory that the program lends (SharedMemory.h).
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace murkwell {

// How a worker ends that was refused memory: not its fault.
constexpr int exitedForMemory = 75;

// What the recognition worker can do.
enum class Engine : std::int32_t { text, faces };

struct Message {
    enum class Kind : std::uint32_t {
        // From the program. The first two are kept for the request that follows.
        source,  // size; attached: the bytes of a file, or none when size is 0
        picture, // width, height; attached: pixels
        lent,    // size; attached: memory for results
        refused, // no memory to be had
        open,    // the PDF that is the source. index: 1 to repair it first; width: 1 when text is a
                 // password; number, size: bytes of memory for large blocks, one and all.
                 // Answer: index: pages, or 0, then width 1 when a password is wanted
        page,    // index: draw this page. Answer: index: DrawnPage::End; a bitmap, or width 0;
                 // number: 1 when it is complete
        decode,  // the picture file that is the source. Answer: index: 0; a bitmap; text: type;
                 // size: pictures in the file
        encode,  // the picture. text: type; number: quality, negative for the encoder's own.
                 // Answer: index: 0; bytes
        canEncode, // index: number of a type. Answer: index: 0; text: type
        readText,  // of the picture. Answer: index: Outcome; lines
        findFaces, // in the picture. Answer: index: Outcome; boxes
        isUsable,  // index: Engine. Answer: index: Outcome; lines: what is missing

        // From a worker.
        ready, // index: missing walls (Walls.h)
        lend,  // size: memory is needed
        done, // index: how it went, as the request has it; width and height of a bitmap, or size of
              // other bytes, in lent memory
    };

    Kind kind{};
    std::int32_t index = 0;
    std::int32_t width = 0;  // pixels
    std::int32_t height = 0; // pixels
    std::uint64_t size = 0;  // bytes
    double number = 0;
    std::array<char, 128> text{}; // UTF-8, zeros behind it

    // False when it does not fit.
    [[nodiscard]] bool setText(std::string_view value) {
        text.fill('\0');
        std::copy_n(value.begin(), std::min(value.size(), text.size()), text.begin());
        return value.size() < text.size();
    }
    [[nodiscard]] std::string_view textView() const {
        return {text.begin(), std::find(text.begin(), text.end(), '\0')};
    }
};
static_assert(std::is_trivially_copyable_v<Message> &&
              std::has_unique_object_representations_v<std::array<char, 128>>);

} // namespace murkwell
