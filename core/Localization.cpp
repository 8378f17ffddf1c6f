#include "core/Localization.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

namespace murkwell {
namespace {

// The format of compiled catalogues (GNU gettext manual, 10.3), in the byte order of the machine
// that compiled it. The other order is read as well.
class MoReader {
public:
    explicit MoReader(std::string_view file) : bytes(file) {}

    // Whether this is a catalogue. Sets the byte order.
    bool readMagic() {
        constexpr std::uint32_t magic = 0x950412de;
        constexpr std::uint32_t swappedMagic = 0xde120495;
        const auto first = number(0);
        bigEndian = first == swappedMagic;
        return bigEndian || first == magic;
    }

    [[nodiscard]] std::optional<std::uint32_t> count() const { return number(8); }
    [[nodiscard]] std::optional<std::string_view> english(std::uint32_t i) const {
        return text(12, i);
    }
    [[nodiscard]] std::optional<std::string_view> translated(std::uint32_t i) const {
        return text(16, i);
    }

private:
    [[nodiscard]] std::optional<std::uint32_t> number(std::size_t offset) const {
        if (bytes.size() < 4 || offset > bytes.size() - 4) {
            return std::nullopt;
        }
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            const auto byte = static_cast<unsigned char>(bytes[offset + (bigEndian ? i : 3 - i)]);
            value = value << 8 | byte;
        }
        return value;
    }

    // Text i of the table whose offset stands at the given place: length, then offset.
    [[nodiscard]] std::optional<std::string_view> text(std::size_t place, std::uint32_t i) const {
        const std::size_t entry =
            std::size_t{number(place).value_or(UINT32_MAX)} + std::size_t{8} * i;
        const auto length = number(entry);
        const auto offset = number(entry + 4);
        if (!length || !offset || *offset > bytes.size() || *length > bytes.size() - *offset) {
            return std::nullopt;
        }
        return bytes.substr(*offset, *length);
    }

    std::string_view bytes;
    bool bigEndian = false;
};

std::optional<Catalogue>& currentCatalogue() {
    static std::optional<Catalogue> catalogue;
    return catalogue;
}

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

} // namespace

std::optional<Catalogue> Catalogue::load(const std::filesystem::path& file) {
    std::ostringstream content;
    if (!(content << std::ifstream(file, std::ios::binary).rdbuf())) {
        return std::nullopt;
    }
    Catalogue catalogue;
    catalogue.content = std::make_shared<const std::string>(std::move(content).str());
    MoReader reader(*catalogue.content);
    if (!reader.readMagic() || !reader.count()) {
        return std::nullopt;
    }
    for (std::uint32_t i = 0; i < *reader.count(); ++i) {
        const auto english = reader.english(i);
        const auto translated = reader.translated(i);
        if (!english || !translated) {
            return std::nullopt;
        }
        catalogue.entries.push_back({*english, *translated});
    }
    std::ranges::sort(catalogue.entries, {}, &Entry::english);
    return catalogue;
}

std::optional<std::string_view> Catalogue::find(std::string_view english) const {
    const auto found = std::ranges::lower_bound(entries, english, {}, &Entry::english);
    if (english.empty() || found == entries.end() || found->english != english ||
        found->translated.empty()) {
        return std::nullopt;
    }
    return found->translated;
}

std::string localized(std::string_view english) {
    const auto& catalogue = currentCatalogue();
    return std::string((catalogue ? catalogue->find(english) : std::nullopt).value_or(english));
}

std::string localized(std::string_view englishFormat,
                      std::initializer_list<FormatArgument> arguments) {
    const std::string format = localized(englishFormat);
    std::string text;
    const auto* next = arguments.begin();
    for (std::size_t i = 0; i < format.size(); ++i) {
        const bool isPlaceholder = format[i] == '%' && i + 1 < format.size() &&
                                   (format[i + 1] == '@' || format[i + 1] == 'd');
        if (isPlaceholder && next != arguments.end()) {
            text += next->text();
            ++next;
            ++i;
        } else {
            text += format[i];
        }
    }
    return text;
}

void useCatalogue(std::optional<Catalogue> catalogue) {
    currentCatalogue() = std::move(catalogue);
}

std::vector<std::string> userLanguages() {
    std::string_view locale;
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (locale.empty()) {
            locale = environment(name);
        }
    }
    std::vector<std::string> languages;
    const bool isPlain =
        locale.empty() || locale == "POSIX" || locale.substr(0, locale.find('.')) == "C";
    if (!isPlain) {
        std::string_view list = environment("LANGUAGE");
        while (!list.empty()) {
            const std::string_view first = list.substr(0, list.find(':'));
            list.remove_prefix(std::min(first.size() + 1, list.size()));
            languages.emplace_back(first);
        }
        languages.emplace_back(locale);
        std::erase(languages, "");
    }
    languages.emplace_back("en");
    return languages;
}

std::vector<std::string> languageVariants(std::string_view language) {
    // A name with a slash would lead out of a folder.
    if (language.find('/') != std::string_view::npos) {
        return {};
    }
    const std::string whole(language.substr(0, language.find_first_of(".@")));
    std::vector<std::string> names{whole};
    if (const std::size_t territory = whole.find('_'); territory != std::string::npos) {
        names.push_back(whole.substr(0, territory));
    }
    return names;
}

std::filesystem::path catalogueFolder() {
    std::error_code ignored;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    return program.parent_path().parent_path() / "share" / "locale";
}

std::optional<Catalogue> findCatalogue(const std::filesystem::path& folder,
                                       std::span<const std::string> languages) {
    for (const std::string& language : languages) {
        for (const std::string& name : languageVariants(language)) {
            if (auto found = Catalogue::load(folder / name / "LC_MESSAGES" / "murkwell.mo")) {
                return found;
            }
        }
    }
    return std::nullopt;
}

} // namespace murkwell
