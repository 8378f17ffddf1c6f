#include "platform/ocr/LineReader.h"

#include "platform/vision/OnnxSession.h"

#include <algorithm>

namespace murkwell {
namespace {

// Planes of blue, green and red from -1 to 1.
Tensor inputFor(const cv::Mat& image) {
    const auto plane = static_cast<std::size_t>(image.rows) * static_cast<std::size_t>(image.cols);
    Tensor input{{1, 3, image.rows, image.cols}, std::vector<float>(3 * plane)};
    for (std::size_t c = 0; c < 3; ++c) {
        float* to = input.values.data() + c * plane;
        for (int y = 0; y < image.rows; ++y) {
            const uchar* from = image.ptr(y) + c;
            for (int x = 0; x < image.cols; ++x, from += 3) {
                *to++ = static_cast<float>(*from) / 127.5F - 1;
            }
        }
    }
    return input;
}

} // namespace

std::optional<std::vector<ReadCharacter>> readStrip(const LineStrip& strip, OnnxSession& network,
                                                    const std::string& alphabet) {
    const auto outputs = network.run(inputFor(strip.image));
    if (!outputs || outputs->front().shape.size() != 3 ||
        outputs->front().shape[2] != static_cast<std::int64_t>(alphabet.size()) + 1) {
        return std::nullopt;
    }
    const auto& [shape, values] = outputs->front();
    const auto steps = static_cast<std::size_t>(shape[1]);
    const std::size_t classes = alphabet.size() + 1;
    const double columns = static_cast<double>(strip.image.cols) / static_cast<double>(steps);

    // Connectionist temporal classification: equal answers of neighbouring steps are one character.
    std::vector<ReadCharacter> characters;
    std::size_t last = 0;
    std::size_t start = 0;
    for (std::size_t step = 0; step < steps; ++step) {
        const auto first = values.begin() + static_cast<std::ptrdiff_t>(step * classes);
        const auto best = std::max_element(first, first + static_cast<std::ptrdiff_t>(classes));
        const auto answer = static_cast<std::size_t>(best - first);
        if (answer != 0) {
            if (answer != last) {
                start = step;
                characters.push_back({alphabet[answer - 1], 0, *best});
            }
            characters.back().centre = static_cast<double>(start + step + 1) / 2 * columns;
        }
        last = answer;
    }
    return characters;
}

} // namespace murkwell
