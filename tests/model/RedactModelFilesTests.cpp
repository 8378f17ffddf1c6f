#include "model/DocumentRemarks.h"
#include "model/RedactModel.h"

#include "tests/support/ModelUnderTest.h"
#include "tests/support/RawPropertyList.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

class Files : public testing::Test {
protected:
    // Opens the PDF and draws a box on it.
    void startWork() {
        bench.openPdf();
        ASSERT_TRUE(model.addRedaction({0.1, 0.2, 0.3, 0.4}));
    }

    fs::path save(const std::string& name = "work.murkwell") {
        bench.panels.saved = bench.folder / name;
        model.saveSessionAs();
        return bench.folder / name;
    }

    // All that a failed operation must leave alone, messages apart.
    void expectTheWorkIsWhole() {
        EXPECT_EQ(model.fileName(), "scan.pdf");
        EXPECT_EQ(model.totalRedactionCount(), 1U);
        EXPECT_TRUE(model.canUndo());
        EXPECT_TRUE(model.isDirty());
        EXPECT_TRUE(model.hasSelection());
        EXPECT_FALSE(model.sessionURL() || model.lastExportURL());
    }

    ModelUnderTest bench;
    RedactModel& model = *bench.model;
};

TEST_F(Files, WhichFileOfSeveralIsOpened) {
    struct Case {
        const char* what;
        std::vector<std::string> names;
        std::optional<std::string> opened;
    };
    startWork();
    save("saved.murkwell");
    fs::copy(bench.folder / "saved.murkwell", bench.folder / "LOUD.MURKWELL");
    for (const char* name : {"a.pdf", "b.pdf", "SCAN.JPG", "photo.png"}) {
        bench.folder.write(name, "content");
    }
    for (const Case& each : std::vector<Case>{
             {"a saved document before a picture",
              {"photo.png", "saved.murkwell"},
              "saved.murkwell"},
             {"a saved document first", {"saved.murkwell", "photo.png"}, "saved.murkwell"},
             {"capitals", {"LOUD.MURKWELL"}, "LOUD.MURKWELL"},
             {"the first of two", {"b.pdf", "a.pdf"}, "b.pdf"},
             {"the first that is supported", {"notes.txt", "x", "SCAN.JPG"}, "SCAN.JPG"},
             {"none that is supported", {"notes.txt", "noextension", ".pdf"}, std::nullopt},
         }) {
        model.closeDocument();
        std::vector<fs::path> files;
        for (const std::string& name : each.names) {
            files.push_back(bench.folder / name);
        }
        model.open(files);
        EXPECT_EQ(model.documentTitle(), each.opened) << each.what;
        EXPECT_EQ(model.errorMessage().has_value(), !each.opened) << each.what;
    }
    EXPECT_EQ(model.errorMessage(), "No supported file found. Drop an image or a PDF.");
}

TEST_F(Files, AnEmptyListSaysNothing) {
    model.open({"notes.txt"});
    model.open({});
    EXPECT_TRUE(model.errorMessage());
    model.closeDocument();
    model.open({});
    EXPECT_FALSE(model.errorMessage());
}

TEST_F(Files, AFileThatCannotBeOpenedLeavesTheWorkWhole) {
    startWork();
    const fs::path damaged = bench.folder.write("damaged.pdf", "");
    bench.engines.renderer.pages.reset();
    const std::string good = rawDocument().text();
    const std::vector<std::pair<fs::path, std::string>> files{
        {damaged, "damaged.pdf"},
        {bench.folder / "missing.pdf", "missing.pdf"},
        {bench.folder / "missing.murkwell", "missing.murkwell"},
        {bench.folder.write("cut.murkwell", good.substr(0, good.size() - 1)), "cut.murkwell"},
        {bench.folder.write("text.murkwell", "just text"), "text.murkwell"},
        {bench.folder.write("empty.murkwell", ""), "empty.murkwell"},
    };
    for (const auto& [file, name] : files) {
        model.open({file});
        EXPECT_EQ(model.errorMessage(), "Couldn’t open “" + name + "”.");
        expectTheWorkIsWhole();
    }
    bench.engines.codec.decoded.reset();
    model.open({bench.folder.write("source.murkwell", good)});
    EXPECT_EQ(model.errorMessage(), "Couldn’t open “source.murkwell”.");
    expectTheWorkIsWhole();
}

