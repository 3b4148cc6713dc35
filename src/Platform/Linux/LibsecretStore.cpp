// SPDX-License-Identifier: MIT
#include "Platform/Linux/LibsecretStore.h"

#include <memory>
#include <optional>

// GLib has members of these names.
#undef signals
#undef slots
#include <libsecret/secret.h>

namespace tovi {

namespace {

struct Release
{
    void operator()(gpointer object) const { g_object_unref(object); }
    void operator()(GHashTable *table) const { g_hash_table_unref(table); }
    void operator()(SecretValue *value) const { secret_value_unref(value); }
    void operator()(GList *objects) const { g_list_free_full(objects, g_object_unref); }
};
template <class T>
using Held = std::unique_ptr<T, Release>;

const SecretSchema &schema()
{
    static const SecretSchema schema = [] {
        SecretSchema value{};
        value.name = "com.brevoll.tovi";
        value.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        value.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return value;
    }();
    return schema;
}

Held<GHashTable> attributes(const QString &service, const QString &account)
{
    return Held<GHashTable>(secret_attributes_build(&schema(), "service", service.toUtf8().constData(),
                                                    "account", account.toUtf8().constData(), nullptr));
}

/// Runs GLib's asynchronous calls to their ends on this thread, all of them within one limit.
class BoundedCalls
{
public:
    explicit BoundedCalls(std::chrono::milliseconds limit)
        : m_context(g_main_context_new())
        , m_timer(g_timeout_source_new(static_cast<guint>(limit.count())))
        , m_cancellable(g_cancellable_new())
    {
        g_main_context_push_thread_default(m_context);
        g_source_set_callback(m_timer, &BoundedCalls::cancel, m_cancellable.get(), nullptr);
        g_source_attach(m_timer, m_context);
    }
    ~BoundedCalls()
    {
        g_source_destroy(m_timer);
        // The proxies that are gone by now left their last clean-up to this context.
        while (g_main_context_iteration(m_context, FALSE)) {
        }
        g_source_unref(m_timer);
        g_main_context_pop_thread_default(m_context);
        g_main_context_unref(m_context);
    }
    BoundedCalls(const BoundedCalls &) = delete;

    bool isOver() const { return g_cancellable_is_cancelled(m_cancellable.get()); }

    /// `start` is handed the cancellable, the callback and its data.
    template <class Start>
    Held<GAsyncResult> operator()(Start start)
    {
        Held<GAsyncResult> result;
        start(m_cancellable.get(), &BoundedCalls::keep, &result);
        while (!result)
            g_main_context_iteration(m_context, TRUE);
        return result;
    }

private:
    static gboolean cancel(gpointer cancellable)
    {
        g_cancellable_cancel(static_cast<GCancellable *>(cancellable));
        return G_SOURCE_REMOVE;
    }
    static void keep(GObject *, GAsyncResult *result, gpointer kept)
    {
        g_object_ref(result);
        static_cast<Held<GAsyncResult> *>(kept)->reset(result);
    }

    GMainContext *m_context;
    GSource *m_timer;
    Held<GCancellable> m_cancellable;
};

/// Takes over the error that a GLib call may set.
class ErrorSlot
{
public:
    ~ErrorSlot() { g_clear_error(&m_error); }
    GError **address() { return &m_error; }
    bool isSet() const { return m_error; }
    const GError *operator->() const { return m_error; }

private:
    GError *m_error = nullptr;
};

bool meansAbsent(const ErrorSlot &error)
{
    if (error->domain != G_DBUS_ERROR)
        return false;
    switch (error->code) {
    case G_DBUS_ERROR_SERVICE_UNKNOWN:
    case G_DBUS_ERROR_NAME_HAS_NO_OWNER:
    case G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND:
    case G_DBUS_ERROR_SPAWN_EXEC_FAILED:
        return true;
    default:
        return false;
    }
}

} // namespace

/// One connection to the service, for one operation: a stale proxy of a restarted service is never used.
class LibsecretStore::Session
{
public:
    explicit Session(LibsecretStore &store)
        : m_calls(store.m_limit)
        , m_access(store.m_access)
    {
        m_access = open();
    }

