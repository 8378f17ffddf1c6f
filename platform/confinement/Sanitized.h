// Whether this is a build for finding mistakes. The sanitizers map shadows of all memory there
// could be, make calls that no worker needs, and want to be heard.
#pragma once

namespace murkwell {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
constexpr bool isSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool isSanitized = false;
#endif

} // namespace murkwell
