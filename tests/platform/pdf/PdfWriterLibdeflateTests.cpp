#include "platform/pdf/PdfWriterLibdeflate.h"

#include "platform/pdf/PdfRendererMuPdf.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace murkwell {
namespace {

BitmapRef plain(int width, int height, Rgba colour) {
    const auto page = Bitmap::create(width, height);
    std::ranges::fill(page->pixels(), colour);
    return page;
}

std::optional<std::vector<std::byte>> encode(const std::vector<BitmapRef>& pages) {
    return PdfWriterLibdeflate().encode(pages.size(), [&](std::size_t i) { return pages[i]; });
}

std::string text(const std::vector<std::byte>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

TEST(PdfWriterLibdeflate, OnePagePerBitmapAtOnePointPerPixel) {
    const std::vector<Rgba> colours{{255, 0, 0, 255}, {0, 0, 0, 255}, {1, 2, 3, 255}};
    std::vector<BitmapRef> pages;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        pages.push_back(plain(30 + static_cast<int>(i), 20, colours[i]));
    }
    const auto pdf = encode(pages);
    ASSERT_TRUE(pdf);
    const auto result = PdfRendererMuPdf().render(*pdf, std::nullopt);
    const auto& rendered = std::get<std::vector<RenderedPage>>(result);
    ASSERT_EQ(rendered.size(), colours.size());
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const BitmapRef page = rendered[i].image->unpack();
        EXPECT_EQ(page->width(), 2 * pages[i]->width());
        EXPECT_EQ(page->height(), 40);
        EXPECT_EQ(std::ranges::count(page->pixels(), colours[i]), std::ssize(page->pixels()));
    }
}

TEST(PdfWriterLibdeflate, HoldsNothingButPagesAndIsTheSameEveryTime) {
    const std::vector<BitmapRef> pages{plain(30, 20, {255, 0, 0, 255})};
    const auto pdf = encode(pages);
    ASSERT_TRUE(pdf);
    for (const char* unwanted : {"/Info", "/ID", "/Metadata", "/Font", "Date", "Producer"}) {
        EXPECT_EQ(text(*pdf).find(unwanted), std::string::npos) << unwanted;
    }
    EXPECT_EQ(encode(pages), pdf);
}

TEST(PdfWriterLibdeflate, HoldsAPageForAsLongAsItIsEncodedAndFailsWithoutOne) {
    std::vector<std::weak_ptr<const Bitmap>> given;
    const auto pdf = PdfWriterLibdeflate().encode(1, [&](std::size_t) {
        const BitmapRef page = plain(30, 20, {255, 0, 0, 255});
        given.push_back(page);
        return page;
    });
    EXPECT_TRUE(pdf);
    ASSERT_EQ(given.size(), 1U);
    EXPECT_TRUE(given[0].expired());
    EXPECT_FALSE(encode({plain(30, 20, {255, 0, 0, 255}), nullptr}));
}

} // namespace
} // namespace murkwell
