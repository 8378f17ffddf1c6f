// Where the program leads the user outside of itself. The one place to be changed by whoever
// distributes it.
#pragma once

#include <string_view>

namespace murkwell::Addresses {

// The product's page, on the maker's web site.
inline constexpr std::string_view productPage = "https://murkwell.example/";

// Its page in the desktop's software centre, which is what updates it.
inline constexpr std::string_view softwareCentre = "appstream://com.tallowick.Murkwell";

// The folder of the help in the user's languages, below share/ beside the folder of the program.
inline constexpr std::string_view helpFolder = "murkwell/help";

} // namespace murkwell::Addresses
