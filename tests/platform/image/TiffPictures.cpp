#include "tests/platform/image/TiffPictures.h"

namespace murkwell {
namespace {

// Big-endian, like the bit streams of samples.
void put(Bytes& file, std::size_t value, int size) {
    for (int i = size - 1; i >= 0; --i) {
        file.push_back(static_cast<std::byte>(value >> 8 * i));
    }
}

} // namespace

Bytes tiffOf(TiffTags tags, const std::vector<Bytes>& chunks, bool tiled) {
    constexpr std::size_t headerSize = 8;
    Bytes data;
    for (const Bytes& chunk : chunks) {
        tags[tiled ? 324 : 273].push_back(static_cast<unsigned>(headerSize + data.size()));
        tags[tiled ? 325 : 279].push_back(static_cast<unsigned>(chunk.size()));
        data.insert(data.end(), chunk.begin(), chunk.end());
    }
    Bytes directory;
    put(directory, tags.size(), 2);
    for (const auto& [tag, values] : tags) {
        // Numbers of 4 bytes, but for a profile.
        const int size = tag == tiffProfile ? 1 : 4;
        put(directory, tag, 2);
        put(directory, size == 1 ? 7 : 4, 2);
        put(directory, values.size(), 4);
        if (values.size() == 1) {
            put(directory, values.front(), 4);
            continue;
        }
        put(directory, headerSize + data.size(), 4);
        for (const unsigned value : values) {
            put(data, value, size);
        }
    }
    put(directory, 0, 4);
    Bytes file = bytes("MM");
    put(file, 42, 2);
    put(file, headerSize + data.size(), 4);
    file.insert(file.end(), data.begin(), data.end());
    file.insert(file.end(), directory.begin(), directory.end());
    return file;
}

Bytes oldStyleJpegTiff(const Bytes& jpeg, unsigned width, unsigned height, unsigned subsampling) {
    constexpr unsigned headerSize = 8;
    return tiffOf({{256, {width}},
                   {257, {height}},
                   {258, {8, 8, 8}},
                   {259, {6}},
                   {262, {6}},
                   {277, {3}},
                   {278, {height}},
                   {512, {1}},
                   {513, {headerSize}},
                   {514, {static_cast<unsigned>(jpeg.size())}},
                   {530, {subsampling, subsampling}}},
                  {jpeg}, false);
}

} // namespace murkwell
