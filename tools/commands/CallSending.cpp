// Many calls for the recent-call service.
#include "tools/commands/CallSending.h"

#include "recentcall/utility/RC_Interface.h"
#include "tools/zynphone/Progress.h"
#include "tools/zynphone/ServiceError.h"

#include <QtCore/QCoreApplication>

using namespace Qt::StringLiterals;

namespace zyn::tool {

void sendCalls(const std::vector<PHONE_ENG_RecentCall>& calls)
{
    size_t sent = 0;
    const auto state = [&] { return u"%1 of %2 calls sent"_s.arg(sent).arg(calls.size()); };
    const Progress progress(state);
    for (auto call = calls.crbegin(); call != calls.crend(); ++call) {
        if (RC_Interface().addRecord(RC_RecordInterfaceImpl(new PHONE_ENG_RecentCall(*call))) != 0)
            throw failure(recentCallServiceError().message() + u"; "_s + state());
        ++sent;
        QCoreApplication::processEvents();
    }
}

} // namespace zyn::tool