TEST_F(Files, OpeningReplacesTheWorkAndKeepsTheSettings) {
    startWork();
    save();
    model.tool = RedactionStyle::noise;
    model.detectKinds = PIIKinds{PIIKind::email};
    ASSERT_TRUE(model.addRedaction({0.5, 0.5, 0.2, 0.2}));
    model.goToPage(2);
    bench.openPicture();
    EXPECT_EQ(model.documentTitle(), "photo.PNG");
    EXPECT_EQ(model.currentPage(), 0);
    EXPECT_EQ(model.totalRedactionCount(), 0U);
    EXPECT_FALSE(model.isDirty() || model.canUndo() || model.canRedo() || model.hasSelection());
    EXPECT_FALSE(model.sessionURL() || model.statusMessage() || model.errorMessage());
    EXPECT_EQ(model.tool(), RedactionStyle::noise);
    EXPECT_EQ(model.detectKinds(), PIIKinds{PIIKind::email});
}

TEST_F(Files, TheOpenPanelOffersAllTypesInOrder) {
    model.openPanel(); // cancelled
    ASSERT_EQ(bench.panels.openPanels.size(), 1U);
    EXPECT_EQ(bench.panels.openPanels[0].allowedTypes,
              (std::vector{ContentType::png, ContentType::jpeg, ContentType::tiff, ContentType::bmp,
                           ContentType::gif, ContentType::heic, ContentType::heif, ContentType::pdf,
                           ContentType::session}));
    EXPECT_FALSE(model.errorMessage());
    bench.panels.opened = {bench.folder.write("chosen.pdf", "")};
    model.openPanel();
    EXPECT_EQ(model.fileName(), "chosen.pdf");
    bench.panels.whileUp = [&] { fs::remove(bench.folder / "chosen.pdf"); };
    model.openPanel();
    EXPECT_EQ(model.errorMessage(), "Couldn’t open “chosen.pdf”.");
}

TEST_F(Files, SavedWorkComesBackWithoutItsSource) {
    startWork();
    model.goToPage(2);
    model.tool = RedactionStyle::solidWhite;
    bench.faces.answer = {{{0.4, 0.4, 0.2, 0.2}}};
    model.autoDetect();
    bench.executor.runAll();
    const auto expected = model.redactionsByPage().toVector();
    const fs::path file = save();
    EXPECT_EQ(model.statusMessage(), "Saved work.murkwell");
    EXPECT_FALSE(model.isDirty());
    EXPECT_TRUE(model.canUndo());

    fs::remove(bench.folder / "scan.pdf");
    model.closeDocument();
    model.open({file});
    EXPECT_EQ(model.documentTitle(), "work.murkwell");
    EXPECT_EQ(model.fileName(), "scan.pdf");
    EXPECT_EQ(model.document()->url, bench.folder / "scan.pdf");
    EXPECT_FALSE(model.canUndo() || model.isDirty() || model.statusMessage());
    const auto found = model.redactionsByPage().toVector();
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t page = 0; page < found.size(); ++page) {
        ASSERT_EQ(found[page].size(), expected[page].size());
        for (std::size_t i = 0; i < found[page].size(); ++i) {
            Redaction renamed = found[page][i];
            EXPECT_NE(renamed.id, expected[page][i].id);
            renamed.id = expected[page][i].id;
            EXPECT_EQ(renamed, expected[page][i]);
        }
    }

    // Saved again, the same bytes: identities are not part of them.
    const std::string first = contentOf(file);
    model.saveSession();
    EXPECT_EQ(contentOf(file), first);
}

