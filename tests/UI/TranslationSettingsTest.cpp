// SPDX-License-Identifier: MIT
#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Endpoints.h"
#include "Settings.h"
#include "Support/Await.h"
#include "Support/TestPlatform.h"
#include "Translation/Translator.h"
#include "UI/Controls/IconButton.h"
#include "UI/Forms/CapsuleBadge.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormTextField.h"
#include "UI/Forms/Picker.h"
#include "UI/Forms/ToggleSwitch.h"
#include "UI/SettingsView/TranslationSettingsView.h"
#include "UI/TextEditing.h"

namespace tovi {
namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

class TranslationSettings : public testing::Test
{
protected:
    TranslationSettings()
    {
        platform.translationFramework().onOpen = [this](auto &request) { request.handler(session); };
        view = std::make_unique<TranslationSettingsView>(Settings::shared());
        view->resize(560, 600);
        view->show();
        view->activateWindow();
        drainMainQueue();
    }

    QListWidget &list() { return *view->findChild<QListWidget *>(); }
    QStringList rows()
    {
        drainMainQueue();
        QStringList texts;
        for (int i = 0; i < list().count(); ++i)
            texts << list().item(i)->data(Qt::AccessibleTextRole).toString();
        return texts;
    }
    template <class Control>
    Control *shown(const char *name)
    {
        drainMainQueue();
        for (Control *control : view->findChildren<Control *>()) {
            const QString given = control->accessibleName();
            const QString seen = QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name);
            if (control->isVisible() && (given.isEmpty() ? seen : given) == s(name))
                return control;
        }
        return nullptr;
    }
    void select(int row)
    {
        list().setCurrentRow(row);
        drainMainQueue();
    }
    void press(const char *button)
    {
        auto *control = shown<QAbstractButton>(button);
        ASSERT_TRUE(control) << button;
        control->click();
        drainMainQueue();
    }
    /// The selected engine, by the list and by the editor's name field.
    QString selected()
    {
        drainMainQueue();
        const QListWidgetItem *item = list().currentItem();
        const QString name = shown<FormTextField>("Name")->text();
        EXPECT_TRUE(!item || name.isEmpty() || item->text() == name) << qPrintable(name);
        return item ? item->text() : QString();
    }
    void choose(int row, const char *title)
    {
        const QPoint at = list().visualItemRect(list().item(row)).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, list().viewport()->mapToGlobal(at));
        QApplication::sendEvent(list().viewport(), &event);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu);
        for (QAction *action : menu->actions()) {
            if (action->text() == s(title) && action->isEnabled())
                action->trigger();
        }
        menu->close();
        drainMainQueue();
    }
    QString outcome()
    {
        QString message;
        waitUntil([&] { return shown<FormButton>("Test Connection")->isEnabled(); });
        for (const FormLabel *label : view->findChildren<FormLabel *>()) {
            if (label->isVisible() && !label->accessibleName().isEmpty())
                message = label->accessibleName();
        }
        return message;
    }

    TestPlatform platform;
    std::shared_ptr<TestTranslationSession> session = std::make_shared<TestTranslationSession>();
    std::unique_ptr<TranslationSettingsView> view;
};

TEST_F(TranslationSettings, EnginesAreAddedCopiedAndRemoved)
{
    const QStringList initial{s("Google, Google Translate, Default"), s("Apple, Apple Translate"),
                              s("OpenAI, gpt-4o-mini")};
    EXPECT_EQ(rows(), initial);
    EXPECT_EQ(selected(), s("Google"));
    EXPECT_FALSE(view->canRemoveSelected());
    EXPECT_FALSE(shown<IconButton>("Remove")->isEnabled());

    press("Add");
    EXPECT_EQ(rows().last(), s("OpenAI-compatible, gpt-4o-mini, Default"));
    EXPECT_EQ(selected(), s("OpenAI-compatible"));
    EXPECT_TRUE(shown<FormTextField>("Name")->hasFocus());
    const ProviderConfig added = Settings::shared().currentProvider();
    EXPECT_EQ(added.baseURL, Endpoints::openAIBaseURL());
    EXPECT_EQ(added.systemPrompt, ProviderConfig::defaultSystemPrompt());
    EXPECT_TRUE(added.fallbackToGoogle);

    // A copy takes everything with it but the identity, and is not the current engine.
    select(0);
    press("Duplicate");
    EXPECT_EQ(selected(), s("Google Copy"));
    EXPECT_TRUE(view->canRemoveSelected());
    EXPECT_TRUE(shown<FormTextField>("Name")->isEnabled());
    EXPECT_EQ(Settings::shared().currentProvider().id, added.id);
    press("Remove");
    EXPECT_EQ(selected(), s("OpenAI-compatible"));
    press("Remove");
    EXPECT_EQ(selected(), s("Google"));
    EXPECT_EQ(rows(), initial);
}

