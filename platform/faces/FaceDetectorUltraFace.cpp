#include "platform/faces/FaceDetectorUltraFace.h"

#include "core/ParallelFor.h"
#include "platform/faces/FaceCandidates.h"
#include "platform/vision/Grain.h"
#include "platform/vision/InstalledFiles.h"
#include "platform/vision/OnnxSession.h"
#include "platform/vision/PixelMatrix.h"
#include "platform/vision/Transparency.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace murkwell {

struct FaceDetectorUltraFace::Network {
    std::once_flag once;
    std::unique_ptr<OnnxSession> session; // null when missing or damaged
};

namespace {

constexpr const char* modelFile = "faces.onnx";

// All numbers were chosen together, on photographs, identity cards, web pages, letters and pages
// without any face.
constexpr double finestLongSide = 1600;  // pixels of the largest copy that is searched
constexpr double coarsestLongSide = 160; // of the smallest
constexpr double smallPicture = 700;     // long side below which a copy of twice the size is too
constexpr double candidateScore = .4;
constexpr double secondLookScore = .15; // mean over the second looks
constexpr double leastSum = .9;         // of both scores
constexpr double smallestFace = 8;      // pixels of the largest copy

// Grain hides small faces from the network: pictures with more are smoothed first.
constexpr double mostGrain = 10; // grey levels, standard deviation

// A second look is a picture of this side in which the face has one of these sides.
constexpr int lookSide = 128;
constexpr std::array<double, 3> lookFaceSides{28, 40, 58};

double side(const cv::Rect2d& face) {
    return std::sqrt(face.area());
}

double longSide(const cv::Mat& pixels) {
    return std::max(pixels.cols, pixels.rows);
}

double finestScale(const cv::Mat& pixels) {
    return longSide(pixels) < smallPicture ? 2 : std::min(1.0, finestLongSide / longSide(pixels));
}

cv::Mat resized(const cv::Mat& image, const cv::Size& size, double scale) {
    if (size == image.size()) {
        return image;
    }
    cv::Mat result;
    cv::resize(image, result, size, 0, 0, scale > 1 ? cv::INTER_LINEAR : cv::INTER_AREA);
    return result;
}

// A picture too large to be searched as it is loses its grain when it is made smaller.
cv::Mat smoothed(const cv::Mat& pixels) {
    return longSide(pixels) > finestLongSide ? pixels : withoutGrain(pixels, mostGrain);
}

// Candidates in pixels of the picture, from copies of it that halve in size.
std::optional<std::vector<FaceCandidate>> searchAllSizes(const cv::Mat& pixels,
                                                         OnnxSession& network) {
    std::vector<FaceCandidate> found;
    cv::Mat level;
    for (double scale = finestScale(pixels);
         level.empty() || longSide(pixels) * scale >= coarsestLongSide; scale /= 2) {
        const cv::Size size(std::max(1, cvRound(pixels.cols * scale)),
                            std::max(1, cvRound(pixels.rows * scale)));
        level = level.empty() ? onWhite(resized(pixels, size, scale)) : resized(level, size, scale);
        const auto here = findCandidates(level, candidateScore, network);
        if (!here) {
            return std::nullopt;
        }
        const double sx = static_cast<double>(pixels.cols) / size.width;
        const double sy = static_cast<double>(pixels.rows) / size.height;
        for (const auto& [box, score] : *here) {
            found.push_back({{box.x * sx, box.y * sy, box.width * sx, box.height * sy}, score});
        }
    }
    return keepBest(std::move(found));
}

// The surroundings of a face, the face in the middle and brought to that side. Black where the
// picture ends.
cv::Mat lookAt(const cv::Mat& pixels, const cv::Rect2d& face, double faceSide) {
    const double scale = faceSide / side(face);
    const cv::Point2d centre = (face.tl() + face.br()) / 2;
    const double reach = lookSide / scale / 2 + 2;
    const cv::Rect area =
        cv::Rect(cv::Point(cvFloor(centre.x - reach), cvFloor(centre.y - reach)),
                 cv::Point(cvCeil(centre.x + reach + 1), cvCeil(centre.y + reach + 1))) &
        cv::Rect(0, 0, pixels.cols, pixels.rows);
    cv::Mat part = onWhite(pixels(area));
    double shrink = 1;
    if (scale < .5) { // the warp below skips pixels
        shrink = scale;
        cv::resize(part, part, {}, shrink, shrink, cv::INTER_AREA);
    }
    const double left = lookSide / 2.0 - scale * (centre.x - area.x);
    const double top = lookSide / 2.0 - scale * (centre.y - area.y);
    const cv::Matx23d toLook(scale / shrink, 0, left, 0, scale / shrink, top);
    cv::Mat look;
    cv::warpAffine(part, look, toLook, {lookSide, lookSide});
    return look;
}

// Mean score of the face over the second looks; none when the network fails.
std::optional<double> lookAgain(const cv::Mat& pixels, const cv::Rect2d& face,
                                OnnxSession& network) {
    constexpr double weakest = .1;
    constexpr double same = .3;
    double sum = 0;
    for (const double faceSide : lookFaceSides) {
        const double scale = faceSide / side(face);
        const cv::Size2d size(face.width * scale, face.height * scale);
        const cv::Rect2d expected({(lookSide - size.width) / 2, (lookSide - size.height) / 2},
                                  size);
        double best = 0;
        const auto seen = findCandidates(lookAt(pixels, face, faceSide), weakest, network);
        if (!seen) {
            return std::nullopt;
        }
        for (const auto& [box, score] : *seen) {
            if (overlap(box, expected) > same) {
                best = std::max(best, score);
            }
        }
        sum += best;
    }
    return sum / lookFaceSides.size();
}

// None when the network fails.
std::optional<bool> isFace(const cv::Mat& pixels, const FaceCandidate& candidate,
                           OnnxSession& network) {
    if (side(candidate.box) * std::min(1.0, finestScale(pixels)) < smallestFace) {
        return false;
    }
    const auto again = lookAgain(pixels, candidate.box, network);
    if (!again) {
        return std::nullopt;
    }
    return *again >= secondLookScore && candidate.score + *again >= leastSum;
}

// Boxes inside the picture. None when the network fails.
std::optional<std::vector<FaceCandidate>> facesIn(const Bitmap& image, OnnxSession& network) {
    const cv::Mat pixels = smoothed(pixelsOf(image));
    const auto candidates = searchAllSizes(pixels, network);
    if (!candidates) {
        return std::nullopt;
    }
    const cv::Rect2d page(0, 0, pixels.cols, pixels.rows);
    std::vector<FaceCandidate> faces;
    for (const FaceCandidate& candidate : *candidates) {
        const cv::Rect2d inside = candidate.box & page;
        if (inside.area() <= 0) {
            continue;
        }
        const auto isOne = isFace(pixels, candidate, network);
        if (!isOne) {
            return std::nullopt;
        }
        if (*isOne) {
            faces.push_back({inside, candidate.score});
        }
    }
    return faces;
}

// As the picture looks on white paper and, where that makes a difference, on black.
std::optional<std::vector<FaceCandidate>> facesOnAnyPaper(const Bitmap& image,
                                                          OnnxSession& network) {
    auto faces = facesIn(image, network);
    if (!faces || !hasTransparency(image)) {
        return faces;
    }
    const BitmapRef dark = onBlack(image);
    const auto more = dark ? facesIn(*dark, network) : std::nullopt;
    if (!more) {
        return std::nullopt;
    }
    faces->insert(faces->end(), more->begin(), more->end());
    return keepBest(std::move(*faces));
}

} // namespace

