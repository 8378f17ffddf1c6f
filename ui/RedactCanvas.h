// The editing surface without its toolkit: what lies where on the page, what a pointer or a key
// does to it, and the shapes to be painted. Every change goes through the model. Main thread only.
#pragma once

#include "core/Uuid.h"
#include "model/RedactModel.h"
#include "ui/CanvasGeometry.h"
#include "ui/CanvasShapes.h"

#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace murkwell {

class RedactCanvas {
public:
    // Diameter of a handle, in points.
    static constexpr double defaultHandle = 11;

    // The model is referred to and outlives the canvas.
    explicit RedactCanvas(RedactModel& canvasModel, double handleDiameter = defaultHandle)
        : model(canvasModel), handle(handleDiameter) {}
    // A gesture that is under way ends.
    ~RedactCanvas() { finish(); }
    RedactCanvas(const RedactCanvas&) = delete;
    RedactCanvas& operator=(const RedactCanvas&) = delete;

    void resize(CanvasSize size) { canvasSize = size; }

    // Where the current page lies; the zero rectangle without one.
    [[nodiscard]] CanvasRect fit() const;

    // Bottom to top; nothing without a page.
    [[nodiscard]] std::vector<CanvasShape> shapes() const;

    // What a press at a point would take hold of.
    struct Handle {
        Uuid box;
        Corner corner;
        bool operator==(const Handle&) const = default;
    };
    struct Box {
        Uuid box;
        bool operator==(const Box&) const = default;
    };
    struct Catcher { // the page, or the margin around it
        bool operator==(const Catcher&) const = default;
    };
    using Target = std::variant<Handle, Box, Catcher>;

    // None without a page.
    [[nodiscard]] std::optional<Target> targetAt(CanvasPoint point) const;

    // One gesture of the pointer, from press to release, wherever it goes in between.
    void press(CanvasPoint point);
    void drag(CanvasPoint point);
    void release(CanvasPoint point);
    // Ends the gesture where the pointer was last seen; what the pointer does until it is pressed
    // again is then no part of one. Nothing without a gesture.
    void finish();

    // What keys do. Each change is one undo step; translations are in points.
    void moveSelected(CanvasTranslation by);
    // The bottom-right corner moves. Stops at the model's smallest box instead of flipping it.
    void resizeSelected(CanvasTranslation by);
    // Adds a box in the middle of the page and selects it.
    void addInMiddle();
    // Selects the next box in stored order, or the previous one; the first or last when none is
    // selected. False, and nothing selected any more, when there is no further one.
    bool selectNeighbour(bool forward);

    // The box being drawn.
    [[nodiscard]] const std::optional<PageRect>& draft() const { return draft_; }
    // The box being moved or resized, as it was when the gesture began.
    [[nodiscard]] const std::optional<PageRect>& dragOrigin() const { return dragOrigin_; }

private:
    struct Press {
        CanvasPoint at;
        CanvasPoint last;
        Target target;
        bool isDragging = false;
    };

    [[nodiscard]] std::optional<Target> targetIn(const Redaction& redaction,
                                                 CanvasPoint point) const;
    [[nodiscard]] CanvasRect handleRect(const CanvasRect& box, Corner corner) const;
    [[nodiscard]] const Redaction* find(const Uuid& id) const;
    [[nodiscard]] const Redaction* selected() const;
    void appendBox(std::vector<CanvasShape>& to, const Redaction& redaction) const;

    void change(CanvasPoint point);
    void changeDraft(CanvasPoint point);
    void changeMove(const Uuid& id, CanvasTranslation by);
    void changeResize(const Handle& of, CanvasTranslation by);
    void beginChange(const PageRect& origin, std::string_view englishName);
    void changeSelected(std::string_view englishName, const PageRect& rect);
    void tap(const Target& target);

    RedactModel& model;
    double handle;
    CanvasSize canvasSize{};
    std::optional<Press> pressed;
    std::optional<PageRect> draft_;
    std::optional<PageRect> dragOrigin_;
};

} // namespace murkwell
