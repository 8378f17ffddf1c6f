#include "io/ContentType.h"

#include "io/DocumentIO.h"

#include <gtest/gtest.h>
#include <vector>

namespace murkwell {
namespace {

TEST(ContentType, ExtensionsInAnyLetterCase) {
    struct Case {
        const char* extension;
        const char* identifier;
    };
    for (const Case& c : std::vector<Case>{{"pdf", "com.adobe.pdf"},
                                           {"PDF", "com.adobe.pdf"},
                                           {"png", "public.png"},
                                           {"jpg", "public.jpeg"},
                                           {"JPEG", "public.jpeg"},
                                           {"tif", "public.tiff"},
                                           {"tiff", "public.tiff"},
                                           {"bmp", "com.microsoft.bmp"},
                                           {"gif", "com.compuserve.gif"},
                                           {"heic", "public.heic"},
                                           {"heif", "public.heif"},
                                           {"murkwell", "com.tallowick.murkwell.document"},
                                           {"", "none"},
                                           {"txt", "none"},
                                           {".png", "none"}}) {
        const auto type = ContentType::fromExtension(c.extension);
        EXPECT_EQ(type ? type->identifier() : "none", c.identifier) << c.extension;
    }
}

TEST(ContentType, IdentifiersRoundTripAndStrangersAreUnknown) {
    for (const ContentType& type : DocumentIO::imageTypes()) {
        EXPECT_EQ(ContentType::fromIdentifier(type.identifier()), type);
        EXPECT_EQ(ContentType::fromExtension(*type.preferredFilenameExtension()), type);
    }
    EXPECT_EQ(ContentType::fromIdentifier("public.PNG"), std::nullopt);
    EXPECT_EQ(ContentType::fromIdentifier(""), std::nullopt);
}

TEST(ContentType, ConformanceGoesUpOnly) {
    EXPECT_TRUE(ContentType::jpeg.conformsTo(ContentType::jpeg));
    EXPECT_TRUE(ContentType::mpo.conformsTo(ContentType::jpeg));
    EXPECT_TRUE(ContentType::mpo.conformsTo(ContentType::data));
    EXPECT_FALSE(ContentType::jpeg.conformsTo(ContentType::mpo));
    EXPECT_FALSE(ContentType::png.conformsTo(ContentType::jpeg));
    EXPECT_TRUE(DocumentIO::sessionType().conformsTo(ContentType::data));
}

TEST(ContentType, HasTheExtensionsOfItsKinds) {
    using Extensions = std::vector<std::string_view>;
    EXPECT_EQ(ContentType::jpeg.filenameExtensions(), (Extensions{"jpeg", "jpg", "jpe", "mpo"}));
    EXPECT_EQ(ContentType::pdf.filenameExtensions(), Extensions{"pdf"});
    for (const std::string_view extension : ContentType::data.filenameExtensions()) {
        EXPECT_TRUE(ContentType::fromExtension(extension)) << extension;
    }
}

TEST(ContentType, ImageTypesAreOfferedInOrder) {
    std::string order;
    for (const ContentType& type : DocumentIO::imageTypes()) {
        order += std::string(*type.preferredFilenameExtension()) + " ";
    }
    EXPECT_EQ(order, "png jpeg tiff bmp gif heic heif ");
}

} // namespace
} // namespace murkwell
