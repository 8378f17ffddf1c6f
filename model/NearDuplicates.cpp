#include "model/NearDuplicates.h"

#include <algorithm>
#include <cmath>

namespace murkwell {
namespace {

// In page space.
constexpr double nearCentre = 0.01;
constexpr double nearSize = 0.02;
// How far a box may stick out, as a share of its shorter side. Boxes that two readers give for the
// same text differ by a tenth, those of neighbouring rows by most of their height.
constexpr double hair = 0.15;

bool nearlyCoincide(const PageRect& a, const PageRect& b) {
    const auto midX = [](const PageRect& r) { return r.minX() + std::abs(r.width) / 2; };
    const auto midY = [](const PageRect& r) { return r.minY() + std::abs(r.height) / 2; };
    return std::abs(midX(a) - midX(b)) < nearCentre && std::abs(midY(a) - midY(b)) < nearCentre &&
           std::abs(std::abs(a.width) - std::abs(b.width)) < nearSize &&
           std::abs(std::abs(a.height) - std::abs(b.height)) < nearSize;
}

bool liesWithin(const PageRect& outer, const PageRect& inner, PixelSize page) {
    const double pixels =
        hair * std::min(std::abs(inner.width) * page.width, std::abs(inner.height) * page.height);
    const double x = pixels / page.width;
    const double y = pixels / page.height;
    return inner.minX() >= outer.minX() - x && inner.maxX() <= outer.maxX() + x &&
           inner.minY() >= outer.minY() - y && inner.maxY() <= outer.maxY() + y;
}

} // namespace

std::vector<Redaction> withoutNearDuplicates(const std::vector<Redaction>& found,
                                             const std::vector<Redaction>& existing,
                                             PixelSize page) {
    std::vector<Redaction> accepted;
    for (const Redaction& candidate : found) {
        const auto isRepeated = [&](const Redaction& other) {
            return nearlyCoincide(candidate.rect, other.rect) &&
                   liesWithin(other.rect, candidate.rect, page);
        };
        if (std::ranges::none_of(existing, isRepeated) &&
            std::ranges::none_of(accepted, isRepeated)) {
            accepted.push_back(candidate);
        }
    }
    return accepted;
}

} // namespace murkwell
