// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Pasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QLineEdit>
#include <QMimeData>
#include <QtConcurrent>
#include <gtest/gtest.h>

#include "Platform/X11/LiveDesktop.h"
#include "Support/Await.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Status = Pasteboard::Status;

/// For what must come: longer than a busy machine needs.
constexpr auto patience = 30s;

/// A window of another program that owns a selection.
class SelectionOwner
{
public:
    /// Answers a request by the property to tell; by none when it leaves it unanswered.
    using Answer =
        std::function<std::optional<xcb_atom_t>(XcbSession &, const xcb_selection_request_event_t &)>;

    SelectionOwner(const char *selection, Answer answer)
        : m_answer(std::move(answer))
        , m_window(xcb_generate_id(m_session.connection()))
    {
        auto *connection = m_session.connection();
        xcb_create_window(connection, 0, m_window, m_session.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection, m_window, m_session.atom(selection), XCB_CURRENT_TIME);
        m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection));
    }
    /// Answers what has been asked.
    void serve()
    {
        auto *connection = m_session.connection();
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
            if ((event->response_type & 0x7f) != XCB_SELECTION_REQUEST)
                continue;
            const auto &request = reinterpret_cast<const xcb_selection_request_event_t &>(*event);
            m_requestor = request.requestor;
            const auto property = m_answer(m_session, request);
            if (!property)
                continue;
            char buffer[32] = {};
            auto &notify = reinterpret_cast<xcb_selection_notify_event_t &>(buffer);
            notify.response_type = XCB_SELECTION_NOTIFY;
            notify.requestor = request.requestor;
            notify.selection = request.selection;
            notify.target = request.target;
            notify.property = *property;
            xcb_send_event(connection, 0, request.requestor, 0, buffer);
        }
        xcb_flush(connection);
    }
    bool wasAsked() const { return m_requestor != XCB_WINDOW_NONE; }
    /// Whether the window of the last request still takes an answer.
    bool canAnswer()
    {
        auto *connection = m_session.connection();
        const auto cookie = xcb_change_property_checked(connection, XCB_PROP_MODE_REPLACE, m_requestor,
                                                        XCB_ATOM_CUT_BUFFER0, XCB_ATOM_STRING, 8, 1, "x");
        return !XcbOwned<xcb_generic_error_t>(xcb_request_check(connection, cookie));
    }

private:
    XcbSession m_session;
    const Answer m_answer;
    const xcb_window_t m_window;
    xcb_window_t m_requestor = XCB_WINDOW_NONE;
};

/// Says what it has and that a megabyte will come in pieces, which never come.
std::optional<xcb_atom_t> stopInTheMiddle(XcbSession &session, const xcb_selection_request_event_t &request)
{
    const bool isTargets = request.target == session.atom("TARGETS");
    const quint32 value = isTargets ? session.atom("UTF8_STRING") : 1 << 20;
    xcb_change_property(session.connection(), XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                        isTargets ? xcb_atom_t(XCB_ATOM_ATOM) : session.atom("INCR"), 32, 1, &value);
    return request.property;
}

class PasteboardOnX11 : public testing::Test
{
protected:
    /// Reads on another thread, as the program does, while this one serves what it owns.
    template <class Read>
    auto read(Read read)
    {
        return await(QtConcurrent::run(read));
    }
    void SetUp() override
    {
        // What earlier owners' ends change has been counted when this can be read.
        ours.setString(QStringLiteral("start"));
        ASSERT_TRUE(isRead(theirs, QStringLiteral("start")));
    }
    bool isRead(Pasteboard &pasteboard, const QString &text)
    {
        return waitUntil([&] { return read([&] { return pasteboard.text(1s); }).value.text == text; });
    }
    QList<PasteboardItem> allItems()
    {
        return read([this] {
            QList<PasteboardItem> items;
            for (const QString &type : ours.types(patience).value)
                items << ours.item(type, patience).value;
            return items;
        });
    }

    X11Pasteboard theirs; ///< another program's; each has connections of its own
    X11Pasteboard ours;
};

TEST_F(PasteboardOnX11, CarriesEveryFormOfTheContentsByteForByte)
{
    QList<PasteboardItem> items{
        {QStringLiteral("UTF8_STRING"),
         "Gr\xc3\xbc\xc3\x9f"
         "e",
         QStringLiteral("UTF8_STRING/8")},
        {QStringLiteral("TEXT"),
         "Gr\xfc\xdf"
         "e",
         QStringLiteral("STRING/8")},
        {QStringLiteral("text/html"), QByteArray("<b>\0</b>", 8), QStringLiteral("text/html/8")},
        {QStringLiteral("image/png"), QByteArray(1'000'003, '\x89'), QStringLiteral("image/png/8")},
        {QStringLiteral("LENGTH"), QByteArray("\5\0\0\0", 4), QStringLiteral("INTEGER/32")},
        {QStringLiteral("application/x-own;kind=\"a b\""), {}, QStringLiteral("application/x-own/16")},
    };
    for (int i = 0; i < 30; ++i)
        items << PasteboardItem{QStringLiteral("application/x-%1").arg(i), QByteArray(i * 1000, char(i)),
                                QStringLiteral("application/x-%1/8").arg(i)};
    const qint64 before = ours.changeCount();
    theirs.write(items);
    ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != before; }));
    EXPECT_EQ(allItems(), items);

    // Put back by us, read by them.
    const qint64 theirCount = theirs.changeCount();
    ours.write(items);
    EXPECT_EQ(allItems(), items); // from memory
    ASSERT_TRUE(waitUntil([&] { return theirs.changeCount() != theirCount; }));
    EXPECT_EQ(read([&] { return theirs.item(QStringLiteral("image/png"), patience).value; }), items[3]);
    EXPECT_EQ(read([&] { return theirs.text(patience).value.text; }), QStringLiteral("Grüße"));
}