TEST_F(TranslationSettings, ARowsMenuActsOnItsRow)
{
    choose(2, "Set as Default");
    EXPECT_EQ(rows().at(2), s("OpenAI, gpt-4o-mini, Default"));
    EXPECT_EQ(selected(), s("Google"));
    choose(0, "Remove"); // built in
    EXPECT_EQ(rows().size(), 3);
    choose(2, "Duplicate");
    EXPECT_EQ(selected(), s("OpenAI Copy"));

    // The selection stays with what is no longer there: the editor shows a stand-in that cannot be edited.
    choose(3, "Remove");
    EXPECT_EQ(rows().size(), 3);
    EXPECT_EQ(selected(), QString());
    EXPECT_EQ(shown<FormTextField>("Name")->text(), s("Google"));
    EXPECT_FALSE(shown<FormTextField>("Name")->isEnabled());
    const QList<ProviderConfig> before = Settings::shared().providers;
    Q_EMIT shown<Picker>("Icon")->activated(3);
    EXPECT_EQ(Settings::shared().providers.get(), before);
    EXPECT_FALSE(view->canRemoveSelected());
}

TEST_F(TranslationSettings, EditsTakeEffectAtOnce)
{
    select(2);
    const auto engine = [] { return Settings::shared().providers->last(); };
    const auto type = [this](const char *field, const char *text) {
        auto *edited = shown<FormTextField>(field);
        ASSERT_TRUE(edited) << field;
        edited->selectAll();
        edited->insert(s(text));
    };
    type("Name", " ");
    type("Model", "mini & co");
    type("Base URL", "http://localhost:1/v1");
    type("API Key", "sk-very-secret");
    shown<ToggleSwitch>("Fall back to Google on failure")->click();
    Q_EMIT shown<Picker>("Icon")->activated(5);
    auto *prompt = shown<QPlainTextEdit>("System Prompt");
    prompt->setPlainText(s("Into {{target}}."));
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(prompt, &enter);
    EXPECT_EQ(engine().name, s(" "));
    EXPECT_EQ(rows().last(), s("mini & co, mini & co"));
    EXPECT_EQ(engine().baseURL, s("http://localhost:1/v1"));
    EXPECT_EQ(engine().apiKey, s("sk-very-secret"));
    EXPECT_FALSE(engine().fallbackToGoogle);
    EXPECT_EQ(engine().iconName, s("logo:deepseek"));
    EXPECT_EQ(engine().systemPrompt, s("\nInto {{target}}."));
    press("Reset to Default");
    EXPECT_EQ(prompt->toPlainText(), ProviderConfig::defaultSystemPrompt());

    // Another type shows another form and keeps what was entered.
    Q_EMIT shown<Picker>("Type")->activated(0);
    EXPECT_FALSE(shown<FormTextField>("Model"));
    EXPECT_EQ(rows().last(), s("Google, Google Translate"));
    Q_EMIT shown<Picker>("Type")->activated(1);
    EXPECT_EQ(shown<FormTextField>("Model")->text(), s("mini & co"));

    // The default engine has a badge in place of the button.
    EXPECT_FALSE(shown<CapsuleBadge>("Default"));
    shown<FormButton>("Set as Default")->setFocus();
    press("Set as Default");
    EXPECT_TRUE(list().hasFocus());
    EXPECT_EQ(Settings::shared().currentProviderID.get(), engine().id);
    EXPECT_FALSE(shown<FormButton>("Set as Default"));
    EXPECT_TRUE(shown<CapsuleBadge>("Default"));
}

