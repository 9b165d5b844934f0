// Requests to start and end push-to-talk calls.
#include "utility/PHONE_Ptt.h"

#include "utility/PHONE_Log_p.h"
#include "utility/message/Payload_p.h"

#include <span>
#include <type_traits>

static_assert(std::extent_v<decltype(PTT_CALL_INFO_T::firstList)> == zyn::kMaxPttParties);
static_assert(std::extent_v<decltype(PTT_CALL_INFO_T::secondList)> == zyn::kMaxPttParties);

namespace {

constexpr int kRefused = 0;
constexpr int kSent = 1;

QStringList listOf(std::span<const QString> texts)
{
    return {texts.begin(), texts.end()};
}

} // namespace

int PHONE_MakePttCall(PTT_CALL_INFO_T const& call)
{
    if (call.count == 0 || call.count > zyn::kMaxPttParties)
        return kRefused;
    PHONE_Log(kPhoneLogLevel, "send msg to ptt:%s number:%s", zyn::kMakePttCall.name,
              call.firstList[0].toLatin1().constData());
    zyn::sendMessage(zyn::kMakePttCall,
                     {call.count, listOf(std::span(call.firstList).first(call.count)),
                      listOf(std::span(call.secondList).first(call.count)), call.firstValue, call.secondValue});
    return kSent;
}

int PHONE_DropPttCall()
{
    PHONE_Log(kPhoneLogLevel, "send msg to ptt:%s ", zyn::kDropPttCall.name);
    zyn::sendMessage(zyn::kDropPttCall);
    return kSent;
}
