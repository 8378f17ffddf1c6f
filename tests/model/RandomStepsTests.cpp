// Random editing, undo, redo, page, search and file steps; after each, the model must equal a naive
// list of states. MURKWELL_SEEDS sets how many seeds are tried, a thousand steps each.
#include "model/RedactModel.h"

#include "tests/support/ModelUnderTest.h"
#include "tests/support/NaiveHistory.h"

#include <cmath>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <utility>

namespace murkwell {
namespace {

constexpr int stepsPerSeed = 1000;

unsigned seedCount() {
    const char* const wanted = std::getenv("MURKWELL_SEEDS");
    return wanted == nullptr ? 25 : static_cast<unsigned>(std::atoi(wanted));
}

class Walk {
public:
    // Every third walk seldom goes back, so that its history fills up.
    explicit Walk(unsigned seed) : generator(seed), goesForward(seed % 3 == 0) {
        bench.text.answer = {asciiLine("mail a@bc.de now"), asciiLine("acme and Acme")};
        sources = {bench.folder.write("scan.pdf", ""), bench.folder.write("photo.png", "")};
        model.open({sources[0]});
        naive.open(3);
    }

    void step() {
        unsigned choice = below(20);
        if (goesForward && choice >= 12 && choice <= 16 && below(8) != 0) {
            choice = 0;
        }
        switch (choice) {
        case 0:
        case 1:
        case 2:
        case 3:
            return add();
        case 4:
        case 5:
            return update();
        case 6:
            return remove();
        case 7:
            return restyle();
        case 8:
            return clear();
        case 9:
            return turnPage();
        case 10:
            return select();
        case 11:
            return gesture();
        case 12:
        case 13:
        case 14:
            return undo();
        case 15:
        case 16:
            return redo();
        case 17:
            return startSearch();
        case 18:
            return endSearch();
        default:
            return below(10) == 0 ? replaceWork() : changeSettings();
        }
    }

    // All the way back, and forth again.
    void rewind() {
        while (model.canUndo()) {
            undo();
            expectEqual();
        }
        while (model.canRedo()) {
            redo();
            expectEqual();
        }
    }

    void expectEqual() {
        ASSERT_EQ(model.redactionsByPage().toVector(), naive.now.lists);
        ASSERT_EQ(model.currentPage(), naive.now.page);
        ASSERT_EQ(model.selectedID(), naive.now.selection);
        ASSERT_EQ(model.isDirty(), naive.dirty);
        ASSERT_EQ(model.undoTitle(), naive.undoTitle());
        ASSERT_EQ(model.redoTitle(), naive.redoTitle());
        ASSERT_EQ(model.activeOperation().has_value(), search.has_value());
        std::set<Uuid> ids;
        std::size_t count = 0;
        for (const auto& list : naive.now.lists) {
            for (const Redaction& redaction : list) {
                ids.insert(redaction.id);
                ++count;
            }
        }
        ASSERT_EQ(ids.size(), count);
        ASSERT_EQ(model.totalRedactionCount(), count);
    }

private:
    // A search that is under way: which pages, and what each will yield.
    struct Search {
        std::string name;
        std::vector<std::int64_t> pages;
        std::vector<Redaction> found;
    };

    unsigned below(unsigned end) { return static_cast<unsigned>(generator()) % end; }

    double number() { return std::uniform_real_distribution<double>(-0.3, 1.2)(generator); }

    PageRect rect() {
        const double side = below(8) == 0 ? 0.004 : 0.5;
        return {number(), number(), number() * side, number() * 0.5};
    }

    static PageRect clamped(const PageRect& r) {
        const double left = std::min(r.x, r.x + r.width);
        const double top = std::min(r.y, r.y + r.height);
        const double x = left < 0 ? 0 : left > 1 ? 1 : left;
        const double y = top < 0 ? 0 : top > 1 ? 1 : top;
        const double width = std::abs(r.width);
        const double height = std::abs(r.height);
        return {x, y, width > 1 - x ? 1 - x : width, height > 1 - y ? 1 - y : height};
    }

