#include "ui/widgets/CanvasAccessible.h"

#include "ui/WindowState.h"
#include "ui/widgets/CanvasWidget.h"
#include "ui/widgets/Text.h"

#include <algorithm>
#include <set>

namespace murkwell {
namespace {

// One box. Looked up by its id whenever it is asked for, so that it never speaks of another one.
class BoxAccessible final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    BoxAccessible(const CanvasAccessible& canvasList, const Uuid& boxId)
        : list(canvasList), id(boxId) {}

    [[nodiscard]] bool isValid() const override { return list.box(id) != nullptr; }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(&list.canvas());
    }
    [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        std::size_t index = 0;
        const Redaction* const box = list.box(id, &index);
        const bool isName = kind == QAccessible::Name && box != nullptr;
        return isName ? toQString(redactionName(index, *box)) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}

    [[nodiscard]] QRect rect() const override {
        const Redaction* const box = list.box(id);
        if (box == nullptr) {
            return {};
        }
        const QRect inCanvas = list.canvas().boxRect(*box);
        return {list.canvas().mapToGlobal(inCanvas.topLeft()), inCanvas.size()};
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        const bool isSelected = list.canvas().redactModel().selectedID() == id;
        state.focusable = true;
        state.selectable = true;
        state.selected = isSelected;
        state.focused = isSelected && list.canvas().hasFocus();
        state.invalid = !isValid();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override {
        return {pressAction(), setFocusAction()};
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& name) override {
        if (isValid() && (name == pressAction() || name == setFocusAction())) {
            list.canvas().setFocus(Qt::OtherFocusReason);
            list.canvas().select(id);
        }
    }

private:
    const CanvasAccessible& list;
    Uuid id;
};

QAccessibleInterface* makeForCanvas(const QString&, QObject* object) {
    auto* const canvas = qobject_cast<CanvasWidget*>(object);
    return canvas != nullptr ? new CanvasAccessible(canvas) : nullptr;
}

} // namespace

void CanvasAccessible::install() {
    QAccessible::installFactory(makeForCanvas); // installs each factory once
}

void CanvasAccessible::announceBoxes(CanvasWidget& canvas) {
    if (QAccessible::isActive()) {
        static_cast<CanvasAccessible*>(QAccessible::queryAccessibleInterface(&canvas))
            ->announceChanges();
    }
}

void CanvasAccessible::announceChanges() {
    std::set<Uuid> present;
    for (const Redaction& redaction : canvas().redactModel().currentRedactions()) {
        present.insert(redaction.id);
    }
    std::erase_if(items, [&present](const auto& entry) {
        const auto& [id, item] = entry;
        if (present.contains(id)) {
            return false;
        }
        QAccessibleEvent gone(QAccessible::accessibleInterface(item), QAccessible::ObjectDestroyed);
        QAccessible::updateAccessibility(&gone);
        QAccessible::deleteAccessibleInterface(item);
        return true;
    });
    for (const Uuid& id : present) {
        if (!items.contains(id)) {
            QAccessibleEvent added(itemOf(id), QAccessible::ObjectCreated);
            QAccessible::updateAccessibility(&added);
        }
    }
}

void CanvasAccessible::announceFocus(CanvasWidget& canvas) {
    if (!QAccessible::isActive()) {
        return;
    }
    auto* const list = QAccessible::queryAccessibleInterface(&canvas);
    auto* const item = list != nullptr ? list->focusChild() : nullptr;
    if (item != nullptr) {
        QAccessibleEvent focused(item, QAccessible::Focus);
        QAccessible::updateAccessibility(&focused);
    }
}

CanvasAccessible::CanvasAccessible(CanvasWidget* canvas)
    : QAccessibleWidget(canvas, QAccessible::List) {}

CanvasAccessible::~CanvasAccessible() {
    for (const auto& [box, item] : items) {
        QAccessible::deleteAccessibleInterface(item);
    }
}

CanvasWidget& CanvasAccessible::canvas() const {
    return *static_cast<CanvasWidget*>(widget());
}

const Redaction* CanvasAccessible::box(const Uuid& id, std::size_t* index) const {
    const auto& boxes = canvas().redactModel().currentRedactions();
    const auto found = std::ranges::find(boxes, id, &Redaction::id);
    if (found == boxes.end()) {
        return nullptr;
    }
    if (index != nullptr) {
        *index = static_cast<std::size_t>(found - boxes.begin());
    }
    return &*found;
}

int CanvasAccessible::childCount() const {
    return static_cast<int>(canvas().redactModel().currentRedactions().size());
}

QAccessibleInterface* CanvasAccessible::child(int index) const {
    const auto& boxes = canvas().redactModel().currentRedactions();
    if (index < 0 || index >= static_cast<int>(boxes.size())) {
        return nullptr;
    }
    return itemOf(boxes[static_cast<std::size_t>(index)].id);
}

QAccessibleInterface* CanvasAccessible::itemOf(const Uuid& box) const {
    const auto known = items.find(box);
    if (known != items.end()) {
        return QAccessible::accessibleInterface(known->second);
    }
    auto* const item = new BoxAccessible(*this, box);
    items.emplace(box, QAccessible::registerAccessibleInterface(item)); // which owns it
    return item;
}

int CanvasAccessible::indexOfChild(const QAccessibleInterface* child) const {
    for (int i = 0; i < childCount(); ++i) {
        if (this->child(i) == child) {
            return i;
        }
    }
    return -1;
}

QAccessibleInterface* CanvasAccessible::childAt(int x, int y) const {
    for (int i = childCount() - 1; i >= 0; --i) { // the last one lies on top
        if (child(i)->rect().contains(x, y)) {
            return child(i);
        }
    }
    return nullptr;
}

QAccessibleInterface* CanvasAccessible::focusChild() const {
    const auto selected = canvas().redactModel().selectedID();
    std::size_t index = 0;
    if (!canvas().hasFocus() || !selected || box(*selected, &index) == nullptr) {
        return nullptr;
    }
    return child(static_cast<int>(index));
}

} // namespace murkwell