TEST_F(Files, APasswordIsAskedForUntilItIsRightOrTheUserGivesUp) {
    startWork();
    const auto opens = [&](const fs::path& file, std::deque<std::string> passwords) {
        bench.panels.passwords = std::move(passwords);
        bench.panels.passwordPanels.clear();
        model.open({file});
        for (std::size_t i = 0; i < bench.panels.passwordPanels.size(); ++i) {
            EXPECT_EQ(bench.panels.passwordPanels[i].fileName, file.filename());
            EXPECT_EQ(bench.panels.passwordPanels[i].wasWrong, i > 0);
        }
        return bench.panels.passwordPanels.size();
    };
    const fs::path locked = bench.folder.write("locked.pdf", "locked bytes");
    bench.engines.renderer.neededPassword = "right";
    EXPECT_EQ(opens(locked, {"wrong"}), 2U);
    EXPECT_FALSE(model.errorMessage());
    expectTheWorkIsWhole();
    EXPECT_EQ(opens(locked, {"wrong", "right"}), 2U);
    EXPECT_EQ(model.fileName(), "locked.pdf");

    ASSERT_TRUE(model.addRedaction({0.1, 0.1, 0.2, 0.2}));
    const fs::path saved = save();
    EXPECT_NE(contentOf(saved).find("locked bytes"), std::string::npos);
    EXPECT_EQ(contentOf(saved).find("right"), std::string::npos);
    bench.engines.renderer.neededPassword.reset();
    startWork();
    bench.engines.renderer.neededPassword = "right";
    EXPECT_EQ(opens(saved, {}), 1U);
    expectTheWorkIsWhole();
    EXPECT_EQ(opens(saved, {"right"}), 1U);
    EXPECT_EQ(model.documentTitle(), "work.murkwell");
    EXPECT_EQ(model.totalRedactionCount(), 1U);
}

TEST_F(Files, StoredBoxesAreOpenedWithTheirPagesOnly) {
    const auto openWith = [&](std::initializer_list<unsigned> pages) {
        RawPropertyList list = rawDocument();
        list.objects[Raw::name] = rawString("a.pdf");
        list.objects[Raw::pages] = rawArray(pages);
        model.open({bench.folder.write("stored.murkwell", list.text())});
        return model.totalRedactionCount();
    };
    using Raw::page;
    EXPECT_EQ(openWith({page, page, page}), 3U);
    for (const auto& others :
         {std::initializer_list<unsigned>{}, {page}, {page, page}, {page, page, page, page}}) {
        model.closeDocument();
        EXPECT_EQ(openWith(others), 0U);
        EXPECT_EQ(model.errorMessage(), "Couldn’t open “stored.murkwell”.") << others.size();
    }
}

TEST_F(Files, WhatDidNotComeWholeIsSaidWhenItOpensAndWhenItIsExported) {
    struct Case {
        std::vector<RenderedPage> pages;
        const char* remarks;
    };
    const RenderedPage whole{plainPage(2, 2)};
    const RenderedPage broken{plainPage(2, 2), false};
    const RenderedPage none;
    for (const Case& c : std::vector<Case>{
             {{whole}, ""},
             {{none, whole}, " — 1 page could not be shown."},
             {{none, whole, broken, none},
              " — 2 pages could not be shown."
              " — Page 2 may be incomplete."},
             {{broken, whole, broken, broken, broken}, " — Pages 1, 3–5 may be incomplete."},
         }) {
        bench.engines.renderer.pages = c.pages;
        bench.openPdf();
        EXPECT_FALSE(model.statusMessage() || model.errorMessage());
        std::string remarks;
        for (const std::string& remark : remarksOn(*model.document())) {
            remarks += " — " + remark;
        }
        EXPECT_EQ(remarks, c.remarks);
        (void)model.addRedaction({0.1, 0.1, 0.3, 0.3});
        bench.panels.saved = bench.folder / "out.pdf";
        model.exportDocument();
        EXPECT_EQ(model.statusMessage(), std::string("Redacted out.pdf") + c.remarks);
    }
    bench.engines.codec.decoded = DecodedImage{plainBitmap(2, 2), "public.tiff", 3};
    model.open({bench.folder.write("a.tif", "any")});
    EXPECT_EQ(remarksOn(*model.document()),
              std::vector<std::string>{"Only the first of 3 pictures is shown."});
}