    // Most often a box of the shown page, now and then one of another page or of nowhere.
    Uuid someId() {
        if (naive.now.lists.empty() || below(10) == 0) {
            return Uuid::random(bench.engines.random);
        }
        const auto& list =
            below(4) == 0 || !naive.hasPage()
                ? naive.now.lists[below(static_cast<unsigned>(naive.now.lists.size()))]
                : naive.list();
        return list.empty() ? Uuid{} : list[below(static_cast<unsigned>(list.size()))].id;
    }

    void add() {
        const PageRect drawn = rect();
        const auto id = model.addRedaction(drawn);
        const PageRect stored = clamped(drawn);
        const bool fits = naive.hasPage() && stored.width >= 0.005 && stored.height >= 0.005;
        ASSERT_EQ(id.has_value(), fits);
        if (fits) {
            naive.record("Add Redaction");
            naive.list().push_back({*id, stored, naive.tool, false});
            naive.now.selection = id;
        }
    }

    void update() {
        const Uuid id = someId();
        const PageRect to = rect();
        model.updateRedaction(id, to);
        if (Redaction* const found = naive.find(id)) {
            found->rect = clamped(to);
        }
    }

    void remove() {
        const Uuid id = someId();
        model.remove(id);
        if (naive.find(id) != nullptr) {
            naive.record("Delete Redaction");
            std::erase_if(naive.list(), [&](const Redaction& each) { return each.id == id; });
            if (naive.now.selection == id) {
                naive.now.selection.reset();
            }
        }
    }

    void restyle() {
        naive.tool = allRedactionStyles[below(3)];
        model.tool = naive.tool;
        model.applyToolToSelection();
        Redaction* const found = naive.now.selection ? naive.find(*naive.now.selection) : nullptr;
        if (found != nullptr && found->style != naive.tool) {
            naive.record("Change Style");
            found->style = naive.tool;
        }
    }

    void clear() {
        if (below(2) == 0) {
            model.clearCurrentPage();
            if (naive.hasPage() && !naive.list().empty()) {
                naive.record("Clear Page");
                naive.list().clear();
                naive.now.selection.reset();
            }
            return;
        }
        model.clearDetected();
        NaiveState cleared = naive.now;
        for (auto& list : cleared.lists) {
            std::erase_if(list, [](const Redaction& each) { return each.detected; });
        }
        if (cleared.lists != naive.now.lists) {
            naive.record("Clear Detected");
            naive.now.lists = cleared.lists;
            naive.now.selection.reset();
        }
    }

    void undo() {
        model.undo();
        endGesture();
        naive.undo();
    }

    void redo() {
        model.redo();
        endGesture();
        naive.redo();
    }

    // What the gesture has held up happens now, in its order.
    void endGesture() {
        naive.gesture = false;
        for (const auto& operation : std::exchange(held, {})) {
            operation();
        }
    }

    void turnPage() {
        const std::int64_t page = static_cast<std::int64_t>(below(6)) - 1;
        model.goToPage(page);
        endGesture();
        if (page >= 0 && page < static_cast<std::int64_t>(naive.now.lists.size())) {
            naive.now.page = page;
            naive.now.selection.reset();
        }
    }

    void select() {
        naive.now.selection = below(3) == 0 ? std::nullopt : std::optional(someId());
        model.selectedID = naive.now.selection;
    }

    void gesture() {
        if (below(2) == 0) {
            model.endInteractiveChange();
            return endGesture();
        }
        model.beginInteractiveChange("Move Redaction");
        if (!naive.gesture) {
            naive.gesture = true;
            naive.record("Move Redaction");
        }
        update();
    }

    void changeSettings() {
        allPages = below(2) == 0;
        model.applyToAllPages = allPages;
        model.detectKinds =
            below(2) == 0 ? PIIKinds{PIIKind::faces} : PIIKinds{PIIKind::faces, PIIKind::email};
    }

