// Files made to break a decoder. What matters is that every call comes back, soon and in bounds.
#include "platform/image/BmpFile.h"
#include "platform/image/HeicEncoding.h"
#include "platform/image/VipsSession.h"
#include "tests/platform/image/TiffPictures.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace murkwell {
namespace {

using namespace std::string_view_literals;
using vips::VImage;

// One small file of every format and of every way through its decoder.
std::vector<std::pair<std::string, Bytes>> smallFiles() {
    const VImage image = gradient(24, 16, 3);
    std::vector<std::pair<std::string, Bytes>> files{
        {"png", saved(image, ".png")},
        {"interlaced png",
         saved(gradient(24, 16, 4), ".png", VImage::option()->set("interlace", true))},
        {"palette png", saved(image, ".png", VImage::option()->set("palette", true))},
        {"jpeg", saved(image, ".jpg")},
        {"progressive jpeg", saved(image, ".jpg", VImage::option()->set("interlace", true))},
        {"tiff", saved(image, ".tif")},
        {"tiled tiff", saved(gradient(24, 16, 4), ".tif",
                             VImage::option()
                                 ->set("tile", true)
                                 ->set("compression", VIPS_FOREIGN_TIFF_COMPRESSION_LZW))},
        {"jpeg in tiff",
         saved(image, ".tif",
               VImage::option()->set("compression", VIPS_FOREIGN_TIFF_COMPRESSION_JPEG))},
        {"tiff of 12 bits in tiled planes",
         tiffOf({2, 4, 12, true, true}, 24, 16,
                [](unsigned x, unsigned y, unsigned i) { return (x * y * 99 + i) % 4096; })},
        {"old-style jpeg in tiff", oldStyleJpegTiff(saved(image, ".jpg"), 24, 16, 2)},
        {"gif", saved(image, ".gif")},
        {"bmp", encodeBmp(*decoded(saved(image, ".png")))},
    };
    if (canEncodeHeic()) {
        files.emplace_back("heic", *encodeHeic(*decoded(files.front().second), 0.5));
    }
    return files;
}

// A decoded picture is whole: all of its pixels can be read and none exceeds its alpha.
void expectSound(const BitmapRef& bitmap, const std::string& what) {
    if (bitmap) {
        EXPECT_TRUE(std::ranges::all_of(bitmap->pixels(), [](const Rgba& p) {
            return std::max({p.r, p.g, p.b}) <= p.a;
        })) << what;
    }
}

TEST(HostileImage, EveryTruncationComesBack) {
    for (const auto& [name, file] : smallFiles()) {
        ASSERT_TRUE(decoded(file)) << name;
        const std::size_t step = std::max<std::size_t>(1, file.size() / 150);
        for (std::size_t size = 0; size < file.size(); size += step) {
            expectSound(decoded(std::span(file).first(size)), name);
        }
    }
}

TEST(HostileImage, RandomMutationsComeBack) {
    std::mt19937 generator(11);
    for (const auto& [name, file] : smallFiles()) {
        for (int round = 0; round < 100; ++round) {
            Bytes mutated = file;
            for (unsigned changes = generator() % 8 + 1; changes > 0; --changes) {
                mutated[generator() % mutated.size()] = static_cast<std::byte>(generator());
            }
            expectSound(decoded(mutated), name);
        }
    }
}

// The position behind the marker of a JPEG, or past the end.
std::size_t behind(const Bytes& file, std::string_view marker) {
    const Bytes wanted = bytes(marker);
    const auto found = std::search(file.begin(), file.end(), wanted.begin(), wanted.end());
    return static_cast<std::size_t>(found - file.begin()) + marker.size();
}

void putBigEndian16(Bytes& file, std::size_t at, unsigned value) {
    file.at(at) = static_cast<std::byte>(value >> 8);
    file.at(at + 1) = static_cast<std::byte>(value & 255);
}

TEST(HostileImage, AbsurdSizesAreRefusedByTheHeader) {
    const VImage image = gradient(16, 16, 3);
    Bytes png = saved(image, ".png");
    putBigEndian16(png, 16, 30000); // width times 65536
    EXPECT_FALSE(decoded(png));

    Bytes jpeg = saved(image, ".jpg");
    const std::size_t header = behind(jpeg, "\xff\xc0"sv);
    putBigEndian16(jpeg, header + 3, 65500);
    putBigEndian16(jpeg, header + 5, 65500);
    EXPECT_FALSE(decoded(jpeg));

    // Screen and frame, for a decoder may believe either.
    Bytes gif = bytes("GIF89a\xff\xff\xff\xff\x80\0\0"sv);
    const Bytes frame =
        bytes({1, 2, 3, 4, 5, 6, 0x2c, 0, 0, 0, 0, 0xff, 0xff, 0xff, 0xff, 0, 2, 2, 0x4c, 1, 0});
    gif.insert(gif.end(), frame.begin(), frame.end());
    EXPECT_FALSE(decoded(gif));

    // A directory of width, height, one strip.
    Bytes tiff = bytes("II*\0\x08\0\0\0\x04\0"sv);
    for (const unsigned tag : {0U, 1U}) {
        const Bytes entry = bytes({tag, 1, 4, 0, 1, 0, 0, 0, 0, 0, 0x28, 0xee});
        tiff.insert(tiff.end(), entry.begin(), entry.end());
    }
    const Bytes rest = bytes({0x11, 1, 4, 0, 1, 0, 0, 0, 8,    0, 0, 0, //
                              0x17, 1, 4, 0, 1, 0, 0, 0, 0x40, 0, 0, 0, //
                              0,    0, 0, 0});
    tiff.insert(tiff.end(), rest.begin(), rest.end());
    EXPECT_FALSE(decoded(tiff));
}

// Each scan of a progressive JPEG goes over the whole picture again.
TEST(HostileImage, ScanBombIsRefused) {
    const Bytes original =
        saved(gradient(16, 16, 3), ".jpg", VImage::option()->set("interlace", true));
    const std::size_t frame = behind(original, "\xff\xc2"sv);
    const std::size_t scan = behind(original, "\xff\xda"sv) - 2;
    const std::size_t secondScan =
        scan + 2 +
        behind(Bytes(original.begin() + static_cast<std::ptrdiff_t>(scan) + 2, original.end()),
               "\xff\xda"sv) -
        2;
    ASSERT_LT(secondScan, original.size());
    Bytes bomb(original.begin(), original.begin() + static_cast<std::ptrdiff_t>(scan));
    putBigEndian16(bomb, frame + 3, 20000);
    putBigEndian16(bomb, frame + 5, 20000);
    for (int i = 0; i < 90; ++i) { // fewer than the decoder itself takes for an attack
        bomb.insert(bomb.end(), original.begin() + static_cast<std::ptrdiff_t>(scan),
                    original.begin() + static_cast<std::ptrdiff_t>(secondScan));
    }
    EXPECT_FALSE(decoded(bomb));
}

TEST(HostileImage, DeadlineStopsAComputationAndWhatIsMadeFromIt) {
    const VipsSession session;
    VImage source = VImage::black(3000, 3000);
    const VipsDeadline deadline(source, TimeLimit(std::chrono::seconds(0)));
    EXPECT_THROW((void)(source + 1).avg(), vips::VError);

    VImage unhurried = VImage::black(3000, 3000);
    const VipsDeadline distant(unhurried, TimeLimit(std::chrono::hours(1)));
    EXPECT_EQ((unhurried + 1).avg(), 1);
}

TEST(HostileImage, DeadlineDoesNotCountWaiting) {
    using namespace std::chrono_literals;
    const VipsSession session;
    VImage source = VImage::black(30, 30);
    const VipsDeadline deadline(source, TimeLimit(200ms));
    std::this_thread::sleep_for(250ms);
    EXPECT_EQ((source + 1).avg(), 1);
}

} // namespace
} // namespace murkwell