TEST_F(Files, AStoredBoxBeyondThePageIsKeptAsItIs) {
    RawPropertyList list = rawDocument();
    list.objects[Raw::x] = rawReal(-7.5);
    model.open({bench.folder.write("stored.murkwell", list.text())});
    ASSERT_EQ(model.currentRedactions().size(), 1U);
    EXPECT_EQ(model.currentRedactions()[0].rect, (PageRect{-7.5, 0.2, 0.3, 0.4}));
}

TEST_F(Files, AStoredNameCannotLeadOutOfTheFolder) {
    for (const char* name : {"/etc/a.png", "../a.png", "x/../../a.png"}) {
        RawPropertyList list = rawDocument();
        list.objects[Raw::name] = rawString(name);
        model.open({bench.folder.write("stored.murkwell", list.text())});
        ASSERT_TRUE(model.document());
        EXPECT_EQ(model.document()->url, bench.folder / "a.png") << name;
    }
}

TEST_F(Files, WhatTheSavePanelProposes) {
    bench.engines.codec.decoded->typeIdentifier = "public.png";
    model.open({bench.folder.write("scan.final.png", "")});
    const fs::path file = save("elsewhere.murkwell");
    fs::create_directory(bench.folder / "moved");
    fs::rename(file, bench.folder / "moved" / "other.murkwell");
    model.open({bench.folder / "moved" / "other.murkwell"});
    model.saveSessionAs();
    ASSERT_EQ(bench.panels.savePanels.size(), 2U);
    EXPECT_EQ(bench.panels.savePanels[0].allowedType, ContentType::session);
    EXPECT_EQ(bench.panels.savePanels[0].proposedName, "scan.final.murkwell");
    EXPECT_EQ(bench.panels.savePanels[0].folder, bench.folder.path);
    EXPECT_EQ(bench.panels.savePanels[1].proposedName, "scan.final.murkwell");
    EXPECT_EQ(bench.panels.savePanels[1].folder, bench.folder / "moved");
}

TEST_F(Files, SaveAsksForAPlaceOnlyOnce) {
    model.saveSession(); // without a document
    model.saveSessionAs();
    EXPECT_TRUE(bench.panels.savePanels.empty());
    EXPECT_FALSE(model.errorMessage());
    startWork();
    model.saveSession(); // cancelled
    expectTheWorkIsWhole();
    EXPECT_FALSE(model.errorMessage() || model.statusMessage());
    bench.panels.saved = bench.folder / "work.murkwell";
    model.saveSession();
    ASSERT_TRUE(model.addRedaction({0.5, 0.5, 0.1, 0.1}));
    model.saveSession();
    EXPECT_EQ(bench.panels.savePanels.size(), 2U);
    EXPECT_FALSE(model.isDirty());
}

TEST_F(Files, WhatIsSavedIsWhatWasRenderedWhateverBecomesOfTheFile) {
    class ChangingRenderer final : public PdfRenderer {
    public:
        explicit ChangingRenderer(fs::path given) : file(std::move(given)) {}
        Result render(std::span<const std::byte>, const std::optional<std::string>&) override {
            std::ofstream(file) << "changed while it was rendered";
            return std::vector<RenderedPage>{{plainPage(2, 2)}};
        }
        fs::path file;
    };
    ChangingRenderer changing(bench.folder.write("scan.pdf", "as rendered"));
    const Services services = bench.services();
    RedactModel other({services.executor,
                       services.panels,
                       services.preferences,
                       services.fileManager,
                       {changing, bench.engines.writer, bench.engines.codec, bench.engines.random},
                       services.detection});
    other.open({bench.folder / "scan.pdf"});
    bench.panels.saved = bench.folder / "work.murkwell";
    other.saveSession();
    EXPECT_EQ(other.statusMessage(), "Saved work.murkwell");
    const std::string saved = contentOf(bench.folder / "work.murkwell");
    EXPECT_NE(saved.find("as rendered"), std::string::npos);
    EXPECT_EQ(saved.find("changed"), std::string::npos);
}

