// Every text of the window and its menus that the model does not supply, in English: the keys of
// the catalogues. Whoever shows one passes it through localized(). The names of keys in them, ⌘ and
// ⌫, are for the catalogues to spell as the keyboard does.
#pragma once

#include "core/Localization.h"

#include <string_view>

namespace murkwell::WindowTexts {

// Menus. The & marks the key that opens one together with Alt.
inline constexpr std::string_view fileMenu = translatable("&File");
inline constexpr std::string_view editMenu = translatable("&Edit");
inline constexpr std::string_view helpMenu = translatable("&Help");
inline constexpr std::string_view open = translatable("Open…");
inline constexpr std::string_view save = translatable("Save");
inline constexpr std::string_view saveAs = translatable("Save As…");
inline constexpr std::string_view quit = translatable("Quit");
inline constexpr std::string_view help = translatable("Murkwell Help");
inline constexpr std::string_view about = translatable("About Murkwell");
inline constexpr std::string_view aboutText =
    translatable("Redacts images and PDFs on this computer. Nothing is sent anywhere.\n\nFree "
                 "software under the GNU Affero General Public License, version 3 or later.");
inline constexpr std::string_view checkForUpdates = translatable("Check for Updates…");

// Header.
inline constexpr std::string_view unsavedChanges = translatable("Unsaved changes");
inline constexpr std::string_view pageOfPages = translatable("Page %d of %d");
inline constexpr std::string_view close = translatable("Close");
inline constexpr std::string_view previousPage = translatable("Previous page");
inline constexpr std::string_view nextPage = translatable("Next page");
inline constexpr std::string_view closeTip = translatable("Close this document");

// Drop zone.
inline constexpr std::string_view dropTitle = translatable("Drop an image or PDF to redact");
inline constexpr std::string_view dropText =
    translatable("Draw black bars over anything sensitive, or let Murkwell find emails, IDs, and "
                 "faces for you. Redactions are burned into a new flattened file — the hidden "
                 "data is gone, not just covered.");
inline constexpr std::string_view openTip =
    translatable("Open an image, a PDF or a saved document");
inline constexpr std::string_view chooseFile = translatable("Choose File…");

// Status line.
inline constexpr std::string_view hint =
    translatable("Drag on the page to draw a redaction. Selected box: ⌫ to remove, ⌘Z to undo.");

// Controls.
inline constexpr std::string_view styleTip =
    translatable("How new redactions look. Black is fully irreversible; Noise scrambles with "
                 "random pixels.");
inline constexpr std::string_view oneRedaction = translatable("%d redaction");
inline constexpr std::string_view redactions = translatable("%d redactions");
inline constexpr std::string_view remove = translatable("Delete");
inline constexpr std::string_view removeTip = translatable("Delete the selected redaction (⌫)");
inline constexpr std::string_view clear = translatable("Clear");
inline constexpr std::string_view clearTip = translatable("Remove many redactions at once");
inline constexpr std::string_view clearThisPage = translatable("Clear This Page");
inline constexpr std::string_view clearDetected = translatable("Clear Auto-Detected");
inline constexpr std::string_view reveal = translatable("Reveal");
inline constexpr std::string_view revealTip =
    translatable("Show the exported file in the file manager");
inline constexpr std::string_view exportTip =
    translatable("Write a flattened copy with every redaction burned in");
inline constexpr std::string_view style = translatable("Style");
inline constexpr std::string_view exportFile = translatable("Export…");
inline constexpr std::string_view scanning = translatable("Scanning…");

// Find popover.
inline constexpr std::string_view find = translatable("Find & Redact");
inline constexpr std::string_view findTip =
    translatable("Redact every occurrence of a specific word or number");
inline constexpr std::string_view findText =
    translatable("Black out every match of a word or number.");
inline constexpr std::string_view findPlaceholder = translatable("Text to redact");
inline constexpr std::string_view fuzzyMatch = translatable("Fuzzy match");
inline constexpr std::string_view fuzzyText =
    translatable("Also catch close spellings & OCR slips");
inline constexpr std::string_view redactMatches = translatable("Redact Matches");

// Auto-detect popover.
inline constexpr std::string_view autoDetect = translatable("Auto-Detect");
inline constexpr std::string_view autoDetectTip =
    translatable("Scan for sensitive content and add redactions");
inline constexpr std::string_view autoDetectText =
    translatable("Scan for these on-device and black them out.");
inline constexpr std::string_view allKinds = translatable("All");
inline constexpr std::string_view noKinds = translatable("None");
inline constexpr std::string_view allKindsTip = translatable("Scan for every kind");
inline constexpr std::string_view noKindsTip = translatable("Scan for no kind");
inline constexpr std::string_view detectAndRedact = translatable("Detect & Redact");

// Both popovers.
inline constexpr std::string_view applyTo = translatable("Apply to");
inline constexpr std::string_view thisPage = translatable("This Page");
inline constexpr std::string_view allPages = translatable("All Pages");

// What a screen reader says of the page and of its boxes.
inline constexpr std::string_view canvas = translatable("Page with redactions");
inline constexpr std::string_view blackBar = translatable("Redaction %d, black bar");
inline constexpr std::string_view whiteBar = translatable("Redaction %d, white bar");
inline constexpr std::string_view noise = translatable("Redaction %d, noise");
inline constexpr std::string_view detectedBlackBar =
    translatable("Redaction %d, black bar, detected");
inline constexpr std::string_view detectedWhiteBar =
    translatable("Redaction %d, white bar, detected");
inline constexpr std::string_view detectedNoise = translatable("Redaction %d, noise, detected");

// Sidebar.
inline constexpr std::string_view pages = translatable("Pages");
inline constexpr std::string_view page = translatable("Page %d");

// Undo steps of the canvas.
inline constexpr std::string_view moveRedaction = translatable("Move Redaction");
inline constexpr std::string_view resizeRedaction = translatable("Resize Redaction");

} // namespace murkwell::WindowTexts
