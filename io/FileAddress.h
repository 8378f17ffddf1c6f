// file: addresses, in which desktops hand files around. A name is bytes, and so its address is
// taken apart as bytes: whatever goes through characters loses the names that are not UTF-8.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace murkwell {

// Of an absolute path; ASCII.
[[nodiscard]] std::string fileAddress(const std::filesystem::path& file);

// None when the address is not one of a file on this machine, whose name it may spell as its host.
[[nodiscard]] std::optional<std::filesystem::path> fileOfAddress(std::string_view address);

// Those of a text/uri-list that are files on this machine, in their order.
[[nodiscard]] std::vector<std::filesystem::path> filesOfAddressList(std::string_view list);

// Whether it is meant for a file address, whatever machine the file is on.
[[nodiscard]] bool isFileAddress(std::string_view text);

} // namespace murkwell
