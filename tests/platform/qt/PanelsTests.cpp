#include "platform/qt/PanelsQt.h"

#include "io/DocumentIO.h"
#include "platform/qt/FileNames.h"
#include "tests/support/ModalPanels.h"
#include "tests/support/TemporaryFolder.h"

#include <QAccessible>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest/QTest>

#include <gmock/gmock.h>

namespace murkwell {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What a user does in a file dialog.
void type(QFileDialog& dialog, const std::filesystem::path& name) {
    dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(toQtPath(name));
}
void accept(QDialog& dialog) {
    dialog.accept(); // what Return does, whatever the desktop calls the button
}
std::string typed(const QFileDialog& dialog) {
    return dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text().toStdString();
}

struct PanelsTest : testing::Test {
    // The program's open panel, as it starts in the test's folder.
    std::vector<std::filesystem::path> runOpenPanel() {
        OpenPanel panel{{DocumentIO::imageTypes().begin(), DocumentIO::imageTypes().end()}};
        panel.allowedTypes.push_back(ContentType::pdf);
        return panels.run(panel);
    }
    std::optional<Destination> runSavePanel() {
        return panels.run(SavePanel{ContentType::pdf, "scan-redacted.pdf", folder.path});
    }

    TemporaryFolder folder;
    PanelsQt panels;
    ModalPanels user;
};

TEST_F(PanelsTest, OpenGivesTheChosenFile) {
    const auto file = folder.write("SCAN.JPG", "");
    user.answer<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        type(dialog, file);
        accept(dialog);
    });
    EXPECT_THAT(runOpenPanel(), ElementsAre(file));
}

TEST_F(PanelsTest, OpenOffersEveryAllowedTypeAndNoOther) {
    user.answer<QFileDialog>([&](QFileDialog& dialog) {
        ASSERT_EQ(dialog.nameFilters().size(), 1);
        const QString filter = dialog.nameFilters().constFirst();
        for (const char* const pattern : {"*.png", "*.jpg", "*.JPG", "*.tif", "*.heic", "*.pdf"}) {
            EXPECT_TRUE(filter.contains(QLatin1String(pattern))) << pattern;
        }
        EXPECT_FALSE(filter.contains(QStringLiteral("murkwell"))) << filter.toStdString();
        dialog.reject();
    });
    EXPECT_THAT(runOpenPanel(), IsEmpty());
}

TEST_F(PanelsTest, FoldersCannotBeOpened) {
    std::filesystem::create_directory(folder / "folder.pdf");
    user.answer<QFileDialog>([&](QFileDialog& dialog) {
        type(dialog, folder / "folder.pdf");
        accept(dialog);
        EXPECT_TRUE(dialog.isVisible());
        dialog.reject();
    });
    EXPECT_THAT(runOpenPanel(), IsEmpty());
}

TEST_F(PanelsTest, SaveProposesNameAndFolder) {
    user.answer<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(typed(dialog), "scan-redacted.pdf");
        EXPECT_EQ(toPath(dialog.directory().path()), folder.path);
        accept(dialog);
    });
    EXPECT_EQ(runSavePanel(), Destination(folder / "scan-redacted.pdf", false));
}

TEST_F(PanelsTest, SaveStartsAboveAFolderThatHasGone) {
    user.answer<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(typed(dialog), "a.png");
        EXPECT_EQ(toPath(dialog.directory().path()), folder.path);
        dialog.reject();
    });
    EXPECT_EQ(panels.run(SavePanel{ContentType::png, "a.png", folder / "gone/deeper"}),
              std::nullopt);
}

TEST_F(PanelsTest, SavedFilesHaveAnExtensionOfTheirType) {
    struct Case {
        ContentType type;
        const char* typed;
        const char* saved;
    };
    for (const Case& c : {Case{ContentType::pdf, "letter", "letter.pdf"},
                          {ContentType::pdf, "letter.final", "letter.final.pdf"},
                          {ContentType::pdf, "letter.PDF", "letter.PDF"},
                          {ContentType::pdf, "letter.png", "letter.png.pdf"},
                          {ContentType::jpeg, "photo.jpg", "photo.jpg"},
                          {ContentType::jpeg, "photo", "photo.jpeg"},
                          {ContentType::session, "letter", "letter.murkwell"}}) {
        user.answer<QFileDialog>([&](QFileDialog& dialog) {
            type(dialog, folder / c.typed);
            accept(dialog);
        });
        EXPECT_EQ(panels.run(SavePanel{c.type, "proposed", folder.path}),
                  Destination(folder / c.saved, false))
            << c.typed;
    }
}

TEST_F(PanelsTest, ReplacingAFileIsAskedForUnderTheNameThatIsWritten) {
    folder.write("letter.pdf", "precious");
    const auto chooses = [&](const char* name) {
        user.answer<QFileDialog>([this, name](QFileDialog& dialog) {
            type(dialog, folder / name);
            accept(dialog);
        });
    };
    const auto answers = [&](QMessageBox::ButtonRole role) {
        user.answer<QMessageBox>([role](QMessageBox& question) {
            EXPECT_TRUE(question.text().contains(QStringLiteral("letter.pdf")));
            for (auto* const button : question.buttons()) {
                if (question.buttonRole(button) == role) {
                    button->click();
                }
            }
        });
    };
    chooses("letter");
    answers(QMessageBox::RejectRole);
    user.answer<QFileDialog>([](QFileDialog& again) {
        EXPECT_EQ(typed(again), "letter.pdf");
        again.reject();
    });
    EXPECT_EQ(runSavePanel(), std::nullopt);

    chooses("letter");
    answers(QMessageBox::AcceptRole);
    EXPECT_EQ(runSavePanel(), Destination(folder / "letter.pdf", true));
}

