// SPDX-License-Identifier: MIT
#include "UI/SettingsView/ProviderTestState.h"

#include "Localization.h"
#include "Settings.h"
#include "Translation/ProviderErrorMapper.h"
#include "Translation/Translator.h"

namespace tovi {

QCoro::Task<> ProviderTest::run(std::shared_ptr<ProviderTest> test, ProviderConfig config)
{
    using Kind = ProviderTestState::Kind;
    test->state = ProviderTestState{Kind::running, {}};
    ProviderTestState outcome;
    try {
        // A key that is still on its way would make the test fail.
        const Settings &settings = Settings::shared();
        auto keyLoaded = Settings::shared().keyLoaded(config.id);
        co_await keyLoaded;
        const ProviderConfig present = settings.provider(config.id).value_or(config);
        auto translation = Translator::shared().testConnection(present);
        const TranslationResult result = co_await translation;
        const QString text = ProviderErrorMapper::withoutKey(result.translatedText, present.apiKey);
        outcome = {Kind::success, formatted(Localization::shared().t(Str::testSuccess), {text})};
    } catch (const TranslationError &error) {
        outcome = {Kind::failure, error.localizedDescription()};
    } catch (...) {
        outcome = {Kind::failure,
                   ProviderErrorMapper::network(std::current_exception()).localizedDescription()};
    }
    test->state = outcome;
}

} // namespace tovi
