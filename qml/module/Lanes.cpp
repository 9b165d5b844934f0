// The lanes: a thread each, which ends when it has been idle for a while.
#include "qml/module/Lanes.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThreadPool>

#include <array>

namespace zyn::qml {
namespace {

/// The lanes of the process. It is a child of the application object, and so ends when no event loop runs any more.
class Lanes : public QObject
{
public:
    static Lanes& instance()
    {
        static QPointer<Lanes> lanes;
        if (!lanes)
            lanes = new Lanes(QCoreApplication::instance());
        return *lanes;
    }

    ~Lanes() override
    {
        for (QThreadPool& pool : m_pools) {
            pool.clear();
            pool.waitForDone();
        }
    }

    void queue(Lane lane, const QObject* receiver, LaneWork work)
    {
        m_pools.at(static_cast<size_t>(lane)).start([this, receiver = QPointer(receiver), work = std::move(work)] {
            // The receiver is only looked at where it may be destroyed.
            QMetaObject::invokeMethod(
                this,
                [receiver, deliver = work()] {
                    if (receiver)
                        deliver();
                },
                Qt::QueuedConnection);
        });
    }

private:
    explicit Lanes(QObject* application)
        : QObject(application)
    {
        for (QThreadPool& pool : m_pools)
            pool.setMaxThreadCount(1);
    }

    std::array<QThreadPool, 2> m_pools;
};

} // namespace

void queueOnLane(Lane lane, const QObject* receiver, LaneWork work)
{
    Lanes::instance().queue(lane, receiver, std::move(work));
}

} // namespace zyn::qml
