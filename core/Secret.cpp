#include "core/Secret.h"

#include <cstring>

namespace murkwell {

Secret::Secret() : text(new std::optional<std::string>(std::in_place)) {
    text->value().reserve(longest);
}

Secret Secret::copy() const {
    Secret other;
    static_cast<void>(other.append(text->value()));
    return other;
}

bool Secret::append(std::string_view more) {
    if (more.size() > longest - text->value().size()) {
        return false;
    }
    text->value() += more;
    return true;
}

void Secret::Wipe::operator()(std::optional<std::string>* secret) const {
    ::explicit_bzero(secret->value().data(), secret->value().capacity());
    delete secret;
}

} // namespace murkwell
