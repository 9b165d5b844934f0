// Requests to start and end push-to-talk calls.
#include "utility/PHONE_Ptt.h"

#include "platform/QCopChannel.h"
#include "utility/PHONE_Log_p.h"
#include "utility/message/Message_p.h"
#include "utility/message/Payload_p.h"

#include <span>
#include <type_traits>

static_assert(std::extent_v<decltype(PTT_CALL_INFO_T::firstList)> == zyn::kMaxPttParties);
static_assert(std::extent_v<decltype(PTT_CALL_INFO_T::secondList)> == zyn::kMaxPttParties);

namespace {

constexpr int kRefused = 0;
constexpr int kSent = 1;

void writeTexts(zyn::PayloadWriter& writer, std::span<const QString> texts)
{
    for (const QString& text : texts)
        writer.writeText(text);
}

} // namespace

int PHONE_MakePttCall(PTT_CALL_INFO_T const& call)
{
    if (call.count == 0 || call.count > zyn::kMaxPttParties)
        return kRefused;
    zyn::PayloadWriter writer;
    writer.writeInt(call.count);
    writeTexts(writer, std::span(call.firstList).first(call.count));
    writeTexts(writer, std::span(call.secondList).first(call.count));
    writer.writeInt(call.firstValue).writeInt(call.secondValue);
    PHONE_Log(kPhoneLogLevel, "send msg to ptt:%s number:%s", zyn::kMakePttCall,
              call.firstList[0].toLatin1().constData());
    QCopChannel::send(zyn::kPttChannel, zyn::kMakePttCall, writer.payload());
    return kSent;
}

int PHONE_DropPttCall()
{
    PHONE_Log(kPhoneLogLevel, "send msg to ptt:%s ", zyn::kDropPttCall);
    QCopChannel::send(zyn::kPttChannel, zyn::kDropPttCall);
    return kSent;
}