FaceDetectorUltraFace::FaceDetectorUltraFace() : loaded(std::make_unique<Network>()) {}
FaceDetectorUltraFace::~FaceDetectorUltraFace() = default;

OnnxSession* FaceDetectorUltraFace::network() {
    std::call_once(loaded->once, [this] {
        if (const auto model = installedModel(modelFile)) {
            loaded->session = OnnxSession::load(*model, faceNetworkOutputs,
                                                static_cast<int>(availableProcessors()));
        }
    });
    return loaded->session.get();
}

Readiness FaceDetectorUltraFace::readiness() {
    if (network() != nullptr) {
        return {};
    }
    return {Outcome::failed, {OnnxSession::hasLibrary() ? modelFile : OnnxSession::libraryName}};
}

std::optional<std::vector<RecognizerRect>> FaceDetectorUltraFace::detectFaces(const Bitmap& image) {
    OnnxSession* const session = network();
    if (session == nullptr) {
        return std::nullopt;
    }
    try {
        const auto found = facesOnAnyPaper(image, *session);
        if (!found) {
            return std::nullopt;
        }
        std::vector<RecognizerRect> faces;
        for (const FaceCandidate& face : *found) {
            faces.push_back(recognizerRect(face.box, image));
        }
        return faces;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace murkwell
