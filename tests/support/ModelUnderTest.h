// A model on stand-ins, with files for it to open.
#pragma once

#include "model/RedactModel.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/FakeEngines.h"
#include "tests/support/FakeRecognition.h"
#include "tests/support/ManualExecutor.h"
#include "tests/support/TemporaryFolder.h"

#include <memory>

namespace murkwell {

struct ModelUnderTest {
    explicit ModelUnderTest(std::size_t pdfPages = 3) {
        engines.renderer.pages.emplace();
        for (std::size_t i = 0; i < pdfPages; ++i) {
            engines.renderer.pages->push_back({plainPage(20, 10 + static_cast<int>(i))});
        }
        engines.codec.decoded = DecodedImage{plainBitmap(30, 40), "public.png"};
        model = std::make_unique<RedactModel>(services());
    }

    Services services() {
        return {executor,          panels,
                preferences,       fileManager,
                engines.engines(), {text, faces, engines.random}};
    }

    void openPdf() { model->open({folder.write("scan.pdf", "the PDF")}); }
    void openPicture() { model->open({folder.write("photo.PNG", "the picture")}); }

    TemporaryFolder folder;
    FakeEngines engines;
    FakeTextRecognizer text{std::vector<RecognizedLine>{}};
    FakeFaceDetector faces{std::vector<RecognizerRect>{}};
    ManualExecutor executor;
    FakePanels panels;
    FakePreferences preferences;
    FakeFileManager fileManager;
    std::unique_ptr<RedactModel> model;
};

} // namespace murkwell