TEST_F(Files, ASaveThatFailsLeavesTheWorkAndTheEarlierFile) {
    startWork();
    const fs::path folder = bench.folder / "vanished";
    fs::create_directory(folder);
    bench.panels.saved = folder / "work.murkwell";
    bench.panels.whileUp = [&] { fs::remove_all(folder); };
    model.saveSessionAs();
    EXPECT_EQ(model.errorMessage(), "Couldn’t write to “work.murkwell”.");
    expectTheWorkIsWhole();
    bench.panels.saved = bench.folder.path; // a folder
    bench.panels.whileUp = [] {};
    model.saveSessionAs();
    EXPECT_TRUE(model.errorMessage());
    expectTheWorkIsWhole();
}

// A file system of its own for the test; false where only root may have one.
class SmallFileSystem {
public:
    explicit SmallFileSystem(const fs::path& place)
        : folder(place), isMounted(fs::create_directory(place) &&
                                   ::mount("tmpfs", place.c_str(), "tmpfs", 0, "size=64k") == 0) {}
    ~SmallFileSystem() {
        if (isMounted) {
            ::umount(folder.c_str());
        }
    }
    SmallFileSystem(const SmallFileSystem&) = delete;
    SmallFileSystem& operator=(const SmallFileSystem&) = delete;

    [[nodiscard]] bool makeReadOnly() const {
        return ::mount("tmpfs", folder.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, "size=64k") == 0;
    }

    fs::path folder;
    bool isMounted;
};

TEST_F(Files, AFullDiskAndAReadOnlyFolderLeaveTheEarlierFile) {
    const SmallFileSystem disk(bench.folder / "disk");
    if (!disk.isMounted) {
        GTEST_SKIP() << "only root may mount a small file system";
    }
    startWork();
    bench.panels.saved = disk.folder / "work.murkwell";
    model.saveSession();
    const std::string earlier = contentOf(*bench.panels.saved);
    ASSERT_FALSE(earlier.empty());
    model.open({bench.folder.write("large.pdf", std::string(200000, 'x'))});
    model.saveSession();
    EXPECT_EQ(model.errorMessage(), "Couldn’t write to “work.murkwell”.");
    EXPECT_EQ(contentOf(*bench.panels.saved), earlier);

    bench.openPdf();
    ASSERT_TRUE(disk.makeReadOnly());
    model.saveSession();
    EXPECT_EQ(model.errorMessage(), "Couldn’t write to “work.murkwell”.");
    EXPECT_EQ(contentOf(*bench.panels.saved), earlier);
    EXPECT_EQ(std::distance(fs::directory_iterator(disk.folder), {}), 1);
}

TEST_F(Files, NeitherTheSourceNorTheOpenWorkIsReplacedByAnotherKindOfFile) {
    startWork();
    const fs::path source = bench.folder / "scan.pdf";
    const fs::path work = save();
    const std::string saved = contentOf(work);
    bench.panels.saved = source;
    model.saveSessionAs();
    EXPECT_EQ(model.errorMessage(), "Couldn’t write to “scan.pdf”.");
    model.exportDocument();
    EXPECT_EQ(model.errorMessage(), "Couldn’t write to “scan.pdf”.");
    bench.panels.saved = work;
    model.exportDocument();
    EXPECT_EQ(model.errorMessage(), "Couldn’t write to “work.murkwell”.");
    EXPECT_EQ(contentOf(source), "the PDF");
    EXPECT_EQ(contentOf(work), saved);
    fs::create_symlink(work, bench.folder / "link.murkwell");
    bench.panels.saved = bench.folder / "link.murkwell";
    model.saveSessionAs(); // the same work under another name
    EXPECT_FALSE(model.errorMessage());
}