TEST_F(TranslationSettings, TheAPIKeyIsKeptFromReadersAndTheClipboard)
{
    select(2);
    auto *field = shown<FormTextField>("API Key");
    field->insert(s("sk-very-secret"));
    field->selectAll();
    for (const TextEditing editing : {TextEditing::copy, TextEditing::cut})
        perform(editing, *field);
    EXPECT_TRUE(platform.pasteboard().writes.isEmpty());
    EXPECT_EQ(Settings::shared().providers->last().apiKey, s("sk-very-secret"));
    QAccessibleInterface *secret = QAccessible::queryAccessibleInterface(field);
    EXPECT_EQ(secret->text(QAccessible::Name), s("API Key"));
    EXPECT_TRUE(secret->state().passwordEdit);
    EXPECT_EQ(secret->text(QAccessible::Value), QString());
    // What has a text has its changes told.
    EXPECT_FALSE(secret->textInterface());
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(shown<FormTextField>("Model"))->textInterface());
}

TEST_F(TranslationSettings, ATestShowsWhatCameOfIt)
{
    Settings::shared().targetLanguage = s("es");
    select(1);
    session->answer = [](const QString &) { return s("Hola, mundo."); };
    press("Test Connection");
    EXPECT_EQ(outcome(), s("Connection OK: Hola, mundo."));

    // It belongs to the pane: another engine shows it, too, until its own test ends.
    select(2);
    EXPECT_EQ(outcome(), s("Connection OK: Hola, mundo."));
    shown<FormTextField>("Model")->selectAll();
    shown<FormTextField>("Model")->insert(QString());
    shown<FormButton>("Test Connection")->setFocus();
    press("Test Connection");
    EXPECT_EQ(outcome(), s("Please fill in a model name"));
    EXPECT_TRUE(shown<FormButton>("Test Connection")->hasFocus());
}

TEST_F(TranslationSettings, TheOutcomeOfAVisibleTestComesIntoView)
{
    Settings::shared().targetLanguage = s("es");
    view->resize(440, 400); // the message stands below
    for (const bool isSeen : {true, false}) {
        select(0);
        select(2);
        auto *model = shown<FormTextField>("Model");
        model->selectAll();
        model->insert(isSeen ? QString() : s(" ")); // another message has another height
        QScrollBar *bar = view->findChildren<QScrollArea *>().last()->verticalScrollBar();
        bar->setValue(isSeen ? bar->maximum() : 0);
        drainMainQueue();
        const int before = bar->value();
        press("Test Connection");
        EXPECT_EQ(outcome(), s("Please fill in a model name"));
        EXPECT_EQ(bar->value() > before, isSeen);
        EXPECT_EQ(bar->value(), isSeen ? bar->maximum() : 0);
    }
}

TEST_F(TranslationSettings, APaneMayGoWhileItsTestRuns)
{
    TranslationFramework::SessionHandler open;
    platform.translationFramework().onOpen = [&](auto &request) { open = request.handler; };
    select(1);
    press("Test Connection");
    EXPECT_FALSE(shown<FormButton>("Test Connection")->isEnabled());
    ASSERT_TRUE(waitUntil([&] { return bool(open); }));
    view.reset();
    bool isAnswered = false;
    session->answer = [&](const QString &text) {
        isAnswered = true;
        return text;
    };
    open(session);
    EXPECT_TRUE(waitUntil([&] { return isAnswered; }));
    // It has ended when a later one has.
    platform.translationFramework().onOpen = [this](auto &request) { request.handler(session); };
    await(Translator::shared().testConnection(Settings::shared().providers->at(1)));
    drainMainQueue();
}

} // namespace
} // namespace tovi