TEST_F(PanelsTest, FileOfTheChosenNameIsNotReplacedUnasked) {
    folder.write("scan-redacted.pdf", "precious");
    user.answer<QFileDialog>([&](QFileDialog& dialog) {
        user.answer<QMessageBox>(
            [](QMessageBox& question) { question.button(QMessageBox::No)->click(); });
        accept(dialog);
        EXPECT_TRUE(dialog.isVisible());
        dialog.reject();
    });
    EXPECT_EQ(runSavePanel(), std::nullopt);
}

TEST_F(PanelsTest, VisitedFoldersAreNotWrittenDown) {
    user.answer<QFileDialog>([&](QFileDialog& dialog) { accept(dialog); });
    EXPECT_TRUE(runSavePanel());
    // Of the test program, which begins with an empty one.
    const std::filesystem::path configuration(qgetenv("XDG_CONFIG_HOME").toStdString());
    EXPECT_TRUE(std::filesystem::is_empty(configuration));
}

TEST_F(PanelsTest, AlertAnswersWithTheButtonPressed) {
    const Alert alert{"A <b>message</b>", "First.\n\nSecond.", {"Go & on", "Other", "Cancel"}};
    for (std::size_t i = 0; i < 3; ++i) {
        user.answer<QMessageBox>([&](QMessageBox& box) {
            EXPECT_EQ(box.icon(), QMessageBox::Information);
            EXPECT_EQ(box.text(), QStringLiteral("A <b>message</b>"));
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.informativeText(), QStringLiteral("First.\n\nSecond."));
            for (auto* const button : box.findChildren<QPushButton*>()) {
                if (button->text().toStdString() ==
                    std::vector<std::string>{"Go && on", "Other", "Cancel"}[i]) {
                    button->click();
                }
            }
        });
        EXPECT_EQ(panels.run(alert), i);
    }
}

TEST_F(PanelsTest, AlertIsConfirmedByReturnAndCancelledByEscapeOrClosing) {
    const Alert alert{"message", "text", {"Export", "Cancel"}};
    user.answer<QMessageBox>([](QMessageBox& box) { box.defaultButton()->click(); });
    EXPECT_EQ(panels.run(alert), 0U);
    user.answer<QMessageBox>([](QMessageBox& box) { box.escapeButton()->click(); });
    EXPECT_EQ(panels.run(alert), 1U);
    user.answer<QMessageBox>([](QMessageBox& box) { box.close(); });
    EXPECT_EQ(panels.run(alert), 1U);
    user.answer<QMessageBox>([](QMessageBox& box) { box.done(0); });
    EXPECT_EQ(panels.run(alert), 1U);
}

TEST_F(PanelsTest, PasswordIsTypedUnseenAndTakenByReturn) {
    for (const bool wasWrong : {false, true}) {
        user.answer<QDialog>([&](QDialog& dialog) {
            auto* const field = dialog.findChild<QLineEdit*>();
            ASSERT_NE(field, nullptr);
            EXPECT_EQ(dialog.focusWidget(), field);
            EXPECT_EQ(field->echoMode(), QLineEdit::Password);
            const auto* const spoken = QAccessible::queryAccessibleInterface(field);
            EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("Password:"));
            const QString description = spoken->text(QAccessible::Description);
            const auto words = wasWrong ? "That password is wrong. Try again." : "“a <b>.pdf” is";
            EXPECT_TRUE(description.startsWith(QString::fromUtf8(words)));
            QTest::keyClick(field, Qt::Key_Return); // nothing is typed yet
            EXPECT_TRUE(dialog.isVisible());
            field->setText(QStringLiteral("grün"));
            QTest::keyClick(field, Qt::Key_Return);
        });
        const auto given = panels.run(PasswordPanel{"a <b>.pdf", wasWrong});
        ASSERT_TRUE(given);
        EXPECT_EQ(given->asPassword(), "grün");
    }
    user.answer<QDialog>([](QDialog& dialog) {
        const auto* const message = dialog.findChild<QLabel*>();
        for (const QString& word : message->text().split(' ')) {
            EXPECT_LE(message->fontMetrics().horizontalAdvance(word), message->width());
        }
        QTest::keyClicks(dialog.findChild<QLineEdit*>(), QStringLiteral("typed"));
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    EXPECT_FALSE(panels.run(PasswordPanel{std::string(200, 'm') + ".pdf"}));
}

TEST_F(PanelsTest, PanelsBelongToTheWindow) {
    QWidget window;
    window.show();
    user.answer<QMessageBox>([&](QMessageBox& box) {
        EXPECT_EQ(box.parentWidget(), &window);
        box.close();
    });
    EXPECT_EQ(panels.run(Alert{"message", "text", {"OK"}}), 0U);
}

} // namespace
} // namespace murkwell
