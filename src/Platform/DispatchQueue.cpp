// SPDX-License-Identifier: MIT
#include "Platform/DispatchQueue.h"

#include <QCoreApplication>

namespace tovi {

DispatchQueue::DispatchQueue(const QString &label)
{
    m_thread.setObjectName(label);
    m_context.moveToThread(&m_thread);
}

DispatchQueue::~DispatchQueue()
{
    m_thread.quit();
    m_thread.wait();
}

void DispatchQueue::async(std::function<void()> work)
{
    std::call_once(m_started, [this] { m_thread.start(); });
    QMetaObject::invokeMethod(&m_context, std::move(work), Qt::QueuedConnection);
}

void asyncOnMain(std::function<void()> work)
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(work), Qt::QueuedConnection);
}

} // namespace tovi
