// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Pasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QWidget>
#include <QtConcurrent>
#include <gtest/gtest.h>

#include "Platform/X11/LiveDesktop.h"
#include "Support/Await.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Status = Pasteboard::Status;

/// A window of another program that owns a selection.
class SelectionOwner
{
public:
    explicit SelectionOwner(const char *selection)
        : m_window(xcb_generate_id(m_session.connection()))
    {
        m_session.startDeadline(60s);
        auto *connection = m_session.connection();
        xcb_create_window(connection, 0, m_window, m_session.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection, m_window, m_session.atom(selection), XCB_CURRENT_TIME);
        m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection));
    }
    virtual ~SelectionOwner() = default;
    SelectionOwner(const SelectionOwner &) = delete;

    /// Answers what has been asked.
    void serve()
    {
        auto *connection = m_session.connection();
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
            if ((event->response_type & 0x7f) != XCB_SELECTION_REQUEST)
                continue;
            const auto &request = reinterpret_cast<const xcb_selection_request_event_t &>(*event);
            const auto property = answer(request);
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

protected:
    /// The property to tell, none to leave the request unanswered.
    virtual std::optional<xcb_atom_t> answer(const xcb_selection_request_event_t &request) = 0;

    XcbSession m_session;

private:
    const xcb_window_t m_window;
};

/// Owns the clipboard and answers as a test says.
class OddOwner final : public SelectionOwner
{
public:
    enum class Manner { Silent, RefusesAll, StopsInTheMiddle };

    explicit OddOwner(Manner manner)
        : SelectionOwner("CLIPBOARD")
        , m_manner(manner)
    {}
    /// Whether the window of the last request still takes an answer.
    bool canAnswer()
    {
        auto *connection = m_session.connection();
        const auto cookie = xcb_change_property_checked(connection, XCB_PROP_MODE_REPLACE, m_requestor,
                                                        XCB_ATOM_CUT_BUFFER0, XCB_ATOM_STRING, 8, 1, "x");
        return !XcbOwned<xcb_generic_error_t>(xcb_request_check(connection, cookie));
    }

private:
    std::optional<xcb_atom_t> answer(const xcb_selection_request_event_t &request) override
    {
        m_requestor = request.requestor;
        if (m_manner == Manner::Silent)
            return {};
        if (m_manner == Manner::RefusesAll)
            return XCB_ATOM_NONE;
        const xcb_atom_t utf8 = m_session.atom("UTF8_STRING");
        const quint32 size = 1 << 20;
        const bool isTargets = request.target == m_session.atom("TARGETS");
        xcb_change_property(m_session.connection(), XCB_PROP_MODE_REPLACE, request.requestor,
                            request.property, isTargets ? xcb_atom_t(XCB_ATOM_ATOM) : m_session.atom("INCR"),
                            32, 1, isTargets ? &utf8 : &size);
        return request.property;
    }

    xcb_window_t m_requestor = XCB_WINDOW_NONE;
    const Manner m_manner;
};

/// Asks for the text when it is told to save what somebody leaves.
class Manager final : public SelectionOwner
{
public:
    explicit Manager(Pasteboard &clipboard)
        : SelectionOwner("CLIPBOARD_MANAGER")
        , m_clipboard(clipboard)
    {}
    QString saved;

private:
    std::optional<xcb_atom_t> answer(const xcb_selection_request_event_t &request) override
    {
        EXPECT_EQ(request.target, m_session.atom("SAVE_TARGETS"));
        saved = m_clipboard.text(30s).value.text;
        return request.property;
    }

    Pasteboard &m_clipboard;
};

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
            for (const QString &type : ours.types(1s).value)
                items << ours.item(type, 1s).value;
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
    EXPECT_EQ(read([&] { return theirs.item(QStringLiteral("image/png"), 1s).value; }), items[3]);
    EXPECT_EQ(read([&] { return theirs.text(1s).value.text; }), QStringLiteral("Grüße"));
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
    EXPECT_EQ(read([&] { return ours.text(1s).value.text; }), QStringLiteral("theirs"));
    ours.setString(QStringLiteral("mine again"));
    EXPECT_EQ(ours.changeCount(), before + 3);
}

TEST_F(PasteboardOnX11, ReadsTheToolkitsOwnClipboard)
{
    // The toolkit takes the selection with the time of the last input.
    OtherClient user;
    QWidget window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(waitUntil([&] { return window.isActiveWindow(); }));
    user.press({40});
    drainMainQueue();
    const qint64 before = ours.changeCount();
    auto *data = new QMimeData;
    data->setText(QString(500'000, QChar(0xe9)));
    data->setHtml(QStringLiteral("<i>x</i>"));
    data->setData(QStringLiteral("x-kde-passwordManagerHint"), "secret");
    QGuiApplication::clipboard()->setMimeData(data);
    ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != before; }));
    auto answer = read([&] { return ours.text(1s); });
    EXPECT_EQ(answer.value.text.size(), 500'000);
    EXPECT_TRUE(answer.value.isSecret);

    // An image alone: asked for its text all the same, the toolkit answers with no bytes.
    const qint64 text = ours.changeCount();
    QGuiApplication::clipboard()->setImage(QImage(4, 4, QImage::Format_RGB32));
    ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != text; }));
    EXPECT_EQ(read([&] { return ours.text(1s); }).value.text, QString());
    EXPECT_TRUE(read([&] { return ours.types(1s); }).value.contains(QStringLiteral("image/png")));
    QGuiApplication::clipboard()->clear();
}

TEST_F(PasteboardOnX11, OwnersThatMisbehaveCostTheirLimitOnly)
{
    const std::pair<OddOwner::Manner, Status> cases[] = {
        {OddOwner::Manner::Silent, Status::TimedOut},
        {OddOwner::Manner::RefusesAll, Status::Missing},
        {OddOwner::Manner::StopsInTheMiddle, Status::TimedOut},
    };
    for (const auto &[manner, status] : cases) {
        const qint64 own = ours.changeCount();
        auto owner = std::make_unique<OddOwner>(manner);
        ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != own; }));
        const auto limit = status == Status::TimedOut ? 50ms : 5000ms;
        auto reading = QtConcurrent::run([&] { return ours.text(limit); });
        ASSERT_TRUE(waitUntil([&] {
            owner->serve();
            return reading.isFinished();
        }));
        EXPECT_EQ(reading.result().status, status);
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
    Manager manager(ours);
    auto ending = std::make_unique<X11Pasteboard>();
    const qint64 before = ours.changeCount();
    ending->setString(QStringLiteral("kept"));
    ASSERT_TRUE(waitUntil([&] { return ours.changeCount() != before; })) << "ours knows it owns no more";
    const auto ended = QtConcurrent::run([&] { ending.reset(); });
    ASSERT_TRUE(waitUntil([&] {
        manager.serve();
        return ended.isFinished();
    }));
    EXPECT_EQ(manager.saved, QStringLiteral("kept"));
}

} // namespace
} // namespace tovi