    void startSearch() {
        if (!search) {
            bench.faces.answer->clear();
            for (unsigned i = below(4); i > 0; --i) {
                bench.faces.answer->push_back(
                    {below(8) / 10.0, below(8) / 10.0, 0.1, 0.1 + below(2) / 50.0});
            }
        }
        const bool finds = below(2) == 0;
        const Detector::Engines engines{bench.text, bench.faces, bench.engines.random};
        const auto image = plainBitmap(1, 1);
        auto expected = finds ? Detector::findMatches("acme", *image, false, naive.tool, engines)
                              : Detector::detect(*image, model.detectKinds(), naive.tool, engines);
        finds ? model.redactMatches(" acme ", false) : model.autoDetect();
        if (search || naive.now.lists.empty()) {
            return;
        }
        search.emplace();
        search->name = finds ? "Redact Matches" : "Auto-Detect";
        search->found = std::move(expected.redactions);
        for (std::size_t i = 0; allPages && i < naive.now.lists.size(); ++i) {
            search->pages.push_back(static_cast<std::int64_t>(i));
        }
        if (!allPages) {
            search->pages.push_back(naive.now.page);
        }
    }

    static bool repeats(const Redaction& a, const Redaction& b) {
        const auto middle = [](double start, double length) { return start + length / 2; };
        return std::abs(middle(a.rect.x, a.rect.width) - middle(b.rect.x, b.rect.width)) < 0.01 &&
               std::abs(middle(a.rect.y, a.rect.height) - middle(b.rect.y, b.rect.height)) < 0.01 &&
               std::abs(a.rect.width - b.rect.width) < 0.02 &&
               std::abs(a.rect.height - b.rect.height) < 0.02;
    }

    void endSearch() {
        bench.executor.runAll();
        if (!search) {
            return;
        }
        const Search ended = *search;
        search.reset();
        std::vector<std::vector<Redaction>> lists = naive.now.lists;
        for (const std::int64_t page : ended.pages) {
            if (page >= static_cast<std::int64_t>(lists.size())) {
                continue;
            }
            auto& list = lists[static_cast<std::size_t>(page)];
            for (Redaction found : ended.found) {
                const auto isRepeat = [&](const Redaction& each) { return repeats(each, found); };
                if (std::ranges::none_of(list, isRepeat)) {
                    adoptId(found, static_cast<std::size_t>(page), list.size());
                    list.push_back(found);
                }
            }
        }
        if (lists != naive.now.lists) {
            naive.record(ended.name);
            naive.now.lists = std::move(lists);
        }
    }

    // Identities are random: the new box takes the one that stands at its place in the model.
    void adoptId(Redaction& box, std::size_t page, std::size_t place) {
        const auto& list = model.redactionsByPage()[page];
        ASSERT_LT(place, list.size());
        box.id = list[place].id;
    }

    void replaceWork() {
        const auto effect = [this]() -> std::function<void()> {
            switch (below(8)) {
            case 0:
                model.closeDocument();
                return [this] { naive.open(0); };
            case 1:
            case 2:
            case 3:
                bench.panels.saved = bench.folder / "work.murkwell";
                model.saveSessionAs();
                return [this] { naive.dirty = naive.dirty && naive.now.lists.empty(); };
            default: {
                const std::size_t which = below(2);
                model.open({sources[which]});
                return [this, which] { naive.open(which == 0 ? 3 : 1); };
            }
            }
        }();
        if (naive.gesture) {
            held.push_back(effect);
        } else {
            effect();
        }
    }

    std::mt19937 generator;
    bool goesForward;
    ModelUnderTest bench;
    RedactModel& model = *bench.model;
    NaiveHistory naive;
    std::vector<std::filesystem::path> sources;
    bool allPages = false;
    std::optional<Search> search;
    std::vector<std::function<void()>> held; // by a gesture
};

TEST(RandomSteps, AgreeWithANaiveListOfStatesAtEveryStep) {
    for (unsigned seed = 0; seed < seedCount(); ++seed) {
        Walk walk(seed);
        for (int i = 0; i < stepsPerSeed; ++i) {
            walk.step();
            walk.expectEqual();
            if (testing::Test::HasFatalFailure()) {
                FAIL() << "seed " << seed << ", step " << i;
            }
        }
        walk.rewind();
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << "seed " << seed;
    }
}

} // namespace
} // namespace murkwell