TEST_F(Files, KilledWhileSavingTheFileIsAlwaysOneOfTheTwo) {
    const fs::path file = bench.folder / "work.murkwell";
    bench.panels.saved = file;
    const auto content = [&](char letter) {
        model.open({bench.folder.write("scan.pdf", std::string(300000, letter))});
        (void)model.addRedaction({0.1, 0.1, 0.2, 0.2});
        model.saveSessionAs();
        return contentOf(file);
    };
    const std::string even = content('a');
    const std::string odd = content('b');
    for (int i = 0; i < 200; ++i) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (;;) {
                bench.openPdf();
                (void)content(i % 2 == 0 ? 'a' : 'b');
            }
        }
        ::usleep(static_cast<useconds_t>(i * 37 % 5000));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const std::string now = contentOf(file);
        ASSERT_TRUE(now == even || now == odd) << "after " << i << " kills";
    }
}

TEST_F(Files, ExportIsRefusedWithoutDocumentOrBoxes) {
    model.exportDocument();
    EXPECT_EQ(model.errorMessage(), "Nothing to export.");
    bench.openPdf();
    model.exportDocument();
    EXPECT_EQ(model.errorMessage(), "Add at least one redaction first.");
    EXPECT_TRUE(bench.panels.alerts.empty() && bench.panels.savePanels.empty());
}

TEST_F(Files, TheFirstPdfExportShowsTheNoticeOnce) {
    startWork();
    bench.panels.pressed = 1;
    model.exportDocument();
    ASSERT_EQ(bench.panels.alerts.size(), 1U);
    EXPECT_EQ(bench.panels.alerts[0].message, "All text will be flattened");
    EXPECT_EQ(bench.panels.alerts[0].informativeText,
              "Exporting a PDF renders every page to an image. The content under your redactions "
              "is destroyed for good — and the rest of the page’s text becomes part of that image "
              "too, so it can no longer be selected, searched, or copied in the exported "
              "file.\n\nYour original file is left untouched.");
    EXPECT_EQ(bench.panels.alerts[0].buttons, (std::vector<std::string>{"Export PDF", "Cancel"}));
    EXPECT_TRUE(bench.panels.savePanels.empty());
    expectTheWorkIsWhole();
    EXPECT_FALSE(model.errorMessage());
    EXPECT_TRUE(bench.preferences.boolean("Murkwell.didShowPDFFlattenNotice"));
    model.exportDocument();
    EXPECT_EQ(bench.panels.alerts.size(), 1U);
    EXPECT_EQ(bench.panels.savePanels.size(), 1U);
}

TEST_F(Files, APreferenceThatIsNotKeptShowsTheNoticeAgain) {
    startWork();
    bench.preferences.isReadOnly = true;
    model.exportDocument();
    model.exportDocument();
    EXPECT_EQ(bench.panels.alerts.size(), 2U);
    EXPECT_EQ(bench.panels.savePanels.size(), 2U);
}

TEST_F(Files, ExportProposesAPlaceAndTellsWhatBecameOfIt) {
    startWork();
    bench.panels.saved = bench.folder / "out.pdf";
    model.exportDocument();
    EXPECT_EQ(bench.panels.savePanels[0].proposedName, "scan-redacted.pdf");
    EXPECT_EQ(bench.panels.savePanels[0].folder, bench.folder.path);
    EXPECT_EQ(bench.panels.savePanels[0].allowedType, ContentType::pdf);
    EXPECT_EQ(bench.engines.writer.pages.size(), 3U);
    EXPECT_EQ(bench.engines.writer.pages[0]->row(2)[3], (Rgba{0, 0, 0, 255}));
    EXPECT_EQ(contentOf(bench.folder / "out.pdf"), "a PDF");
    EXPECT_EQ(model.statusMessage(), "Redacted out.pdf");
    EXPECT_EQ(model.lastExportURL(), bench.folder / "out.pdf");
    EXPECT_TRUE(model.isDirty());

    model.revealLastExport();
    EXPECT_EQ(bench.fileManager.revealed, std::vector<fs::path>{bench.folder / "out.pdf"});
    bench.engines.writer.result.reset();
    bench.panels.saved = bench.folder / "again.pdf";
    model.exportDocument();
    EXPECT_EQ(model.errorMessage(), "Couldn’t write to “again.pdf”.");
    EXPECT_EQ(model.statusMessage(), "Redacted out.pdf");
    EXPECT_EQ(model.lastExportURL(), bench.folder / "out.pdf");

    bench.openPicture();
    model.revealLastExport();
    EXPECT_EQ(bench.fileManager.revealed.size(), 1U);
}

