#include "ui/RedactCanvas.h"

#include "core/Localization.h"
#include "ui/WindowTexts.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace murkwell {
namespace {

// The side of a box that is added without a pointer, in fractions of the page.
constexpr double addedWidth = 0.3;
constexpr double addedHeight = 0.05;

bool contains(const CanvasRect& rect, CanvasPoint point) {
    return point.x >= rect.minX() && point.x < rect.maxX() && point.y >= rect.minY() &&
           point.y < rect.maxY();
}

double distance(CanvasPoint one, CanvasPoint other) {
    return std::hypot(other.x - one.x, other.y - one.y);
}

// How far the pointer travels, in points, before its press on the target becomes a drag.
double dragThreshold(const RedactCanvas::Target& target) {
    if (std::holds_alternative<RedactCanvas::Handle>(target)) {
        return 0;
    }
    return std::holds_alternative<RedactCanvas::Box>(target) ? 1 : 3;
}

CanvasInk ink(RedactionStyle style) {
    switch (style) {
    case RedactionStyle::solidBlack:
        return CanvasInk::black;
    case RedactionStyle::solidWhite:
        return CanvasInk::white;
    case RedactionStyle::noise:
        return CanvasInk::midGrey;
    }
    return CanvasInk::black;
}

constexpr CanvasOutline detectedBorder{CanvasInk::accent, 0.9, 1, {4, 2}};
constexpr CanvasOutline manualBorder{CanvasInk::black, 0.25, 0.5};
constexpr CanvasOutline selectionRing{CanvasInk::accent, 1, 2};
constexpr CanvasOutline draftBorder{CanvasInk::accent, 1, 1.5, {5, 3}};

} // namespace

CanvasRect RedactCanvas::fit() const {
    const auto page = model.currentPixelSize();
    return page ? fittedRect(page->width, page->height, canvasSize) : CanvasRect{};
}

std::vector<CanvasShape> RedactCanvas::shapes() const {
    using Form = CanvasShape::Form;
    std::vector<CanvasShape> all;
    if (!model.currentImage()) {
        return all;
    }
    all.push_back({Form::page, fit()});
    for (const Redaction& redaction : model.currentRedactions()) {
        appendBox(all, redaction);
    }
    if (draft_) {
        all.push_back({Form::roundedRectangle, viewRect(*draft_, fit()),
                       CanvasFill{CanvasInk::accent, 0.12}, draftBorder});
    }
    return all;
}

void RedactCanvas::appendBox(std::vector<CanvasShape>& to, const Redaction& redaction) const {
    using Form = CanvasShape::Form;
    const CanvasRect rect = viewRect(redaction.rect, fit());
    to.push_back({Form::rectangle, rect, CanvasFill{ink(redaction.style), 1}, {}});
    if (redaction.style == RedactionStyle::noise) {
        to.push_back({Form::noise, rect});
    }
    to.push_back({Form::rectangle, rect, {}, redaction.detected ? detectedBorder : manualBorder});
    if (model.selectedID() == redaction.id) {
        to.push_back({Form::rectangle, rect, {}, selectionRing});
        for (const Corner corner : allCorners) {
            to.push_back({Form::ellipse, handleRect(rect, corner), CanvasFill{CanvasInk::white, 1},
                          selectionRing});
        }
    }
}

CanvasRect RedactCanvas::handleRect(const CanvasRect& box, Corner corner) const {
    const CanvasPoint middle = cornerPoint(box, corner);
    return {middle.x - handle / 2, middle.y - handle / 2, handle, handle};
}

std::optional<RedactCanvas::Target> RedactCanvas::targetAt(CanvasPoint point) const {
    if (!model.currentImage()) {
        return std::nullopt;
    }
    const auto& redactions = model.currentRedactions();
    for (auto redaction = redactions.rbegin(); redaction != redactions.rend(); ++redaction) {
        if (const auto target = targetIn(*redaction, point)) {
            return target;
        }
    }
    return Catcher{};
}

std::optional<RedactCanvas::Target> RedactCanvas::targetIn(const Redaction& redaction,
                                                           CanvasPoint point) const {
    const CanvasRect rect = viewRect(redaction.rect, fit());
    if (model.selectedID() == redaction.id) {
        for (auto corner = allCorners.rbegin(); corner != allCorners.rend(); ++corner) {
            if (distance(cornerPoint(rect, *corner), point) <= handle / 2) {
                return Handle{redaction.id, *corner};
            }
        }
    }
    return contains(rect, point) ? std::optional<Target>(Box{redaction.id}) : std::nullopt;
}

void RedactCanvas::press(CanvasPoint point) {
    const auto target = targetAt(point);
    if (!target || pressed) {
        return;
    }
    pressed = Press{point, point, *target};
    model.beginGesture([this] { finish(); });
    drag(point);
}

