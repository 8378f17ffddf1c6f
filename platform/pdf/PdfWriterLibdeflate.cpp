#include "platform/pdf/PdfWriterLibdeflate.h"

#include "core/ParallelFor.h"
#include "platform/pdf/PageImage.h"

#include <array>
#include <cstdio>
#include <new>
#include <span>
#include <string>
#include <string_view>

namespace murkwell {
namespace {

using Bytes = std::vector<std::byte>;

// None when one of them cannot be made.
std::optional<std::vector<PageImage>> encodeImages(std::size_t count,
                                                   const PdfWriter::PageSource& pageAt) {
    std::vector<std::optional<PageImage>> encoded(count);
    const bool allRan = parallelFor(count, [&](std::size_t i) {
        const BitmapRef page = pageAt(i);
        encoded[i] = page ? encodePageImage(*page) : std::nullopt;
    });
    if (!allRan) {
        return std::nullopt;
    }
    std::vector<PageImage> images;
    images.reserve(encoded.size());
    for (auto& image : encoded) {
        if (!image) {
            return std::nullopt;
        }
        images.push_back(std::move(*image));
    }
    return images;
}

// "/Key 12"
std::string entry(std::string_view key, std::size_t value) {
    return std::string(key) + ' ' + std::to_string(value);
}

std::string reference(std::size_t object) {
    return std::to_string(object) + " 0 R";
}

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += digits[value >> 4];
        text += digits[value & 15];
    }
    return '<' + text + '>';
}

std::string literal(std::string_view bytes) {
    constexpr std::string_view special = "()\\\n\r\t\b\f";
    constexpr std::string_view names = "()\\nrtbf";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (const auto at = special.find(byte); at != std::string_view::npos) {
            text += '\\';
            text += names[at];
        } else if (value < ' ' || value > '~') {
            text += '\\';
            for (const int shift : {6, 3, 0}) {
                text += static_cast<char>('0' + (value >> shift & 7));
            }
        } else {
            text += byte;
        }
    }
    return '(' + text + ')';
}

// In the shorter of the two forms of a string.
std::string stringOf(std::span<const PageImage::Rgb> palette) {
    const std::string_view bytes(reinterpret_cast<const char*>(palette.data()),
                                 palette.size_bytes());
    std::string inLetters = literal(bytes);
    std::string inDigits = hexadecimal(bytes);
    return inLetters.size() < inDigits.size() ? inLetters : inDigits;
}

std::string colorSpaceOf(const PageImage& image) {
    if (image.palette.empty()) {
        return image.components == 3 ? "/DeviceRGB" : "/DeviceGray";
    }
    return entry("[/Indexed/DeviceRGB", image.palette.size() - 1) + stringOf(image.palette) + ']';
}

std::string filtersOf(const PageImage& image) {
    switch (image.packing) {
    case PageImage::Packing::runLengths:
        return "[/FlateDecode/RunLengthDecode]";
    case PageImage::Packing::rowFilters: {
        constexpr std::size_t anyPngFilter = 15;
        return "/FlateDecode/DecodeParms<<" + entry("/Predictor", anyPngFilter) +
               entry("/Colors", static_cast<std::size_t>(image.components)) +
               entry("/BitsPerComponent", static_cast<std::size_t>(image.bitsPerComponent)) +
               entry("/Columns", static_cast<std::size_t>(image.width)) + ">>";
    }
    case PageImage::Packing::none:
        break;
    }
    return "/FlateDecode";
}

// Without its length.
std::string dictionaryOf(const PageImage& image) {
    return "/Type/XObject/Subtype/Image" + entry("/Width", static_cast<std::size_t>(image.width)) +
           entry("/Height", static_cast<std::size_t>(image.height)) +
           entry("/BitsPerComponent", static_cast<std::size_t>(image.bitsPerComponent)) +
           "/ColorSpace" + colorSpaceOf(image) + "/Filter" + filtersOf(image);
}