TEST_F(Files, APictureIsExportedInItsTypeAndWithoutANotice) {
    bench.engines.codec.decoded->typeIdentifier = "public.tiff";
    bench.openPicture();
    ASSERT_TRUE(model.addRedaction({0, 0, 1, 1}));
    bench.panels.saved = bench.folder / "out.png";
    model.exportDocument();
    EXPECT_TRUE(bench.panels.alerts.empty());
    EXPECT_EQ(bench.panels.savePanels[0].allowedType, ContentType::tiff);
    EXPECT_EQ(bench.panels.savePanels[0].proposedName, "photo-redacted.PNG");
    EXPECT_EQ(contentOf(bench.folder / "out.png"), "public.tiff default 0");
}

TEST_F(Files, BoxesFoundInsideThePanelAreExported) {
    startWork();
    bench.faces.answer = {{{0.4, 0.8, 0.6, 0.2}}};
    model.autoDetect();
    bench.panels.saved = bench.folder / "out.pdf";
    bench.panels.whileUp = [&] { bench.executor.runAll(); };
    model.exportDocument();
    ASSERT_EQ(model.totalRedactionCount(), 2U);
    EXPECT_EQ(bench.engines.writer.pages[0]->row(0)[12], (Rgba{0, 0, 0, 255}));
}

TEST_F(Files, WhatComesWhileAPanelIsUpWaitsUntilItIsGone) {
    const fs::path out = bench.folder / "out";
    const std::vector<std::pair<const char*, std::function<void()>>> operations{
        {"save", [&] { model.saveSessionAs(); }},
        {"export", [&] { model.exportDocument(); }},
        {"open", [&] { model.openPanel(); }},
    };
    for (const bool isCancelled : {false, true}) {
        for (const auto& [what, operation] : operations) {
            model.closeDocument();
            fs::remove(out);
            bench.preferences.values.clear(); // so that the notice is a panel as well
            startWork();
            bench.panels.pressed = isCancelled ? 1 : 0;
            bench.panels.saved = isCancelled ? std::nullopt : std::optional(out);
            bench.panels.whileUp = [&, asked = false]() mutable {
                EXPECT_EQ(model.fileName(), "scan.pdf") << what;
                if (!std::exchange(asked, true)) {
                    model.closeDocument();
                    bench.openPicture();
                }
            };
            operation();
            EXPECT_EQ(model.documentTitle(), "photo.PNG") << what;
            EXPECT_EQ(fs::exists(out), !isCancelled && std::string(what) != "open") << what;
        }
    }
}

TEST_F(Files, WhatWaitsIsDroppedWhenTheWorkCouldNotBeWritten) {
    startWork();
    bench.panels.saved = bench.folder.path;
    bench.panels.whileUp = [&] { bench.openPicture(); };
    model.saveSessionAs();
    EXPECT_TRUE(model.errorMessage());
    expectTheWorkIsWhole();
    bench.engines.writer.result.reset();
    model.exportDocument();
    EXPECT_TRUE(model.errorMessage());
    expectTheWorkIsWhole();
}

TEST_F(Files, BoxesThatGoWhileAPanelIsUpAreNotExported) {
    startWork();
    bench.panels.saved = bench.folder / "out.pdf";
    bench.panels.whileUp = [&] { model.undo(); };
    model.exportDocument();
    EXPECT_EQ(model.errorMessage(), "Add at least one redaction first.");
}

TEST_F(Files, ClosingForgetsTheWork) {
    startWork();
    save();
    model.closeDocument();
    EXPECT_FALSE(model.document() || model.sessionURL() || model.documentTitle());
    EXPECT_FALSE(model.canUndo() || model.isDirty() || model.hasSelection());
    EXPECT_EQ(model.redactionsByPage().size(), 0U);
    model.saveSession();
    EXPECT_EQ(bench.panels.savePanels.size(), 1U);
}

} // namespace
} // namespace murkwell
