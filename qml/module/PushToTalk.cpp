// Requests for push-to-talk calls, by the library.
#include "qml/module/PushToTalk.h"

#include "utility/PHONE_Ptt.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace zyn::qml {

PushToTalk::PushToTalk(QObject* parent)
    : QObject(parent)
{}

bool PushToTalk::call(const QStringList& numbers)
{
    PTT_CALL_INFO_T request;
    constexpr qsizetype kMost = std::extent_v<decltype(PTT_CALL_INFO_T::firstList)>;
    if (numbers.isEmpty() || numbers.size() > kMost || numbers.contains(QString())) {
        Q_EMIT failed(tr("A push-to-talk call has 1 to %1 parties, each with a number").arg(kMost));
        return false;
    }
    std::ranges::copy(numbers, std::begin(request.firstList));
    request.count = static_cast<uint8_t>(numbers.size());
    return PHONE_MakePttCall(request) != 0;
}

void PushToTalk::drop()
{
    PHONE_DropPttCall();
}

} // namespace zyn::qml