void RedactCanvas::drag(CanvasPoint point) {
    if (!pressed) {
        return;
    }
    pressed->last = point;
    pressed->isDragging =
        pressed->isDragging || distance(pressed->at, point) >= dragThreshold(pressed->target);
    if (pressed->isDragging) {
        change(point);
    }
}

void RedactCanvas::release(CanvasPoint point) {
    if (!pressed) {
        return;
    }
    if (!pressed->isDragging) {
        drag(point); // the release may be the first that is far enough away
    }
    const Press ended = *pressed;
    if (!ended.isDragging) {
        tap(ended.target);
    } else if (std::holds_alternative<Catcher>(ended.target)) {
        changeDraft(point);
        model.addRedaction(*std::exchange(draft_, std::nullopt));
    } else {
        dragOrigin_ = std::nullopt;
        model.endInteractiveChange();
    }
    pressed = std::nullopt;
    model.endGesture(); // last: a panel that has waited for it may come up here
}

void RedactCanvas::finish() {
    if (pressed) {
        release(pressed->last);
    }
}

void RedactCanvas::tap(const Target& target) {
    const auto* const box = std::get_if<Box>(&target);
    model.selectedID = box != nullptr ? std::optional(box->box) : std::nullopt;
}

void RedactCanvas::change(CanvasPoint point) {
    const CanvasTranslation by{point.x - pressed->at.x, point.y - pressed->at.y};
    if (const auto* const held = std::get_if<Handle>(&pressed->target)) {
        changeResize(*held, by);
    } else if (const auto* const box = std::get_if<Box>(&pressed->target)) {
        changeMove(box->box, by);
    } else {
        changeDraft(point);
    }
}

void RedactCanvas::changeDraft(CanvasPoint point) {
    model.selectedID = std::nullopt;
    draft_ = spanned(norm(pressed->at, fit()), norm(point, fit()));
}

void RedactCanvas::changeMove(const Uuid& id, CanvasTranslation by) {
    const Redaction* const box = find(id);
    if (box == nullptr) {
        return;
    }
    const PageRect now = box->rect; // the list may be another after the next line
    if (model.selectedID() != id) {
        model.selectedID = id;
    }
    beginChange(now, WindowTexts::moveRedaction);
    model.updateRedaction(id, moved(*dragOrigin_, by, fit()));
}

void RedactCanvas::changeResize(const Handle& of, CanvasTranslation by) {
    const Redaction* const box = find(of.box);
    if (box == nullptr) {
        return;
    }
    beginChange(box->rect, WindowTexts::resizeRedaction);
    model.updateRedaction(of.box, resized(*dragOrigin_, of.corner, by, fit()));
}

void RedactCanvas::beginChange(const PageRect& origin, std::string_view englishName) {
    if (!dragOrigin_) {
        dragOrigin_ = origin;
        model.beginInteractiveChange(localized(englishName));
    }
}

void RedactCanvas::moveSelected(CanvasTranslation by) {
    if (const Redaction* const box = selected()) {
        changeSelected(WindowTexts::moveRedaction, moved(box->rect, by, fit()));
    }
}

void RedactCanvas::resizeSelected(CanvasTranslation by) {
    const Redaction* const box = selected();
    if (box == nullptr) {
        return;
    }
    const CanvasRect view = fit();
    PageRect rect = box->rect;
    rect.width = std::max(rect.width + by.dx / view.width, RedactModel::minBox);
    rect.height = std::max(rect.height + by.dy / view.height, RedactModel::minBox);
    changeSelected(WindowTexts::resizeRedaction, rect);
}

void RedactCanvas::changeSelected(std::string_view englishName, const PageRect& rect) {
    const Uuid id = *model.selectedID();
    model.beginInteractiveChange(localized(englishName));
    model.updateRedaction(id, rect);
    if (!dragOrigin_) { // else the pointer's gesture goes on
        model.endInteractiveChange();
    }
}

void RedactCanvas::addInMiddle() {
    model.addRedaction({(1 - addedWidth) / 2, (1 - addedHeight) / 2, addedWidth, addedHeight});
}

bool RedactCanvas::selectNeighbour(bool forward) {
    const auto& redactions = model.currentRedactions();
    const auto count = static_cast<std::ptrdiff_t>(redactions.size());
    std::ptrdiff_t next = forward ? 0 : count - 1;
    if (const Redaction* const now = selected()) {
        next = (now - redactions.data()) + (forward ? 1 : -1);
    }
    const bool exists = next >= 0 && next < count;
    model.selectedID =
        exists ? std::optional(redactions[static_cast<std::size_t>(next)].id) : std::nullopt;
    return exists;
}

const Redaction* RedactCanvas::find(const Uuid& id) const {
    const auto& redactions = model.currentRedactions();
    const auto found = std::ranges::find(redactions, id, &Redaction::id);
    return found == redactions.end() ? nullptr : &*found;
}

const Redaction* RedactCanvas::selected() const {
    return model.selectedID() ? find(*model.selectedID()) : nullptr;
}

} // namespace murkwell
