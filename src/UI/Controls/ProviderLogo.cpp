// SPDX-License-Identifier: MIT
#include "UI/Controls/ProviderLogo.h"

#include "UI/Controls/IconStore.h"

namespace tovi::ProviderLogo {

const QList<DisplayName> &displayNames()
{
    static const auto row = [](const char *logo, const char *name) {
        return DisplayName{QString::fromLatin1(logo), QString::fromLatin1(name)};
    };
    static const QList<DisplayName> rows{
        row("openai", "OpenAI"),
        row("claude", "Claude"),
        row("gemini", "Gemini"),
        row("google", "Google"),
        row("apple", "Apple"),
        row("deepseek", "DeepSeek"),
        row("groq", "Groq"),
        row("mistral", "Mistral"),
        row("ollama", "Ollama"),
        row("moonshot", "Moonshot"),
        row("zhipu", "Zhipu"),
        row("qwen", "Qwen"),
        row("xai", "xAI"),
        row("perplexity", "Perplexity"),
        row("openrouter", "OpenRouter"),
        row("huggingface", "Hugging Face"),
        row("azure", "Azure"),
        row("cohere", "Cohere"),
        row("minimax", "MiniMax"),
        row("doubao", "Doubao"),
        row("siliconcloud", "SiliconCloud"),
        row("yi", "Yi"),
        row("ai21", "AI21"),
        row("together", "Together"),
        row("fireworks", "Fireworks"),
        row("nvidia", "NVIDIA"),
        row("microsoft", "Microsoft"),
        row("meta", "Meta"),
    };
    return rows;
}

QString displayName(const QString &logo)
{
    for (const DisplayName &row : displayNames()) {
        if (row.logo == logo)
            return row.name;
    }
    QString name = logo.toLower();
    bool isAtStart = true;
    for (QChar &character : name) {
        if (isAtStart)
            character = character.toUpper();
        isAtStart = !character.isLetterOrNumber() && character != QLatin1Char('\'');
    }
    return name;
}

IconImage image(const QString &logo)
{
    return IconStore::logo(logo, {16, 16});
}

} // namespace tovi::ProviderLogo
