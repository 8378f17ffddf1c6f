// The road of a document from the file to the export and back, through the real window and the real
// engines.
#include "app/MainWindow.h"

#include "core/RandomSource.h"
#include "platform/confined/ConfinedEngines.h"
#include "platform/pdf/PdfWriterLibdeflate.h"
#include "platform/qt/ExecutorQt.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/PdfBuilder.h"
#include "tests/support/TemporaryFolder.h"
#include "ui/FileOpenInbox.h"
#include "ui/widgets/CanvasWidget.h"

#include <QAbstractButton>
#include <QAction>
#include <QMenuBar>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace murkwell {
namespace {

constexpr int longestSearch = 100'000; // ms, on a slow machine under a sanitizer

// Three letter pages with a name and an address in large print, at the same place on each.
std::vector<std::byte> threePages() {
    PdfBuilder pdf;
    const int font = pdf.add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    std::vector<int> pages;
    for (int i = 1; i <= 3; ++i) {
        const int text = pdf.addStream("BT /F1 24 Tf 72 700 Td (Dear Ms Example) Tj 0 -100 Td "
                                       "(anna.example" +
                                       std::to_string(i) + "@mail.example.org) Tj ET");
        pages.push_back(pdf.add("<< /Type /Page /Parent 10 0 R /MediaBox [0 0 612 792] /Contents " +
                                PdfBuilder::ref(text) + " /Resources << /Font << /F1 " +
                                PdfBuilder::ref(font) + " >> >> >>"));
    }
    while (pdf.add("null") < 9) {
    }
    std::string kids;
    for (const int page : pages) {
        kids += PdfBuilder::ref(page) + " ";
    }
    const int tree = pdf.add("<< /Type /Pages /Count 3 /Kids [" + kids + "] >>");
    return pdf.finish(pdf.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>"));
}

struct WholeRoad : testing::Test {
    WholeRoad() {
        window.show();
        window.activateWindow();
        QTest::qWait(10);
    }

    void open(const std::filesystem::path& file) {
        inbox.receive({file});
        QTest::qWait(10);
    }

    void click(const char* name) {
        for (auto* const button : window.findChildren<QAbstractButton*>()) {
            if (button->accessibleName() == QString::fromUtf8(name) && button->isVisible()) {
                QTest::mouseClick(button, Qt::LeftButton);
                QTest::qWait(10);
                return;
            }
        }
        FAIL() << "no button " << name;
    }

    // The first commands of a menu, counted from 0.
    void choose(int menu, int command) {
        window.menuBar()->actions()[menu]->menu()->actions()[command]->trigger();
        QTest::qWait(10);
    }

    [[nodiscard]] QPoint onPage(double x, double y) const {
        const QRect page =
            canvas().boxRect({Uuid{}, {0, 0, 1, 1}, RedactionStyle::solidBlack, false});
        return page.topLeft() + QPointF(x * page.width(), y * page.height()).toPoint();
    }

    void drag(QPoint from, QPoint to) {
        QTest::mousePress(&canvas(), Qt::LeftButton, {}, from);
        QTest::mouseMove(&canvas(), (from + to) / 2);
        QTest::mouseMove(&canvas(), to);
        QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, to);
        QTest::qWait(10);
    }

    [[nodiscard]] CanvasWidget& canvas() const { return *window.findChild<CanvasWidget*>(); }

    TemporaryFolder folder;
    ConfinedEngines engines;
    PdfWriterLibdeflate writer;
    SystemRandomSource random;
    FakePanels panels;
    FakePreferences preferences;
    FakeFileManager fileManager;
    ExecutorQt executor;
    RedactModel model{{executor,
                       panels,
                       preferences,
                       fileManager,
                       {engines.pdfRenderer, writer, engines.imageCodec, random},
                       {engines.textRecognizer, engines.faceDetector, random}}};
    FileOpenInbox inbox;
    MainWindow window{model, inbox};
};

// Whether every pixel in this part of the page is black.
bool isBlack(const Bitmap& page, double x, double y, double width, double height) {
    for (int row = static_cast<int>(y * page.height());
         row < static_cast<int>((y + height) * page.height()); ++row) {
        for (int column = static_cast<int>(x * page.width());
             column < static_cast<int>((x + width) * page.width()); ++column) {
            if (!(page.row(row)[static_cast<std::size_t>(column)] == Rgba{0, 0, 0, 255})) {
                return false;
            }
        }
    }
    return true;
}

TEST_F(WholeRoad, FromTheSourceToTheExportAndBack) {
    const auto pdf = threePages();
    open(folder.write("letter.pdf", {reinterpret_cast<const char*>(pdf.data()), pdf.size()}));
    ASSERT_TRUE(model.document());
    ASSERT_EQ(model.document()->pages.size(), 3U);

    drag(onPage(0.1, 0.08), onPage(0.5, 0.14)); // the name
    ASSERT_EQ(model.totalRedactionCount(), 1U);

    click("Auto-Detect");
    click("All Pages");
    click("Detect & Redact");
    EXPECT_EQ(model.activeOperation(), RedactModel::Operation::autoDetect);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !model.activeOperation(); }, longestSearch));
    ASSERT_EQ(model.totalRedactionCount(), 4U) << model.errorMessage().value_or("");
    EXPECT_EQ(model.statusMessage(), "Added 3 redactions across 3 pages.");

    drag(onPage(0.3, 0.11), onPage(0.3, 0.21)); // the box over the name
    const double moved = model.currentRedactions()[0].rect.y;
    EXPECT_NEAR(moved, 0.18, 0.01);
    choose(1, 0); // undo
    EXPECT_NEAR(model.currentRedactions()[0].rect.y, 0.08, 0.01);
    choose(1, 1); // redo
    EXPECT_EQ(model.currentRedactions()[0].rect.y, moved);
    choose(1, 0);

    panels.saved = folder.path / "letter.murkwell";
    choose(0, 3); // save as
    EXPECT_FALSE(model.isDirty());
    panels.saved = folder.path / "letter-redacted.pdf";
    click("Export…");
    EXPECT_EQ(model.statusMessage(), "Redacted letter-redacted.pdf");

    open(folder.path / "letter-redacted.pdf");
    ASSERT_TRUE(model.document());
    ASSERT_EQ(model.document()->pages.size(), 3U);
    EXPECT_EQ(model.totalRedactionCount(), 0U);
    const BitmapRef first = model.image(0)->unpack();
    EXPECT_TRUE(isBlack(*first, 0.12, 0.09, 0.36, 0.04));
    for (int page = 0; page < 3; ++page) { // where the addresses stand, within their ascenders
        EXPECT_TRUE(isBlack(*model.image(page)->unpack(), 0.125, 0.228, 0.45, 0.012)) << page;
    }

    open(folder.path / "letter.murkwell");
    EXPECT_EQ(model.totalRedactionCount(), 4U);
    EXPECT_EQ(model.documentTitle(), "letter.murkwell");
    EXPECT_FALSE(
        isBlack(*model.image(0)->unpack(), 0.12, 0.09, 0.36, 0.04)); // the source is untouched
}

} // namespace
} // namespace murkwell
