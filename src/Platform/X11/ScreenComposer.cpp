// SPDX-License-Identifier: MIT
#include "Platform/X11/ScreenComposer.h"

#include <utility>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/composite.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

namespace tovi {

namespace {

constexpr uint8_t pixelDepth = 32;

bool isPresent(xcb_connection_t *connection, xcb_extension_t &extension)
{
    const auto *data = xcb_get_extension_data(connection, &extension);
    return data && data->present;
}

/// Shared memory with the display server, which lives as long as an image shows it.
class SharedBytes
{
public:
    explicit SharedBytes(size_t size)
        : m_id(shmget(IPC_PRIVATE, size, IPC_CREAT | 0600))
    {
        if (m_id < 0)
            return;
        if (void *bytes = shmat(m_id, nullptr, 0); bytes != reinterpret_cast<void *>(-1))
            m_bytes = static_cast<uchar *>(bytes);
    }
    ~SharedBytes()
    {
        hide();
        if (m_bytes)
            shmdt(m_bytes);
    }
    SharedBytes(const SharedBytes &) = delete;

    int id() const { return m_id; }
    /// From others; from then on it goes with its last user, who may be the image.
    void hide()
    {
        if (m_id >= 0)
            shmctl(std::exchange(m_id, -1), IPC_RMID, nullptr);
    }
    explicit operator bool() const { return m_bytes; }
    QImage takeImage(QSize size)
    {
        uchar *bytes = std::exchange(m_bytes, nullptr);
        return {bytes, size.width(), size.height(), QImage::Format_RGB32, [](void *memory) { shmdt(memory); },
                bytes};
    }

private:
    int m_id;
    uchar *m_bytes = nullptr;
};

} // namespace

/// The picture while it is drawn, on the server.
class ScreenComposer::Canvas
{
public:
    Canvas(xcb_connection_t *connection, xcb_window_t root, xcb_render_pictformat_t format, const QRect &rect)
        : area(rect)
        , pixmap(xcb_generate_id(connection))
        , picture(xcb_generate_id(connection))
        , m_connection(connection)
    {
        xcb_create_pixmap(connection, pixelDepth, pixmap, root, uint16_t(area.width()),
                          uint16_t(area.height()));
        xcb_render_create_picture(connection, picture, pixmap, format, 0, nullptr);
        clear(area);
    }
    ~Canvas()
    {
        xcb_render_free_picture(m_connection, picture);
        xcb_free_pixmap(m_connection, pixmap);
        xcb_flush(m_connection);
    }
    Canvas(const Canvas &) = delete;

    /// Rectangles of the desktop.
    void clear(const QRect &rect) const
    {
        const QRect part = rect.intersected(area).translated(-area.topLeft());
        if (part.isEmpty())
            return;
        const xcb_rectangle_t rectangle{int16_t(part.x()), int16_t(part.y()), uint16_t(part.width()),
                                        uint16_t(part.height())};
        xcb_render_fill_rectangles(m_connection, XCB_RENDER_PICT_OP_SRC, picture, {0, 0, 0, 0xffff}, 1,
                                   &rectangle);
    }
    /// Draws a picture that has this place on the desktop.
    void draw(xcb_render_picture_t source, const QRect &place, uint8_t operation,
              xcb_render_picture_t mask = XCB_RENDER_PICTURE_NONE) const
    {
        const QRect part = place.intersected(area);
        const QPoint from = part.topLeft() - place.topLeft();
        const QPoint to = part.topLeft() - area.topLeft();
        xcb_render_composite(m_connection, operation, source, mask, picture, int16_t(from.x()),
                             int16_t(from.y()), 0, 0, int16_t(to.x()), int16_t(to.y()),
                             uint16_t(part.width()), uint16_t(part.height()));
    }

