// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Pasteboard.h"

#include <algorithm>
#include <vector>

namespace tovi {

namespace {

constexpr std::chrono::seconds wholeLimit{1};
constexpr char secretMark[] = "x-kde-passwordManagerHint";

Pasteboard::Status statusOf(XcbSelectionTransfer::Status status)
{
    switch (status) {
    case XcbSelectionTransfer::Status::Done:
        return Pasteboard::Status::Found;
    case XcbSelectionTransfer::Status::Refused:
        return Pasteboard::Status::Missing;
    case XcbSelectionTransfer::Status::TimedOut:
        return Pasteboard::Status::TimedOut;
    case XcbSelectionTransfer::Status::Broken:
        break;
    }
    return Pasteboard::Status::Unavailable;
}

/// Requests of the selection protocol, and what is no data but a number of something inside the server that
/// goes with its owner.
bool isData(const QString &type)
{
    static const QStringList others{
        QStringLiteral("TARGETS"),          QStringLiteral("MULTIPLE"),
        QStringLiteral("TIMESTAMP"),        QStringLiteral("SAVE_TARGETS"),
        QStringLiteral("DELETE"),           QStringLiteral("INSERT_PROPERTY"),
        QStringLiteral("INSERT_SELECTION"), QStringLiteral("PIXMAP"),
        QStringLiteral("BITMAP"),           QStringLiteral("COLORMAP"),
        QStringLiteral("DRAWABLE"),         QStringLiteral("FOREGROUND"),
        QStringLiteral("BACKGROUND"),       QStringLiteral("FOREIGN_WINDOW"),
        QStringLiteral("WINDOW"),           QStringLiteral("CLIENT_WINDOW"),
        QStringLiteral("PROCESS"),          QStringLiteral("TASK"),
    };
    return !others.contains(type);
}

bool isSecretMark(const QByteArray &data)
{
    return data.trimmed() == "secret";
}

const PasteboardItem *find(const QList<PasteboardItem> &items, const QString &type)
{
    const auto it = std::ranges::find(items, type, &PasteboardItem::type);
    return it == items.end() ? nullptr : &*it;
}

Pasteboard::Answer<Pasteboard::Text> textOf(const QList<PasteboardItem> &items)
{
    const PasteboardItem *mark = find(items, QLatin1String(secretMark));
    for (const char *type : {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain", "STRING"}) {
        if (const PasteboardItem *item = find(items, QLatin1String(type)))
            return {Pasteboard::Status::Found,
                    {XcbSelectionTransfer::decoded(item->data, item->type == QLatin1String("STRING")),
                     mark && isSecretMark(mark->data)}};
    }
    return {};
}

} // namespace

XcbClipboard &X11Pasteboard::clipboard()
{
    std::call_once(m_opened, [this] { m_clipboard.emplace(); });
    return *m_clipboard;
}

qint64 X11Pasteboard::changeCount()
{
    return clipboard().changeCount();
}

template <class T, class Read>
Pasteboard::Answer<T> X11Pasteboard::transfer(Clock::Duration limit, Read read)
{
    const QDeadlineTimer deadline(std::max<Clock::Duration>(limit, wholeLimit), Qt::PreciseTimer);
    const QDeadlineTimer silence(limit, Qt::PreciseTimer);
    const std::unique_lock lock(m_mutex, std::max(limit, Clock::Duration::zero()));
    if (!lock)
        return {Status::TimedOut};
    // The server may have gone and come back.
    if (!m_session || !m_session->isOpen())
        m_session.emplace();
    if (!m_session->isOpen())
        return {Status::Unavailable};
    m_session->startDeadline(std::chrono::duration_cast<std::chrono::milliseconds>(limit));
    XcbSelectionTransfer transfer(*m_session, m_session->atom("CLIPBOARD"), deadline,
                                  silence.remainingTimeAsDuration());
    return read(transfer);
}

Pasteboard::Answer<QStringList> X11Pasteboard::types(Clock::Duration limit)
{
    QStringList result;
    if (const auto own = clipboard().ownContents()) {
        for (const PasteboardItem &item : *own)
            result << item.type;
        return {Status::Found, result};
    }
    return transfer<QStringList>(limit, [&](XcbSelectionTransfer &transfer) -> Answer<QStringList> {
        const auto targets = transfer.targets();
        for (const QString &name : names(targets.atoms)) {
            if (isData(name) && !result.contains(name))
                result << name;
        }
        return {statusOf(targets.status), result};
    });
}

/// All questions first, then all answers: one round trip.
QStringList X11Pasteboard::names(const QList<xcb_atom_t> &atoms)
{
    constexpr qsizetype mostAtoms = 1000;
    std::vector<xcb_get_atom_name_cookie_t> cookies;
    for (const xcb_atom_t atom : atoms.first(std::min(atoms.size(), mostAtoms)))
        cookies.push_back(xcb_get_atom_name(m_session->connection(), atom));
    QStringList result;
    for (const auto cookie : cookies) {
        if (const auto reply = m_session->reply<xcb_get_atom_name_reply_t>(cookie))
            result << QString::fromLatin1(xcb_get_atom_name_name(reply.get()),
                                          xcb_get_atom_name_name_length(reply.get()));
    }
    return result;
}

Pasteboard::Answer<PasteboardItem> X11Pasteboard::item(const QString &type, Clock::Duration limit)
{
    if (const auto own = clipboard().ownContents()) {
        const PasteboardItem *item = find(*own, type);
        return item ? Answer<PasteboardItem>{Status::Found, *item} : Answer<PasteboardItem>{};
    }
    return transfer<PasteboardItem>(limit, [&](XcbSelectionTransfer &transfer) -> Answer<PasteboardItem> {
        const auto result = transfer.convert(m_session->atom(type.toLatin1()));
        if (result.status != XcbSelectionTransfer::Status::Done)
            return {statusOf(result.status)};
        const QByteArray label = names({result.value.type}).value(0).toLatin1();
        return {Status::Found, {type, result.value.data, XcbClipboard::labelOf(label, result.value.format)}};
    });
}

Pasteboard::Answer<Pasteboard::Text> X11Pasteboard::text(Clock::Duration limit)
{
    if (const auto own = clipboard().ownContents())
        return textOf(*own);
    // Mark and text are asked for one after the other: they must be the same owner's.
    constexpr int mostAttempts = 3;
    for (int i = 0; i < mostAttempts; ++i) {
        const qint64 before = changeCount();
        const Answer<Text> answer = foreignText(limit);
        if (answer.status == Status::TimedOut || changeCount() == before)
            return answer;
    }
    return {};
}

Pasteboard::Answer<Pasteboard::Text> X11Pasteboard::foreignText(Clock::Duration limit)
{
    return transfer<Text>(limit, [&](XcbSelectionTransfer &transfer) -> Answer<Text> {
        const auto targets = transfer.targets();
        if (targets.status != XcbSelectionTransfer::Status::Done)
            return {statusOf(targets.status)};
        bool isSecret = false;
        const xcb_atom_t mark = m_session->atom(secretMark);
        if (targets.atoms.contains(mark)) {
            const auto result = transfer.convert(mark);
            if (result.status == XcbSelectionTransfer::Status::TimedOut)
                return {Status::TimedOut};
            // A mark that cannot be read may say anything.
            isSecret = result.status != XcbSelectionTransfer::Status::Done || isSecretMark(result.value.data);
        }
        const auto answer = transfer.text(targets.atoms);
        return {statusOf(answer.status), {answer.text, isSecret}};
    });
}

bool X11Pasteboard::isPlainText(const QString &type) const
{
    return type == QLatin1String("UTF8_STRING") || type == QLatin1String("STRING") ||
           type == QLatin1String("TEXT") || type == QLatin1String("COMPOUND_TEXT") ||
           type == QLatin1String("text/plain") || type.startsWith(QLatin1String("text/plain;"));
}

void X11Pasteboard::write(const QList<PasteboardItem> &items)
{
    clipboard().write(items);
}

void X11Pasteboard::setString(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    const QString utf8Label = XcbClipboard::labelOf("UTF8_STRING", 8);
    write({{QStringLiteral("text/plain;charset=utf-8"), utf8},
           {QStringLiteral("UTF8_STRING"), utf8},
           {QStringLiteral("text/plain"), utf8},
           {QStringLiteral("TEXT"), utf8, utf8Label},
           {QStringLiteral("STRING"), text.toLatin1()}});
}

} // namespace tovi
