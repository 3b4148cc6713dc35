// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/TranslationFramework.h"

namespace tovi {

/// On-device translation by Apertium's programs, for the language pairs whose modes are installed, directly
/// or through one language between.
class ApertiumFramework final : public TranslationFramework
{
public:
    explicit ApertiumFramework(const QString &modesFolder = QStringLiteral("/usr/share/apertium/modes"));
    /// Ends the running programs; texts under way fail.
    ~ApertiumFramework() override;

    bool isPresent() const override;
    Availability status(const QString &source, const QString &target) override;
    Availability statusForText(const QString &text, const QString &target) override;
    /// An empty source counts as none. A text that is in the target language already comes back as it is.
    void openSession(const std::optional<QString> &source, const QString &target,
                     SessionHandler handler) override;

private:
    class Engine;
    class Session;
    std::shared_ptr<Engine> m_engine;
};

} // namespace tovi
