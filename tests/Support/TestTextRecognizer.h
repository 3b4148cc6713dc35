// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include <QPromise>

#include "Platform/TextRecognizer.h"

namespace tovi {

/// Reads in every picture what the test says, at once or when it is told to finish.
class TestTextRecognizer final : public TextRecognizer
{
public:
    QFuture<QList<RecognizedText>> recognize(TextRecognitionRequest request) override
    {
        QPromise<QList<RecognizedText>> promise;
        auto future = promise.future();
        promise.start();
        requests << std::move(request);
        m_held.push_back({std::move(promise), requests.last().stop});
        if (!holds)
            finish();
        return future;
    }

    bool isPresent() const override
    {
        return !error || error->reason() != TextRecognitionError::Reason::NotInstalled;
    }

    /// Answers whatever is held back, in the order of the requests.
    void finish()
    {
        for (auto &[promise, stop] : std::exchange(m_held, {})) {
            if (stop.stop_requested()) {
                promise.setException(std::make_exception_ptr(TextRecognitionError(
                    QStringLiteral("abandoned"), TextRecognitionError::Reason::Abandoned)));
            } else if (error) {
                promise.setException(std::make_exception_ptr(*error));
            } else {
                promise.addResult(lines);
            }
            promise.finish();
        }
    }

    /// Lines of text, one below the other.
    void setTexts(const QStringList &texts)
    {
        lines.clear();
        for (const QString &text : texts)
            lines << RecognizedText{
                .text = text, .confidence = 0.95, .box = QRect(10, 10 + 20 * int(lines.size()), 200, 14)};
    }

    QList<RecognizedText> lines;
    std::optional<TextRecognitionError> error;
    bool holds = false;
    QList<TextRecognitionRequest> requests;

private:
    struct Held
    {
        QPromise<QList<RecognizedText>> promise;
        std::stop_token stop;
    };
    std::vector<Held> m_held;
};

} // namespace tovi