    SecretService *service() const { return m_service.get(); }
    /// Runs a call whose `finish` answers through an error; false when it failed.
    template <class Start, class Finish>
    bool run(Start start, Finish finish)
    {
        ErrorSlot error;
        finish(m_calls(start).get(), error.address());
        if (error.isSet())
            m_access = m_calls.isOver() ? Access::Hung : Access::Failing;
        return !error.isSet();
    }

private:
    Access open()
    {
        {
            ErrorSlot error;
            const auto result = m_calls([](auto... to) { g_bus_get(G_BUS_TYPE_SESSION, to...); });
            m_bus.reset(g_bus_get_finish(result.get(), error.address()));
            if (!m_bus)
                return m_calls.isOver() ? Access::Hung : Access::Absent;
            // The end of the bus must not be the end of the process.
            g_dbus_connection_set_exit_on_close(m_bus.get(), FALSE);
        }
        {
            ErrorSlot error;
            const auto result = m_calls([](auto... to) {
                secret_service_open(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, to...);
            });
            m_service.reset(secret_service_open_finish(result.get(), error.address()));
            if (!m_service) {
                return m_calls.isOver()     ? Access::Hung
                       : meansAbsent(error) ? Access::Absent
                                            : Access::Failing;
            }
        }
        ErrorSlot error;
        const auto result = m_calls([this](auto... to) {
            secret_collection_for_alias(service(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, to...);
        });
        const Held<SecretCollection> collection(
            secret_collection_for_alias_finish(result.get(), error.address()));
        if (error.isSet())
            return m_calls.isOver() ? Access::Hung : Access::Failing;
        return collection && !secret_collection_get_locked(collection.get()) ? Access::Open : Access::Locked;
    }

    BoundedCalls m_calls;
    Access &m_access;
    Held<GDBusConnection> m_bus;
    Held<SecretService> m_service;
};

LibsecretStore::LibsecretStore(std::chrono::milliseconds limit)
    : m_limit(limit)
{}

SecretStore::Item LibsecretStore::find(const QString &service, const QString &account)
{
    const Item unavailable{Status::Unavailable, {}};
    Session session(*this);
    if (m_access != Access::Open)
        return unavailable;
    const auto wanted = attributes(service, account);
    Held<GList> items;
    const bool searched = session.run(
        [&](auto... to) {
            secret_service_search(
                session.service(), &schema(), wanted.get(),
                static_cast<SecretSearchFlags>(SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS), to...);
        },
        [&](GAsyncResult *result, GError **error) {
            items.reset(secret_service_search_finish(session.service(), result, error));
        });
    if (!searched)
        return unavailable;
    for (const GList *item = items.get(); item; item = item->next) {
        const Held<SecretValue> value(secret_item_get_secret(static_cast<SecretItem *>(item->data)));
        if (!value)
            continue;
        gsize size = 0;
        const char *data = secret_value_get(value.get(), &size);
        return {Status::Found, QByteArray(data, static_cast<qsizetype>(size))};
    }
    // Items without a readable secret lie in another collection, which is locked.
    return items ? unavailable : Item{};
}

bool LibsecretStore::add(const QString &service, const QString &account, const QByteArray &data)
{
    Session session(*this);
    if (m_access != Access::Open)
        return false;
    const auto wanted = attributes(service, account);
    const Held<SecretValue> value(secret_value_new(data.constData(), data.size(), "text/plain"));
    return session.run(
        [&](auto... to) {
            secret_service_store(session.service(), &schema(), wanted.get(), SECRET_COLLECTION_DEFAULT,
                                 "Tovi: API key", value.get(), to...);
        },
        [&](GAsyncResult *result, GError **error) {
            secret_service_store_finish(session.service(), result, error);
        });
}

bool LibsecretStore::remove(const QString &service, const QString &account)
{
    Session session(*this);
    if (m_access != Access::Open)
        return false;
    const auto wanted = attributes(service, account);
    return session.run(
        [&](auto... to) { secret_service_clear(session.service(), &schema(), wanted.get(), to...); },
        [&](GAsyncResult *result, GError **error) {
            secret_service_clear_finish(session.service(), result, error);
        });
}

} // namespace tovi