    const QRect area;
    const xcb_pixmap_t pixmap;
    const xcb_render_picture_t picture;

private:
    xcb_connection_t *const m_connection;
};

ScreenComposer::ScreenComposer(XcbSession &session)
    : m_session(session)
{
    auto *connection = session.connection();
    for (auto *extension : {&xcb_composite_id, &xcb_render_id, &xcb_xfixes_id, &xcb_shm_id})
        xcb_prefetch_extension_data(connection, extension);
    if (!isPresent(connection, xcb_composite_id) || !isPresent(connection, xcb_render_id) ||
        !isPresent(connection, xcb_xfixes_id))
        return;
    m_hasSharedMemory = isPresent(connection, xcb_shm_id);
    // The server speaks no more of an extension than it was asked for.
    const auto composite = xcb_composite_query_version(connection, 0, 4);
    const auto render = xcb_render_query_version(connection, 0, 11);
    const auto fixes = xcb_xfixes_query_version(connection, 5, 0);
    const auto formats =
        session.reply<xcb_render_query_pict_formats_reply_t>(xcb_render_query_pict_formats(connection));
    for (const unsigned sequence : {composite.sequence, render.sequence, fixes.sequence})
        xcb_discard_reply(connection, sequence);
    if (!formats)
        return;

    for (auto it = xcb_render_query_pict_formats_screens_iterator(formats.get()); it.rem;
         xcb_render_pictscreen_next(&it)) {
        for (auto depth = xcb_render_pictscreen_depths_iterator(it.data); depth.rem;
             xcb_render_pictdepth_next(&depth)) {
            const xcb_render_pictvisual_t *visuals = xcb_render_pictdepth_visuals(depth.data);
            for (int i = 0; i < xcb_render_pictdepth_visuals_length(depth.data); ++i)
                m_formats[visuals[i].visual] = visuals[i].format;
        }
    }
    const auto *infos = xcb_render_query_pict_formats_formats(formats.get());
    for (int i = 0; i < xcb_render_query_pict_formats_formats_length(formats.get()); ++i) {
        const xcb_render_directformat_t &direct = infos[i].direct;
        if (infos[i].depth == pixelDepth && direct.alpha_mask == 0xff && direct.alpha_shift == 24 &&
            direct.red_shift == 16 && direct.green_shift == 8 && direct.blue_shift == 0)
            m_pixels = infos[i].id;
    }
    for (auto it = xcb_setup_roots_iterator(xcb_get_setup(connection)); it.rem; xcb_screen_next(&it)) {
        if (it.data->root == session.root()) {
            m_rootVisual = it.data->root_visual;
            m_rootDepth = it.data->root_depth;
        }
    }
}

xcb_render_pictformat_t ScreenComposer::formatOf(xcb_visualid_t visual) const
{
    const auto it = m_formats.find(visual);
    return it == m_formats.end() ? 0 : it->second;
}

QImage ScreenComposer::compose(const QRect &area, const std::function<QList<StackedWindow>()> &listWindows,
                               const std::function<bool(const StackedWindow &)> &isLeftOut)
{
    if (!isPossible() || area.isEmpty())
        return {};
    auto *connection = m_session.connection();
    const bool blends = isCompositing();
    QImage image;
    {
        const Canvas canvas(connection, m_session.root(), m_pixels, area);
        QList<StackedWindow> onRoot;
        const bool hasWallpaper = drawWallpaper(canvas);
        if (!hasWallpaper) {
            onRoot = listWindows();
            drawRoot(canvas);
        }
        const QList<StackedWindow> windows = listWindows();
        // The root window's pixels may be those of a window that came or went about this time.
        if (!hasWallpaper)
            onRoot += windows;
        for (const StackedWindow &window : std::as_const(onRoot)) {
            if (isLeftOut(window))
                canvas.clear(window.outline);
        }
        for (const StackedWindow &window : windows) {
            if (window.outline.intersects(area) && !isLeftOut(window))
                drawWindow(canvas, window, blends);
        }
        image = read(canvas);
    }
    // Windows may go while we draw: their errors come as events, which nobody else fetches.
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
    }
    return image;
}

/// Without a compositor windows are as opaque as their pixels' unused bits are meaningless.
bool ScreenComposer::isCompositing()
{
    const auto owner = m_session.reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(m_session.connection(), m_session.atom("_NET_WM_CM_S0")));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

/// What programs that set a wallpaper leave for others. False where there is none.
bool ScreenComposer::drawWallpaper(const Canvas &canvas)
{
    auto *connection = m_session.connection();
    const auto property =
        m_session.reply(m_session.requestProperty(m_session.root(), m_session.atom("_XROOTPMAP_ID"), 1));
    const QList<quint32> items = propertyItems(property.get());
    if (items.isEmpty())
        return false;
    const auto geometry =
        m_session.reply<xcb_get_geometry_reply_t>(xcb_get_geometry(connection, items.first()));
    if (!geometry || geometry->depth != m_rootDepth)
        return false;
    const auto source = xcb_generate_id(connection);
    const uint32_t repeat = XCB_RENDER_REPEAT_NORMAL;
    xcb_render_create_picture(connection, source, items.first(), formatOf(m_rootVisual), XCB_RENDER_CP_REPEAT,
                              &repeat);
    canvas.draw(source, QRect({0, 0}, canvas.area.bottomRight()), XCB_RENDER_PICT_OP_SRC);
    xcb_render_free_picture(connection, source);
    return true;
}

