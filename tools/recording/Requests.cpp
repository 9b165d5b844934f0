// The messages that ask for something, apart from those that only tell.
#include "tools/recording/Requests.h"

#include "recentcall/utility/RecentCall_Messages_p.h"
#include "utility/message/PhoneMessages_p.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

struct RequestRow
{
    const char* channel;
    const char* message;
    const char* action;
};

constexpr RequestRow kRequests[] = {
    {kVoiceCallChannel, kMakeCall.name, "place a call"},
    {kVoiceCallChannel, kDropCall.name, "end the call"},
    {kPttChannel, kMakePttCall.name, "place a push-to-talk call"},
    {kPttChannel, kDropPttCall.name, "end the push-to-talk call"},
    {kActivityLogChannel, kModifyFavourite.name, "change the favourites"},
};

} // namespace

QString requestedAction(const QCString& channel, const QCString& name)
{
    const auto row = std::ranges::find_if(
        kRequests, [&](const RequestRow& known) { return channel == known.channel && name == known.message; });
    if (row != std::end(kRequests))
        return QLatin1String(row->action);
    const PhoneMessage* const message = channel == kPhoneChannel ? phoneMessage(name) : nullptr;
    return message && message->word && message->isRequest() ? u"do '%1'"_s.arg(QLatin1String(message->word))
                                                            : QString();
}

} // namespace zyn::tool
