// What a file is: a small registry of uniform type identifiers, their extensions and conformance.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace murkwell {

// A value; two types are equal when their identifiers are.
class ContentType {
public:
    static const ContentType data; // any plain data: every other type here conforms to it
    static const ContentType png;
    static const ContentType jpeg;
    static const ContentType mpo; // several JPEG pictures in one file; conforms to JPEG
    static const ContentType tiff;
    static const ContentType bmp;
    static const ContentType gif;
    static const ContentType heic;
    static const ContentType heif;
    static const ContentType avif;
    static const ContentType pdf;
    static const ContentType session; // our own saved document

    // None when no known type has this extension (without the dot; letter case does not matter).
    [[nodiscard]] static std::optional<ContentType> fromExtension(std::string_view extension);

    // None when the identifier is unknown.
    [[nodiscard]] static std::optional<ContentType> fromIdentifier(std::string_view identifier);

    [[nodiscard]] std::string_view identifier() const { return identifier_; }

    // True for the type itself and for all that it is a kind of.
    [[nodiscard]] bool conformsTo(const ContentType& other) const;

    // Without the dot. None when files of this type have no extension of their own.
    [[nodiscard]] std::optional<std::string_view> preferredFilenameExtension() const;

    // Every extension, without the dot, of files of this type and of all that is a kind of it.
    [[nodiscard]] std::vector<std::string_view> filenameExtensions() const;

    bool operator==(const ContentType&) const = default;

private:
    explicit constexpr ContentType(std::string_view identifier) : identifier_(identifier) {}

    std::string_view identifier_; // static storage
};

} // namespace murkwell