TEST_F(PasteboardOnX11, CountsEveryWriteOnce)
{
    const qint64 before = ours.changeCount();
    ours.setString(QStringLiteral("mine"));
    EXPECT_EQ(ours.changeCount(), before + 1);
    EXPECT_EQ(ours.text(0s).value.text, QStringLiteral("mine"));
    EXPECT_TRUE(isRead(theirs, QStringLiteral("mine")));
    theirs.setString(QStringLiteral("theirs"));
    ASSERT_TRUE(waitUntil([&] { return ours.changeCount() == before + 2; }));
    EXPECT_EQ(read([&] { return ours.text(patience).value.text; }), QStringLiteral("theirs"));
    ours.setString(QStringLiteral("mine again"));
    EXPECT_EQ(ours.changeCount(), before + 3);
}

TEST_F(PasteboardOnX11, ReadsTheToolkitsOwnClipboard)
{
    // The toolkit takes the selection with the time of the last input that it has seen.
    OtherClient user;
    QLineEdit window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(waitUntil([&] { return window.isActiveWindow(); }));
    user.press({40});
    ASSERT_TRUE(waitUntil([&] { return !window.text().isEmpty(); }));
    const qint64 before = ours.changeCount();
    auto *data = new QMimeData;
    data->setText(QString(500'000, QChar(0xe9)));
    data->setHtml(QStringLiteral("<i>x</i>"));
    data->setData(QStringLiteral("x-kde-passwordManagerHint"), "secret");
    QGuiApplication::clipboard()->setMimeData(data);
    ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != before; }));
    const auto answer = read([&] { return ours.text(patience); });
    EXPECT_EQ(answer.value.text.size(), 500'000);
    EXPECT_TRUE(answer.value.isSecret);

    // An image alone: asked for its text all the same, the toolkit answers with no bytes.
    const qint64 text = ours.changeCount();
    QGuiApplication::clipboard()->setImage(QImage(4, 4, QImage::Format_RGB32));
    ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != text; }));
    EXPECT_EQ(read([&] { return ours.text(patience); }).value.text, QString());
    EXPECT_TRUE(read([&] { return ours.types(patience); }).value.contains(QStringLiteral("image/png")));
    QGuiApplication::clipboard()->clear();
}

TEST_F(PasteboardOnX11, OwnersThatMisbehaveCostTheirLimitOnly)
{
    const std::pair<SelectionOwner::Answer, Status> cases[] = {
        {[](auto &&...) { return std::nullopt; }, Status::TimedOut},
        {[](auto &&...) { return XCB_ATOM_NONE; }, Status::Missing},
        {stopInTheMiddle, Status::TimedOut},
    };
    for (const auto &[answer, status] : cases) {
        const qint64 own = ours.changeCount();
        auto owner = std::make_unique<SelectionOwner>("CLIPBOARD", answer);
        ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != own; }));
        const auto limit = status == Status::TimedOut ? 50ms : patience;
        // A busy machine may spend the limit before the owner is asked at all.
        for (int i = 0; i < 100 && !owner->wasAsked(); ++i) {
            const auto reading = QtConcurrent::run([&] { return ours.text(limit); });
            ASSERT_TRUE(waitUntil([&] {
                owner->serve();
                return reading.isFinished();
            }));
            EXPECT_EQ(reading.result().status, status);
            owner->serve();
        }
        // Simple owners die of a window that has gone.
        EXPECT_TRUE(status != Status::TimedOut || owner->canAnswer());
        const qint64 before = ours.changeCount();
        owner.reset();
        ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != before; })) << "its going is a change";
        EXPECT_EQ(read([&] { return ours.types(1s); }).value, QStringList());
    }
}

TEST_F(PasteboardOnX11, LeavesItsContentsToTheClipboardManager)
{
    QString saved;
    SelectionOwner manager("CLIPBOARD_MANAGER", [&](XcbSession &session, const auto &request) {
        EXPECT_EQ(request.target, session.atom("SAVE_TARGETS"));
        saved = ours.text(patience).value.text;
        return request.property;
    });
    auto ending = std::make_unique<X11Pasteboard>();
    const qint64 before = ours.changeCount();
    ending->setString(QStringLiteral("kept"));
    ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != before; })) << "ours knows it owns no more";
    const auto ended = QtConcurrent::run([&] { ending.reset(); });
    ASSERT_TRUE(waitUntil([&] {
        manager.serve();
        return ended.isFinished();
    }));
    EXPECT_EQ(saved, QStringLiteral("kept"));
}

} // namespace
} // namespace tovi
