// SPDX-License-Identifier: MIT
#include "Platform/Linux/TesseractLibrary.h"

#include "Platform/Linux/ResolveFunction.h"

namespace tovi {

std::optional<TesseractLibrary> loadTesseract()
{
    QLibrary library(QStringLiteral("tesseract"), 5);
    if (!library.load())
        return std::nullopt;
    TesseractLibrary tesseract;
    const bool isComplete =
        resolveFunction(library, tesseract.create, "TessBaseAPICreate") &&
        resolveFunction(library, tesseract.destroy, "TessBaseAPIDelete") &&
        resolveFunction(library, tesseract.init, "TessBaseAPIInit2") &&
        resolveFunction(library, tesseract.dataPath, "TessBaseAPIGetDatapath") &&
        resolveFunction(library, tesseract.setVariable, "TessBaseAPISetVariable") &&
        resolveFunction(library, tesseract.setPageSegMode, "TessBaseAPISetPageSegMode") &&
        resolveFunction(library, tesseract.setImage, "TessBaseAPISetImage") &&
        resolveFunction(library, tesseract.setSourceResolution, "TessBaseAPISetSourceResolution") &&
        resolveFunction(library, tesseract.recognize, "TessBaseAPIRecognize") &&
        resolveFunction(library, tesseract.clear, "TessBaseAPIClear") &&
        resolveFunction(library, tesseract.iterator, "TessBaseAPIGetIterator") &&
        resolveFunction(library, tesseract.deleteIterator, "TessResultIteratorDelete") &&
        resolveFunction(library, tesseract.next, "TessResultIteratorNext") &&
        resolveFunction(library, tesseract.text, "TessResultIteratorGetUTF8Text") &&
        resolveFunction(library, tesseract.confidence, "TessResultIteratorConfidence") &&
        resolveFunction(library, tesseract.pageIterator, "TessResultIteratorGetPageIteratorConst") &&
        resolveFunction(library, tesseract.boundingBox, "TessPageIteratorBoundingBox") &&
        resolveFunction(library, tesseract.deleteText, "TessDeleteText");
    if (!isComplete)
        return std::nullopt;
    // What the compiler makes of "omp teams thread_limit(1)". The environment variable for the same is read
    // when the program starts, which is too early for us.
    QLibrary openMp(QStringLiteral("gomp"), 1);
    resolveFunction(openMp, tesseract.m_teams, "GOMP_teams_reg");
    return tesseract;
}

void TesseractLibrary::onOneThread(void (*work)(void *), void *data) const
{
    if (m_teams)
        m_teams(work, data, 1, 1, 0);
    else
        work(data);
}

const TesseractLibrary *TesseractLibrary::load()
{
    static const std::optional<TesseractLibrary> library = loadTesseract();
    return library ? &*library : nullptr;
}

} // namespace tovi
