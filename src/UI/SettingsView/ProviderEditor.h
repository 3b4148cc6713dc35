// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <QUuid>

#include "ProviderConfig.h"
#include "UI/Forms/FormView.h"

namespace tovi {

class FormTextField;
class ProviderTest;
class Settings;

/// The form of one engine. Every change goes into the settings at once; those to an engine that is no longer
/// there are lost. Main thread.
class ProviderEditor : public FormView
{
    Q_OBJECT

public:
    ProviderEditor(Settings &settings, const QUuid &providerID, std::shared_ptr<ProviderTest> test,
                   QWidget *parent = nullptr);

    static QString kindTitle(ProviderKind kind);

    /// Directs the keyboard to the name of an engine that is new.
    void editName();
    /// The control that had the keyboard is no longer of use; the reason tells whether keys had brought it.
    std::function<void(Qt::FocusReason reason)> onKeyboardLeft;

private:
    /// The engine, else one that stands in for it.
    ProviderConfig provider() const;
    void edit(const std::function<void(ProviderConfig &)> &change);
    void setIcon(const QString &identifier);
    void runTest();

    void addIdentity();
    void addChat();
    void addPrompt();
    void addDescription(ProviderKind kind, const QString &text);
    void addTest();
    /// A row with a field that shows a member of the engine and writes it through.
    void addText(FormSection &section, const QString &title, QString ProviderConfig::*member,
                 FormTextField *field);
    FormSection *addSectionOf(ProviderKind kind, const QString &title);

    Settings &m_settings;
    const QUuid m_providerID;
    const std::shared_ptr<ProviderTest> m_test;
    FormTextField *m_name = nullptr;
};

} // namespace tovi
