// Texts in the user's language. A text is looked up by its English wording, which is also what is
// shown when no catalogue has it.
//
// The catalogues are those of GNU gettext (po/). They are read by this module itself, since the C
// library's would need the user's locale to be installed on the machine, and tests none at all.
#pragma once

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace murkwell {

// One language's texts: the content of a compiled catalogue (.mo).
class Catalogue {
public:
    // None when the file cannot be read or is no catalogue.
    [[nodiscard]] static std::optional<Catalogue> load(const std::filesystem::path& file);

    // None when the text is not in the catalogue or not translated.
    [[nodiscard]] std::optional<std::string_view> find(std::string_view english) const;

private:
    struct Entry {
        std::string_view english;
        std::string_view translated;
    };

    // Shared, so that copies keep the views valid.
    std::shared_ptr<const std::string> content;
    std::vector<Entry> entries; // sorted by their English text
};

// What fills a %@ (a text) or a %d (a number) of a format.
class FormatArgument {
public:
    FormatArgument(std::string_view value) : text_(value) {}
    FormatArgument(const std::string& value) : text_(value) {}
    FormatArgument(const char* value) : text_(value) {}
    FormatArgument(std::integral auto value) : text_(std::to_string(value)) {}

    [[nodiscard]] const std::string& text() const { return text_; }

private:
    std::string text_;
};

// Marks a text for the catalogues where it is only named; whoever shows it calls localized().
[[nodiscard]] constexpr std::string_view translatable(std::string_view english) {
    return english;
}

[[nodiscard]] std::string localized(std::string_view english);

// Each %@ or %d takes the next argument.
[[nodiscard]] std::string localized(std::string_view englishFormat,
                                    std::initializer_list<FormatArgument> arguments);

// Takes effect for every text looked up from then on; none brings the English keys back. To be
// called before other threads look anything up.
void useCatalogue(std::optional<Catalogue> catalogue);

// The user's languages, most wanted first, from LANGUAGE, LC_ALL, LC_MESSAGES and LANG as gettext
// reads them; English comes last.
[[nodiscard]] std::vector<std::string> userLanguages();

// What files for a language may be called, the closest first: de_AT and de for de_AT.UTF-8@euro.
[[nodiscard]] std::vector<std::string> languageVariants(std::string_view language);

// share/locale beside the folder of the running program, installed or not.
[[nodiscard]] std::filesystem::path catalogueFolder();

// The catalogue of the first of these languages for which FOLDER/LANGUAGE/LC_MESSAGES/murkwell.mo
// is there; that of de for de_AT.
[[nodiscard]] std::optional<Catalogue> findCatalogue(const std::filesystem::path& folder,
                                                     std::span<const std::string> languages);

} // namespace murkwell
