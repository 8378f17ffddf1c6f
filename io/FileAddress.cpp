#include "io/FileAddress.h"

#include "io/FileName.h"

#include <array>
#include <charconv>
#include <climits>
#include <unistd.h>

namespace murkwell {
namespace {

constexpr std::string_view scheme = "file:";
constexpr std::string_view hostMark = "//";

// What an address may hold as it is; every other byte is written as %XX.
bool standsForItself(char byte) {
    constexpr std::string_view punctuation = "-._~/";
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || punctuation.find(byte) != std::string_view::npos;
}

// A % without two digits behind it is left as it is.
std::string decoded(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned value = 0;
        const std::string_view digits = text.substr(i + 1, 2);
        const bool isCode =
            text[i] == '%' && digits.size() == 2 &&
            std::from_chars(digits.begin(), digits.end(), value, 16).ptr == digits.end();
        bytes.push_back(isCode ? static_cast<char>(value) : text[i]);
        i += isCode ? 2 : 0;
    }
    return bytes;
}

bool isThisMachine(std::string_view host) {
    std::array<char, HOST_NAME_MAX + 1> own{};
    return host.empty() || lowerCased(host) == "localhost" ||
           (::gethostname(own.data(), own.size() - 1) == 0 &&
            lowerCased(host) == lowerCased(own.data()));
}

} // namespace

std::string fileAddress(const std::filesystem::path& file) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string address = std::string(scheme) + std::string(hostMark);
    for (const char byte : file.native()) {
        if (standsForItself(byte)) {
            address += byte;
        } else {
            const auto value = static_cast<unsigned char>(byte);
            address += {'%', digits[value >> 4U], digits[value & 15U]};
        }
    }
    return address;
}

bool isFileAddress(std::string_view text) {
    return lowerCased(text.substr(0, scheme.size())) == scheme &&
           text.substr(scheme.size()).starts_with(hostMark);
}

std::optional<std::filesystem::path> fileOfAddress(std::string_view address) {
    if (lowerCased(address.substr(0, scheme.size())) != scheme) {
        return std::nullopt;
    }
    std::string_view rest = address.substr(scheme.size());
    rest = rest.substr(0, rest.find_first_of("?#"));
    if (rest.starts_with(hostMark)) {
        rest.remove_prefix(hostMark.size());
        const std::string_view host = rest.substr(0, rest.find('/'));
        if (!isThisMachine(host)) {
            return std::nullopt;
        }
        rest.remove_prefix(host.size());
    }
    std::string bytes = decoded(rest);
    if (!bytes.starts_with('/') || bytes.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return std::filesystem::path(std::move(bytes));
}

std::vector<std::filesystem::path> filesOfAddressList(std::string_view list) {
    std::vector<std::filesystem::path> files;
    while (!list.empty()) {
        const std::string_view line = list.substr(0, list.find_first_of("\r\n"));
        list.remove_prefix(std::min(line.size() + 1, list.size()));
        if (auto file = fileOfAddress(line)) {
            files.push_back(std::move(*file));
        }
    }
    return files;
}

} // namespace murkwell
