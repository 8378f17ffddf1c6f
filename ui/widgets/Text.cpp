#include "ui/widgets/Text.h"

namespace murkwell {
namespace {

// Fonts are sized in points or in pixels; the desktop chooses.
QFont resized(QFont font, double factor) {
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(qRound(font.pixelSize() * factor));
    }
    return font;
}

QFont weighted(QFont font, QFont::Weight weight) {
    font.setWeight(weight);
    return font;
}

} // namespace

QFont medium(QFont font) {
    return weighted(std::move(font), QFont::Medium);
}

QFont headline(QFont font) {
    return weighted(std::move(font), QFont::DemiBold);
}

QFont caption(QFont font) {
    return resized(std::move(font), 0.8);
}

QFont title(QFont font) {
    return weighted(resized(std::move(font), 1.45), QFont::DemiBold);
}

} // namespace murkwell
