// Answers modal panels, which hold up a test until somebody does.
#pragma once

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <functional>
#include <queue>
#include <utility>

namespace murkwell {

// Gives each panel that comes up to the next of the answers. An answer closes its panel, or brings
// up another one that does.
class ModalPanels {
public:
    ModalPanels() { lookSoon(); }
    ~ModalPanels() { EXPECT_TRUE(answers.empty()) << "a panel was expected and did not come"; }
    ModalPanels(const ModalPanels&) = delete;
    ModalPanels& operator=(const ModalPanels&) = delete;

    template <typename Panel>
    void answer(std::function<void(Panel&)> answer) {
        answers.push([answer = std::move(answer)](QWidget& panel) {
            auto* const expected = qobject_cast<Panel*>(&panel);
            if (expected == nullptr) {
                ADD_FAILURE() << "unexpected " << panel.metaObject()->className();
                panel.close();
                return;
            }
            answer(*expected);
        });
    }

private:
    // A new timer each time: one whose slot is running does not fire in the loop of a panel that
    // the slot has brought up.
    void lookSoon() {
        QTimer::singleShot(1, &context, [this] {
            lookSoon();
            look();
        });
    }

    void look() {
        QWidget* const panel = QApplication::activeModalWidget();
        // One that is closing is still there for a while.
        if (panel == nullptr || panel == answered || !panel->isVisible()) {
            return;
        }
        answered = panel;
        if (answers.empty()) {
            ADD_FAILURE() << "unexpected " << panel->metaObject()->className();
            panel->close();
            return;
        }
        const auto next = std::move(answers.front());
        answers.pop();
        next(*panel);
    }

    QObject context;
    QPointer<QWidget> answered;
    std::queue<std::function<void(QWidget&)>> answers;
};

} // namespace murkwell
