#include "platform/ocr/PpOcrStripReader.h"

#include "platform/vision/InstalledFiles.h"
#include "platform/vision/OnnxSession.h"

#include <algorithm>
#include <fstream>
#include <span>
#include <utility>

namespace murkwell {
namespace {

constexpr float nearlyProbability = .1F;

// One character a line. Empty when the file is missing or holds anything else.
std::string loadAlphabet() {
    const auto file = installedModel(PpOcrStripReader::alphabetFile);
    std::ifstream in(file.value_or(std::filesystem::path()));
    std::string alphabet;
    for (std::string line; std::getline(in, line);) {
        if (line.size() != 1) {
            return {};
        }
        alphabet += line;
    }
    return alphabet;
}

// Planes of blue, green and red from -1 to 1.
Tensor inputFor(const cv::Mat& image) {
    const auto plane = static_cast<std::size_t>(image.rows) * static_cast<std::size_t>(image.cols);
    Tensor input{{1, 3, image.rows, image.cols}, std::vector<float>(3 * plane)};
    for (std::size_t c = 0; c < 3; ++c) {
        float* to = input.values.data() + c * plane;
        for (int y = 0; y < image.rows; ++y) {
            const uchar* from = image.ptr(y) + c;
            for (int x = 0; x < image.cols; ++x, from += 3) {
                *to++ = static_cast<float>(*from) / 127.5F - 1;
            }
        }
    }
    return input;
}

bool makesAddresses(char c) {
    return c == '@' || c == '.' || (c >= '0' && c <= '9');
}

// The answers of one step: the blank, then the alphabet.
struct Step {
    std::span<const float> answers;

    [[nodiscard]] std::size_t best() const {
        return static_cast<std::size_t>(std::ranges::max_element(answers) - answers.begin());
    }

    [[nodiscard]] std::string nearlyOf(std::size_t answer, const std::string& alphabet) const {
        std::size_t second = 0;
        for (std::size_t i = 1; i < answers.size(); ++i) {
            if (i != answer && answers[i] >= nearlyProbability && makesAddresses(alphabet[i - 1]) &&
                (second == 0 || answers[i] > answers[second])) {
                second = i;
            }
        }
        return second == 0 ? std::string() : std::string(1, alphabet[second - 1]);
    }
};

// Connectionist temporal classification: equal answers of neighbouring steps are one character.
std::vector<ReadCharacter> decoded(const Tensor& output, const std::string& alphabet,
                                   double columns) {
    const auto steps = static_cast<std::size_t>(output.shape[1]);
    const std::size_t classes = alphabet.size() + 1;
    std::vector<ReadCharacter> characters;
    std::size_t last = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < steps; ++i) {
        const Step step{std::span(output.values).subspan(i * classes, classes)};
        const std::size_t answer = step.best();
        if (answer != 0) {
            const double confidence = step.answers[answer];
            if (answer != last) {
                start = i;
                characters.push_back({std::string(1, alphabet[answer - 1]), 0, 0});
            }
            ReadCharacter& character = characters.back();
            if (confidence > character.confidence) {
                character.confidence = confidence;
                character.nearly = step.nearlyOf(answer, alphabet);
            }
            character.centre = static_cast<double>(start + i + 1) / 2 * columns;
        }
        last = answer;
    }
    return characters;
}

} // namespace

PpOcrStripReader::PpOcrStripReader(std::unique_ptr<OnnxSession> loaded, std::string characters)
    : network(std::move(loaded)), alphabet(std::move(characters)) {}

PpOcrStripReader::~PpOcrStripReader() = default;

std::unique_ptr<PpOcrStripReader> PpOcrStripReader::load() {
    const auto file = installedModel(modelFile);
    auto network = file ? OnnxSession::load(*file, 1, 1) : nullptr;
    std::string alphabet = loadAlphabet();
    if (!network || alphabet.empty()) {
        return nullptr;
    }
    std::unique_ptr<PpOcrStripReader> reader(
        new PpOcrStripReader(std::move(network), std::move(alphabet)));
    LineStrip blank;
    blank.image = cv::Mat(LineStrip::height + 2 * LineStrip::margin, LineStrip::height, CV_8UC3,
                          cv::Scalar::all(255));
    // Whether the network and the characters belong together shows in what it answers.
    return reader->read(blank) ? std::move(reader) : nullptr;
}

std::optional<StripReading> PpOcrStripReader::read(const LineStrip& strip) const {
    const auto outputs = network->run(inputFor(strip.line()));
    if (!outputs || outputs->front().shape.size() != 3 ||
        outputs->front().shape[2] != static_cast<std::int64_t>(alphabet.size()) + 1 ||
        outputs->front().shape[1] == 0) {
        return std::nullopt;
    }
    const double columns =
        static_cast<double>(strip.image.cols) / static_cast<double>(outputs->front().shape[1]);
    StripReading reading{decoded(outputs->front(), alphabet, columns)};
    int visible = 0;
    for (const ReadCharacter& character : reading.characters) {
        if (character.text != " ") {
            reading.confidence += character.confidence;
            ++visible;
        }
    }
    reading.confidence /= std::max(1, visible);
    return reading;
}

} // namespace murkwell
