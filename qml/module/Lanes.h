// Work that may wait, done beside the thread of the user interface.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <cstdint>
#include <functional>
#include <utility>

namespace zyn::qml {

/// Where work is done: on one thread a lane, one piece behind another.
enum class Lane : uint8_t {
    CallLog, ///< requests to the recent-call service, each of which may wait for 5 seconds
    Files,   ///< the stores and the settings, whose objects are used from one thread
};

/// Something that is done on a lane's thread, and gives what is to be done in the thread of the user interface.
using LaneWork = std::function<std::function<void()>()>;

/**
 * Queues @p work on @p lane. What it returns is called in the thread of the application object, unless @p receiver has
 * been destroyed before. To be called from that thread, which is that of the receiver, too.
 *
 * When the application object is destroyed, work that has not begun is forgotten, and work that has begun is waited
 * for.
 */
void queueOnLane(Lane lane, const QObject* receiver, LaneWork work);

/// Does @p work on @p lane, which may touch nothing that others use, and hands its result to @p then: later, in the
/// order of the calls, and only if @p receiver still lives.
template<typename Work, typename Then>
void runBeside(Lane lane, const QObject* receiver, Work work, Then then)
{
    queueOnLane(lane, receiver, [work = std::move(work), then = std::move(then)]() mutable -> std::function<void()> {
        return [then = std::move(then), result = work()]() mutable { then(std::move(result)); };
    });
}

} // namespace zyn::qml
