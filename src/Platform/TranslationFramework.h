// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

#include <QFuture>
#include <QString>

namespace tovi {

/// A failure of the framework itself; the description is fit for the user.
class TranslationFrameworkError : public std::runtime_error
{
public:
    /// What a session found out about a text whose language it had to detect itself.
    enum class Reason {
        Failed,       ///< the translation itself went wrong
        NotInstalled, ///< data for the language pair are missing
        Unsupported,  ///< no data can serve the language pair
    };

    explicit TranslationFrameworkError(const QString &description, Reason reason = Reason::Failed)
        : std::runtime_error(description.toStdString())
        , m_reason(reason)
    {}
    QString description() const { return QString::fromUtf8(what()); }
    Reason reason() const { return m_reason; }

private:
    Reason m_reason;
};

/// Translates texts of one language pair; reused for the pair. Any thread, texts in the order given.
class TranslationSession
{
public:
    virtual ~TranslationSession() = default;
    /// Finishes with the translation or with a TranslationFrameworkError.
    virtual QFuture<QString> translate(const QString &text) = 0;
};

/// On-device translation. Languages are the program's codes ("zh-CN", "en", ...).
class TranslationFramework
{
public:
    enum class Availability {
        Installed,
        Supported, ///< could be translated if the missing data were installed
        Unsupported,
    };
    using SessionHandler = std::function<void(std::shared_ptr<TranslationSession> session)>;

    virtual ~TranslationFramework() = default;

    /// Whether the system has the framework at all. Any thread.
    virtual bool isPresent() const = 0;
    /// Any thread; may read the disk.
    virtual Availability status(const QString &source, const QString &target) = 0;
    /// As above for the language that the text is in; throws TranslationFrameworkError when it cannot tell.
    virtual Availability statusForText(const QString &text, const QString &target) = 0;
    /// Opens a session; without a source its texts' language is detected for each text. The handler is called
    /// on the main thread, with null when no session can come. Main thread.
    virtual void openSession(const std::optional<QString> &source, const QString &target,
                             SessionHandler handler) = 0;
};

} // namespace tovi