void ScreenComposer::drawRoot(const Canvas &canvas)
{
    auto *connection = m_session.connection();
    const auto source = xcb_generate_id(connection);
    xcb_render_create_picture(connection, source, m_session.root(), formatOf(m_rootVisual), 0, nullptr);
    canvas.draw(source, QRect({0, 0}, canvas.area.bottomRight()), XCB_RENDER_PICT_OP_SRC);
    xcb_render_free_picture(connection, source);
}

void ScreenComposer::drawWindow(const Canvas &canvas, const StackedWindow &window, bool blends)
{
    const xcb_render_pictformat_t format = formatOf(window.visual);
    if (!format)
        return;
    auto *connection = m_session.connection();
    const auto pixmap = xcb_generate_id(connection);
    const auto source = xcb_generate_id(connection);
    const auto shape = xcb_generate_id(connection);
    xcb_composite_name_window_pixmap(connection, window.id, pixmap);
    xcb_render_create_picture(connection, source, pixmap, format, 0, nullptr);
    // The shape counts from the window's corner inside its border. It bounds the window, too.
    const QPoint inside =
        window.outline.topLeft() + QPoint(window.borderWidth, window.borderWidth) - canvas.area.topLeft();
    xcb_xfixes_create_region_from_window(connection, shape, window.id, XCB_SHAPE_SK_BOUNDING);
    xcb_xfixes_set_picture_clip_region(connection, canvas.picture, shape, int16_t(inside.x()),
                                       int16_t(inside.y()));
    if (blends && window.opacity != ~0u) {
        const auto mask = xcb_generate_id(connection);
        xcb_render_create_solid_fill(connection, mask, {0, 0, 0, uint16_t(window.opacity >> 16)});
        canvas.draw(source, window.outline, XCB_RENDER_PICT_OP_OVER, mask);
        xcb_render_free_picture(connection, mask);
    } else {
        canvas.draw(source, window.outline, blends ? XCB_RENDER_PICT_OP_OVER : XCB_RENDER_PICT_OP_SRC);
    }
    xcb_xfixes_set_picture_clip_region(connection, canvas.picture, XCB_XFIXES_REGION_NONE, 0, 0);
    xcb_xfixes_destroy_region(connection, shape);
    xcb_render_free_picture(connection, source);
    xcb_free_pixmap(connection, pixmap);
}

QImage ScreenComposer::read(const Canvas &canvas)
{
    if (QImage image = readShared(canvas); !image.isNull())
        return image;
    const auto reply = m_session.reply<xcb_get_image_reply_t>(
        xcb_get_image(m_session.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, canvas.pixmap, 0, 0,
                      uint16_t(canvas.area.width()), uint16_t(canvas.area.height()), ~0u));
    const qsizetype size = qsizetype(canvas.area.width()) * canvas.area.height() * 4;
    if (!reply || xcb_get_image_data_length(reply.get()) < size)
        return {};
    return QImage(xcb_get_image_data(reply.get()), canvas.area.width(), canvas.area.height(),
                  QImage::Format_RGB32)
        .copy();
}

/// Null where the server does not share memory with us (another machine, a sandbox).
QImage ScreenComposer::readShared(const Canvas &canvas)
{
    if (!m_hasSharedMemory)
        return {};
    auto *connection = m_session.connection();
    SharedBytes bytes(size_t(canvas.area.width()) * size_t(canvas.area.height()) * 4);
    if (!bytes)
        return {};
    const auto segment = xcb_generate_id(connection);
    xcb_shm_attach(connection, segment, uint32_t(bytes.id()), 0);
    m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection));
    bytes.hide(); // both have it now
    const auto reply = m_session.reply<xcb_shm_get_image_reply_t>(
        xcb_shm_get_image(connection, canvas.pixmap, 0, 0, uint16_t(canvas.area.width()),
                          uint16_t(canvas.area.height()), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP, segment, 0));
    xcb_shm_detach(connection, segment);
    return reply ? bytes.takeImage(canvas.area.size()) : QImage();
}

} // namespace tovi
