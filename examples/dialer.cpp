// The dialer: takes a number key by key, only the keys that a locked keypad allows, and asks for the call.
//
// On a desk: zyn-recentcalld & zyn-phoned &
//            zynphone emergency write 112
//            zynphone handset set keypad-lock 1
//            dialer 112
#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <platform/UTIL_PhoneStatus.h>
#include <utility/PHONE_EmergencyCall.h>
#include <utility/PHONE_MsgClient.h>
#include <utility/PHONE_VoiceCall.h>

#include <algorithm>
#include <chrono>
#include <iterator>

#include "Screen.h"

namespace {

constexpr std::chrono::seconds kPatience(2);
constexpr PHONE_MAKE_CALL_CLIR_T kNoRestriction{};
constexpr signed char kLine = 2;
constexpr const char* kControlCodes[] = {"*#06#", "**04*", "**042*", "**05*", "**052*"};

bool isLocked()
{
    return UTIL_GetKeypadLockStatus() != 0;
}

/// Whether @p typed, an accepted text, begins one of the standard control codes. Any other accepted text begins an
/// emergency number.
bool beginsControlCode(const QString& typed)
{
    return std::any_of(std::begin(kControlCodes), std::end(kControlCodes),
                       [&](const char* code) { return QLatin1String(code).startsWith(typed); });
}

/// The text on the dialer's display after @p key.
QString type(const QString& number, QChar key, Screen& screen)
{
    QString typed = number + key;
    if (PHONE_IsEmergencyCallInput(typed)) {
        const bool isNumber = PHONE_IsEmergencyCall(typed.toLatin1().data()) || !beginsControlCode(typed);
        screen.show(typed
                    + (isNumber ? QStringLiteral(" may become an emergency call")
                                : QStringLiteral(" may become a control code")));
        return typed;
    }
    screen.show(isLocked() ? typed + QStringLiteral(" is refused: the keypad is locked") : typed);
    return isLocked() ? number : typed;
}

} // namespace

int main(int argc, char** argv)
{
    Screen screen;
    const QCoreApplication application(argc, argv);
    QString number;
    for (const QChar key : QCoreApplication::arguments().value(1))
        number = type(number, key, screen);

    QByteArray text = number.toLatin1();
    const bool isEmergency = PHONE_IsEmergencyCall(text.data());
    if (text.isEmpty() || (isLocked() && !isEmergency)) {
        screen.show(QStringLiteral("there is nothing to call"));
        return EXIT_FAILURE;
    }

    // The request has no reply. The phone announces each call, but that may be someone else's.
    const PHONE_MsgClient phone;
    QObject::connect(&phone, &PHONE_MsgClient::signalVoiceCallStatChanged, &application, &QCoreApplication::quit);
    QTimer::singleShot(kPatience, &application, [] { QCoreApplication::exit(EXIT_FAILURE); });
    PHONE_MakeVoiceCall(text.data(), QString(), false, kNoRestriction, kLine);
    const QString what = isEmergency ? QStringLiteral("the emergency call to ") : QStringLiteral("the call to ");
    screen.show(what + number + QStringLiteral(" is asked for"));
    const int code = QCoreApplication::exec();
    screen.show(code == 0 ? QStringLiteral("the phone tells of a call") : QStringLiteral("no phone tells of a call"));
    return code;
}
