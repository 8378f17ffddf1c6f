// Pages with text, drawn with strokes, and pages that no reader likes.
#pragma once

#include "core/Bitmap.h"
#include "platform/vision/PixelMatrix.h"

#include <memory>
#include <opencv2/imgproc.hpp>
#include <random>
#include <string>

namespace murkwell {

class DrawnPage {
public:
    DrawnPage(int width, int height) : bitmap(Bitmap::create(width, height)) {
        pixels = pixelsOf(*bitmap);
        fill({255, 255, 255, 255});
    }

    void fill(const cv::Scalar& rgba) { pixels.setTo(rgba); }

    // The baseline of the text begins at (x, y); capitals are about 22 pixels high.
    cv::Rect write(const std::string& text, int x, int y) {
        int below = 0;
        const cv::Size size = cv::getTextSize(text, cv::FONT_HERSHEY_SIMPLEX, 1, thickness, &below);
        cv::putText(pixels, text, {x, y}, cv::FONT_HERSHEY_SIMPLEX, 1, {0, 0, 0, 255}, thickness,
                    cv::LINE_AA);
        return {x, y - size.height, size.width, size.height};
    }

    void addNoise() {
        std::mt19937 generator(5);
        for (Rgba& pixel : bitmap->pixels()) {
            const auto bits = generator();
            pixel = {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                     static_cast<std::uint8_t>(bits >> 16), 255};
        }
    }

    std::shared_ptr<Bitmap> bitmap;

private:
    static constexpr int thickness = 2;
    cv::Mat pixels;
};

} // namespace murkwell
