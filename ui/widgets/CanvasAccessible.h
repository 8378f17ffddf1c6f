// The canvas to a screen reader: a list whose items are the boxes of the page.
#pragma once

#include "core/Uuid.h"

#include <QAccessibleWidget>

#include <map>

namespace murkwell {

class CanvasWidget;
class RedactModel;
struct Redaction;

class CanvasAccessible final : public QAccessibleWidget {
public:
    // Makes Qt use it for every canvas. May be called again.
    static void install();

    // Tells which boxes have come and gone since the last call.
    static void announceBoxes(CanvasWidget& canvas);

    // Tells that the selected box has the keyboard, if one is selected.
    static void announceFocus(CanvasWidget& canvas);

    explicit CanvasAccessible(CanvasWidget* canvas);
    ~CanvasAccessible() override;
    CanvasAccessible(const CanvasAccessible&) = delete;
    CanvasAccessible& operator=(const CanvasAccessible&) = delete;

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface* focusChild() const override;

    // Null when the box has gone. The index counts from 0.
    [[nodiscard]] const Redaction* box(const Uuid& id, std::size_t* index = nullptr) const;
    [[nodiscard]] CanvasWidget& canvas() const;

private:
    [[nodiscard]] QAccessibleInterface* itemOf(const Uuid& box) const;
    void announceChanges();

    // Made when first asked for and kept until their boxes go: readers know them by identity.
    mutable std::map<Uuid, QAccessible::Id> items;
};

} // namespace murkwell
