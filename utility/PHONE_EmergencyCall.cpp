// Tells which numbers may be dialed when dialing is restricted.
#include "utility/PHONE_EmergencyCall.h"

#include "platform/UTIL_PhoneStatus.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_Log_p.h"

#include <algorithm>
#include <iterator>

namespace emergency = zyn::emergency;

namespace {

bool mayBecomeImeiCode(const QString& input)
{
    return QLatin1String(emergency::kImeiCode).startsWith(input) && zyn::isKeypadUnlocked(UTIL_GetKeypadLockStatus());
}

bool mayBecomePinCode(const QString& input)
{
    const int simCard = UTIL_GetSimCardStatus();
    zyn::LogText log;
    log << "Sim card status = " << int32_t{simCard};
    if (!zyn::isSimCardReady(simCard))
        return false;
    const bool found = std::ranges::any_of(emergency::kPinCodes,
                                           [&](const char* code) { return QLatin1String(code).startsWith(input); });
    if (found)
        log << "Control code input = " << std::string_view(input.toLatin1().constData());
    return found;
}

} // namespace

bool PHONE_IsEmergencyCall(char* number)
{
    return number && emergency::anyNumber([&](const emergency::Record& listed) {
               return emergency::numberIn(listed) == number;
           });
}

bool PHONE_IsEmergencyCallNumber(char* number)
{
    return PHONE_IsEmergencyCall(number);
}

bool PHONE_IsEmergencyCallInput(QString const& input)
{
    return !input.isEmpty() && (mayBecomeImeiCode(input) || mayBecomePinCode(input) || emergency::beginsNumber(input));
}

bool PHONE_IsInputtingEmergencyCall(QString const& input)
{
    return PHONE_IsEmergencyCallInput(input);
}
