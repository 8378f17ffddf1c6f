// Whatever the model shows comes out of the catalogue: no text is the same in German.
#include "model/RedactModel.h"

#include "core/Localization.h"
#include "tests/support/ModelUnderTest.h"

#include <gtest/gtest.h>
#include <set>

namespace murkwell {
namespace {

// Every text that the model shows on a road past all of them, in order.
class Shown {
public:
    std::vector<std::string> texts;

    void walk() {
        model.exportDocument();
        note();
        model.open({"notes.txt"});
        note();
        model.open({"missing.pdf"});
        note();
        const auto file = bench.folder.write("scan.pdf", "");
        model.open({file});
        model.exportDocument();
        note();
        edit();
        search();
        files();
        for (const RedactionStyle style : allRedactionStyles) {
            texts.push_back(localized(label(style)));
        }
        for (const PIIKind kind : allPIIKinds) {
            texts.push_back(localized(label(kind)));
        }
    }

private:
    void note() {
        for (const auto& message : {model.errorMessage(), model.statusMessage()}) {
            if (message) {
                texts.push_back(*message);
            }
        }
    }

    void noteTitles() {
        texts.push_back(model.undoTitle());
        texts.push_back(model.redoTitle());
    }

    void edit() {
        const auto id = model.addRedaction({0.1, 0.1, 0.2, 0.2});
        noteTitles();
        model.tool = RedactionStyle::noise;
        model.applyToolToSelection();
        noteTitles();
        model.undo();
        noteTitles();
        model.remove(*id);
        noteTitles();
        model.undo();
        model.clearCurrentPage();
        noteTitles();
    }

    // With faces and without, of one page and of all.
    void failingSearches() {
        for (const bool allPages : {false, true}) {
            model.applyToAllPages = allPages;
            for (const bool withFaces : {true, false}) {
                model.detectKinds =
                    withFaces ? PIIKinds{PIIKind::email, PIIKind::faces} : PIIKinds{PIIKind::email};
                model.autoDetect();
                bench.executor.runAll();
                note();
            }
        }
    }

    void search() {
        for (const bool allPages : {false, true}) {
            model.applyToAllPages = allPages;
            for (std::size_t faces = 0; faces < 3; ++faces) {
                bench.faces.answer->assign(faces, {0.1, 0.1, 0.1, 0.1});
                for (std::size_t i = 0; i < faces; ++i) {
                    (*bench.faces.answer)[i].x += 0.3 * static_cast<double>(i);
                }
                model.autoDetect();
                bench.executor.runAll();
                note();
                noteTitles();
                model.clearDetected();
                noteTitles();
            }
        }
        bench.text.outcome = Outcome::partial;
        bench.faces.answer.reset();
        failingSearches();
        bench.text.answer.reset();
        failingSearches();
        bench.faces.answer = std::vector<RecognizerRect>{};
        failingSearches();
        for (const Outcome outcome : {Outcome::partial, Outcome::failed}) {
            texts.push_back(missingForText({outcome, {"x"}}));
        }
        texts.push_back(missingForFaces({Outcome::failed, {"x"}}));
        bench.text.answer = {asciiLine("acme")};
        model.redactMatches("acme", false);
        bench.executor.runAll();
        noteTitles();
    }

    void files() {
        bench.panels.saved = "/missing/work.murkwell";
        model.saveSession();
        note();
        bench.panels.saved = bench.folder / "work.murkwell";
        model.saveSession();
        note();
        bench.panels.saved = bench.folder / "out.pdf";
        model.exportDocument();
        note();
        for (const Alert& alert : bench.panels.alerts) {
            texts.push_back(alert.message);
            texts.push_back(alert.informativeText);
            texts.insert(texts.end(), alert.buttons.begin(), alert.buttons.end());
        }
    }

    ModelUnderTest bench;
    RedactModel& model = *bench.model;
};

TEST(LocalizedTexts, EveryTextOfTheModelIsTranslated) {
    Shown english;
    english.walk();
    for (const char* language : {"de", "es", "fr"}) {
        useCatalogue(findCatalogue(MURKWELL_CATALOGUES, std::vector<std::string>{language}));
        Shown translated;
        translated.walk();
        useCatalogue(std::nullopt);
        ASSERT_EQ(translated.texts.size(), english.texts.size());
        for (std::size_t i = 0; i < english.texts.size(); ++i) {
            EXPECT_NE(translated.texts[i], english.texts[i]) << language;
            EXPECT_EQ(translated.texts[i].find('%'), std::string::npos);
        }
    }
    // The road went past all of them.
    EXPECT_GE(std::set(english.texts.begin(), english.texts.end()).size(), 35U);
}

} // namespace
} // namespace murkwell
