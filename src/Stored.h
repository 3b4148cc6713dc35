// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1String>
#include <QUuid>

#include "HotKey.h"
#include "Platform/Observable.h"

namespace tovi {

namespace detail {
/// The value under the key, or the fallback when there is none of this type.
QString loadStored(const QString &key, const QString &fallback);
bool loadStored(const QString &key, bool fallback);
double loadStored(const QString &key, double fallback);
HotKey loadStored(const QString &key, const HotKey &fallback);
QUuid loadStored(const QString &key, const QUuid &fallback);

void store(const QString &key, const QString &value);
void store(const QString &key, bool value);
void store(const QString &key, double value);
void store(const QString &key, const HotKey &value);
void store(const QString &key, const QUuid &value);
} // namespace detail

/// A published field that lives in the user defaults: read when made, written at each assignment, before
/// the after-change action runs.
template <class T>
class Stored : public Published<T>
{
public:
    Stored(Observable *owner, QLatin1String key, T fallback, std::function<void()> didSet = {})
        : Published<T>(owner, detail::loadStored(QString(key), fallback),
                       [key, didSet = std::move(didSet)](const T &value) {
                           detail::store(QString(key), value);
                           if (didSet)
                               didSet();
                       })
    {}
    using Published<T>::operator=;
};

} // namespace tovi
