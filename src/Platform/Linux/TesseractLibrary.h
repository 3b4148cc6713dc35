// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <tesseract/capi.h>

namespace tovi {

/// The functions of libtesseract. The library and what it pulls in cost 8 MB, so it is loaded for the
/// first recognition and not with the program.
struct TesseractLibrary
{
    /// Null when the library is not installed. Any thread.
    static const TesseractLibrary *load();

    /// Calls work(data) with a limit of one thread to the library's own parallel loops: its threads for parts
    /// of a line cost more than they bring, and fight with ours, which read whole lines.
    void onOneThread(void (*work)(void *), void *data) const;

    decltype(&TessBaseAPICreate) create = nullptr;
    decltype(&TessBaseAPIDelete) destroy = nullptr;
    decltype(&TessBaseAPIInit2) init = nullptr;
    decltype(&TessBaseAPIGetDatapath) dataPath = nullptr;
    decltype(&TessBaseAPISetVariable) setVariable = nullptr;
    decltype(&TessBaseAPISetPageSegMode) setPageSegMode = nullptr;
    decltype(&TessBaseAPISetImage) setImage = nullptr;
    decltype(&TessBaseAPISetSourceResolution) setSourceResolution = nullptr;
    decltype(&TessBaseAPIRecognize) recognize = nullptr;
    decltype(&TessBaseAPIClear) clear = nullptr;
    decltype(&TessBaseAPIGetIterator) iterator = nullptr;
    decltype(&TessResultIteratorDelete) deleteIterator = nullptr;
    decltype(&TessResultIteratorNext) next = nullptr;
    decltype(&TessResultIteratorGetUTF8Text) text = nullptr;
    decltype(&TessResultIteratorConfidence) confidence = nullptr;
    decltype(&TessResultIteratorGetPageIteratorConst) pageIterator = nullptr;
    decltype(&TessPageIteratorBoundingBox) boundingBox = nullptr;
    decltype(&TessDeleteText) deleteText = nullptr;

private:
    friend std::optional<TesseractLibrary> loadTesseract();
    void (*m_teams)(void (*)(void *), void *, unsigned, unsigned, unsigned) = nullptr;
};

} // namespace tovi
