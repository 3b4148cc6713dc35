// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <stop_token>

#include <QFuture>
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

namespace tovi {

/// Nothing could be recognised; the description is fit for the log.
class TextRecognitionError : public std::runtime_error
{
public:
    enum class Reason {
        Failed,
        NotInstalled, ///< the recogniser or the data of every language asked for are missing
        Abandoned,    ///< the request's stop token was told to stop
    };

    TextRecognitionError(const QString &description, Reason reason)
        : std::runtime_error(description.toStdString())
        , m_reason(reason)
    {}
    QString description() const { return QString::fromUtf8(what()); }
    Reason reason() const { return m_reason; }

private:
    Reason m_reason;
};

/// A piece of text as it stands in the picture.
struct RecognizedText
{
    QString text;          ///< the best candidate: one line, trimmed, not empty
    double confidence = 0; ///< 0 to 1
    QRect box;             ///< pixels of the picture, y down
};

struct TextRecognitionRequest
{
    QImage image;
    /// The likely languages, preferred ones first ("zh-Hans", "zh-Hant", "en-US", "ja-JP", "ko-KR"). Which of
    /// them a line is in is found out.
    QStringList languages;
    /// Looked at between lines.
    std::stop_token stop = {};
};

/// Reads the text in pictures of a screen.
class TextRecognizer
{
public:
    virtual ~TextRecognizer() = default;

    /// Works on threads of its own, so nothing here waits. Finishes with the lines in reading order (none
    /// when the picture has no text) or with a TextRecognitionError. Main thread.
    virtual QFuture<QList<RecognizedText>> recognize(TextRecognitionRequest request) = 0;
    /// Whether the system has a recogniser and data, as far as the last recognition has found out. Any
    /// thread.
    virtual bool isPresent() const = 0;
};

} // namespace tovi
