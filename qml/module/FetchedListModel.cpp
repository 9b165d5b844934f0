// What all fetched lists have in common: the state of their requests.
#include "qml/module/FetchedListModel.h"

namespace zyn::qml {

FetchedListModel::FetchedListModel(QObject* parent)
    : QAbstractListModel(parent)
{}

void FetchedListModel::reload()
{
    if (std::exchange(m_isQueued, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isQueued = false;
            fetch();
        },
        Qt::QueuedConnection);
}

void FetchedListModel::begin()
{
    if (m_pending++ == 0)
        Q_EMIT busyChanged();
}

void FetchedListModel::finish(const QString& error)
{
    finishAsBefore();
    if (std::exchange(m_error, error) != error)
        Q_EMIT errorChanged();
    if (!error.isEmpty())
        Q_EMIT failed(error);
}

void FetchedListModel::finishAsBefore()
{
    if (--m_pending == 0)
        Q_EMIT busyChanged();
}

void FetchedListModel::setLoaded()
{
    if (!std::exchange(m_isLoaded, true))
        Q_EMIT loadedChanged();
}

void FetchedListModel::setUnloaded()
{
    if (std::exchange(m_isLoaded, false))
        Q_EMIT loadedChanged();
}

} // namespace zyn::qml
