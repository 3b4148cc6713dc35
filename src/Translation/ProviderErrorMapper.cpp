// SPDX-License-Identifier: MIT
#include "Translation/ProviderErrorMapper.h"

#include <QRegularExpression>

#include "Json.h"
#include "Localization.h"
#include "Platform/URLSession.h"
#include "Text.h"

namespace tovi {

namespace {

constexpr int longestDetail = 160;
/// Shorter keys are words that servers without keys want to see; as part of another word they are none.
constexpr int shortestSecret = 6;

QString t(Str key)
{
    return Localization::shared().t(key);
}

std::optional<QString> serviceMessage(const QByteArray &body)
{
    try {
        const QJsonObject root = decodeJson(body).toObject();
        const auto message =
            textValue(root.value(QLatin1String("error")).toObject().value(QLatin1String("message")));
        return message ? message : textValue(root.value(QLatin1String("message")));
    } catch (const JSONError &) {
        return std::nullopt;
    }
}

QString messageForStatus(int status)
{
    switch (status) {
    case 401:
    case 403:
        return t(Str::errorUnauthorized);
    case 404:
        return t(Str::errorNotFound);
    case 429:
        return t(Str::errorRateLimited);
    default:
        break;
    }
    if (status >= 500 && status <= 599)
        return t(Str::errorServer);
    return formatted(t(Str::errorHTTPStatusOnly), {QString::number(status)});
}

QString messageFor(URLError::Code code)
{
    using Code = URLError::Code;
    switch (code) {
    case Code::timedOut:
        return t(Str::errorTimeout);
    case Code::notConnectedToInternet:
    case Code::networkConnectionLost:
    case Code::dataNotAllowed:
        return t(Str::errorOffline);
    case Code::cannotFindHost:
    case Code::cannotConnectToHost:
    case Code::dnsLookupFailed:
        return t(Str::errorCannotConnect);
    case Code::cancelled:
        return QStringLiteral("The request was cancelled");
    case Code::badURL:
        return QStringLiteral("The address of the request is not valid or too long");
    case Code::badServerResponse:
        return QStringLiteral("The server's answer is not understood");
    case Code::httpTooManyRedirects:
        return QStringLiteral("The server redirects without end");
    case Code::secureConnectionFailed:
        return QStringLiteral("A secure connection to the server cannot be made");
    case Code::serverCertificateUntrusted:
        return QStringLiteral("The server's certificate is not trusted");
    case Code::cannotDecodeContentData:
        return QStringLiteral("The server's answer is damaged");
    case Code::dataLengthExceedsMaximum:
        return QStringLiteral("The server's answer is too long");
    case Code::requestNotSendable:
        return QStringLiteral("The request holds a character that cannot be sent; check the API key");
    case Code::unavailable:
        return QStringLiteral("libcurl is not installed");
    case Code::unknown:
        break;
    }
    return QStringLiteral("The request failed");
}

QString messageFor(JSONError::Kind kind)
{
    switch (kind) {
    case JSONError::Kind::tooDeep:
        return QStringLiteral("The server's answer is nested too deeply");
    case JSONError::Kind::notSerializable:
        return QStringLiteral("The request cannot be written as JSON");
    case JSONError::Kind::invalid:
        break;
    }
    return QStringLiteral("The server's answer is not valid JSON");
}

} // namespace

QString ProviderErrorMapper::friendlyHTTPError(int status, const QByteArray &body, const QString &apiKey)
{
    const QString message = messageForStatus(status);
    const auto detail = serviceMessage(body);
    if (!detail || detail->isEmpty())
        return message;
    return message + QStringLiteral(" \u00B7 ") +
           firstCharacters(withoutKey(*detail, apiKey), longestDetail).toString();
}

QString ProviderErrorMapper::withoutKey(QString message, const QString &apiKey)
{
    const QString key = apiKey.trimmed();
    if (key.isEmpty())
        return message;
    QString pattern = QRegularExpression::escape(key);
    if (key.size() < shortestSecret)
        pattern = QStringLiteral("(?<!\\w)%1(?!\\w)").arg(pattern);
    const QRegularExpression written(pattern, QRegularExpression::CaseInsensitiveOption |
                                                  QRegularExpression::UseUnicodePropertiesOption);
    return message.replace(written, QStringLiteral("\u2022\u2022\u2022\u2022"));
}

TranslationError ProviderErrorMapper::network(const std::exception_ptr &error)
{
    try {
        std::rethrow_exception(error);
    } catch (const URLError &failure) {
        return TranslationError::network(messageFor(failure.code()));
    } catch (const JSONError &failure) {
        return TranslationError::network(messageFor(failure.kind()));
    } catch (...) {
        return TranslationError::network(messageFor(URLError::Code::unknown));
    }
}

} // namespace tovi