// "WIDTH 0 0 HEIGHT": the size as a box's corner, or as a matrix without its last two numbers.
std::string extent(std::string_view first, const PageImage& image, std::string_view between) {
    return std::string(first) + std::to_string(image.width) + std::string(between) +
           std::to_string(image.height);
}

// A file of objects that are numbered from 1 as they come.
class PdfFile {
public:
    // The second line tells that what follows is no text.
    PdfFile() { add("%PDF-1.7\n%\xC2\xB5\xC2\xB6\n\n"); }

    // Answers with its number.
    std::size_t addObject(std::string_view content) {
        const std::size_t number = begin();
        add(content);
        add("\nendobj\n\n");
        return number;
    }

    std::size_t addStream(std::string_view dictionary, std::span<const std::byte> data) {
        const std::size_t number = begin();
        add("<<" + std::string(dictionary) + entry("/Length", data.size()) + ">>\nstream\n");
        bytes.insert(bytes.end(), data.begin(), data.end());
        add("\nendstream\nendobj\n\n");
        return number;
    }

    [[nodiscard]] Bytes finish(std::size_t root) {
        const std::size_t table = bytes.size();
        const std::size_t count = places.size() + 1;
        add("xref\n" + entry("0", count) + "\n0000000000 00001 f \n");
        for (const std::size_t place : places) {
            std::array<char, 24> line{};
            std::snprintf(line.data(), line.size(), "%010zu 00000 n \n", place);
            add(line.data());
        }
        add("\ntrailer\n<<" + entry("/Size", count) + "/Root " + reference(root) +
            ">>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n");
        return std::move(bytes);
    }

private:
    void add(std::string_view text) {
        const auto added = std::as_bytes(std::span(text));
        bytes.insert(bytes.end(), added.begin(), added.end());
    }

    std::size_t begin() {
        places.push_back(bytes.size());
        add(std::to_string(places.size()) + " 0 obj\n");
        return places.size();
    }

    Bytes bytes;
    std::vector<std::size_t> places; // of the objects
};

// The catalogue and the list of pages come first, so that list names objects that are yet to come.
constexpr std::size_t catalogue = 1;
constexpr std::size_t pageList = 2;
constexpr std::size_t objectsPerPage = 4; // image, resources, content, page

std::string listOfPages(std::size_t count) {
    std::string list = "<</Type/Pages" + entry("/Count", count) + "/Kids[";
    for (std::size_t i = 1; i <= count; ++i) {
        list += (i == 1 ? "" : " ") + reference(pageList + objectsPerPage * i);
    }
    return list + "]>>";
}

// A page of one point per pixel that shows the image and nothing else.
void addPage(PdfFile& file, const PageImage& image) {
    const auto picture = file.addStream(dictionaryOf(image), image.data);
    const auto resources = file.addObject("<</XObject<</Page " + reference(picture) + ">>>>");
    const std::string drawing = extent("", image, " 0 0 ") + " 0 0 cm /Page Do";
    const auto content = file.addStream("", std::as_bytes(std::span(drawing)));
    file.addObject("<</Type/Page/MediaBox[" + extent("0 0 ", image, " ") + "]/Rotate 0/Resources " +
                   reference(resources) + "/Contents " + reference(content) + "/Parent " +
                   reference(pageList) + ">>");
}

} // namespace

std::optional<Bytes> PdfWriterLibdeflate::encode(std::size_t pageCount, const PageSource& pageAt) {
    try {
        const auto images = encodeImages(pageCount, pageAt);
        if (!images) {
            return std::nullopt;
        }
        PdfFile file;
        file.addObject("<</Type/Catalog/Pages " + reference(pageList) + ">>");
        file.addObject(listOfPages(images->size()));
        for (const PageImage& image : *images) {
            addPage(file, image);
        }
        return file.finish(catalogue);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

} // namespace murkwell
