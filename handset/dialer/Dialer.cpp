// The dialer: builds a number from key presses and asks for the call.
#include "handset/dialer/Dialer.h"

#include "handset/common/Log.h"
#include "handset/common/Output.h"
#include "platform/UTIL_PhoneStatus.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "utility/PHONE_EmergencyCall.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_VoiceCall.h"
#include "utility/message/Message_p.h"

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

constexpr QLatin1String kDigits("0123456789*#+");
constexpr QLatin1String kCallKeys("\nc");
constexpr QLatin1String kClearKeys("d\b\x7F");
constexpr QLatin1String kEndKeys("e");
constexpr QLatin1String kBlanks(" \r\t");

/// The longest number that fits into a call record.
constexpr qsizetype kLongestNumber = sizeof PHONE_ENG_RecentCall::phoneNumber - 1;

/// @{ The widths of a line's columns.
constexpr int kKeyWidth = 6;
constexpr int kVerdictWidth = 32;
/// @}

/// Why only emergency calls are allowed now; empty if all calls are.
QString restriction()
{
    if (!isKeypadUnlocked(UTIL_GetKeypadLockStatus()))
        return u"refused: the keypad is locked"_s;
    if (!isSimCardReady(UTIL_GetSimCardStatus()))
        return u"refused: no SIM card is ready"_s;
    return {};
}

/// What the typed text may become with more keys.
enum class Meaning { Ordinary, ControlCode, EmergencyNumber };

Meaning meaningOf(const QString& text)
{
    if (!PHONE_IsEmergencyCallInput(text))
        return Meaning::Ordinary;
    return emergency::beginsNumber(text) ? Meaning::EmergencyNumber : Meaning::ControlCode;
}

QString verdictOn(Meaning meaning)
{
    switch (meaning) {
    case Meaning::EmergencyNumber:
        return u"may be an emergency call"_s;
    case Meaning::ControlCode:
        return u"may be a control code"_s;
    case Meaning::Ordinary:
        break;
    }
    return u"no emergency call"_s;
}

} // namespace

void Dialer::press(const QByteArray& key)
{
    const auto isOneOf = [&](QLatin1String keys) { return key.size() == 1 && keys.contains(QLatin1Char(key.front())); };
    if (isOneOf(kDigits))
        add(key.front());
    else if (isOneOf(kCallKeys))
        call();
    else if (isOneOf(kClearKeys))
        clear();
    else if (isOneOf(kEndKeys))
        hangUp();
    else if (!key.isEmpty() && !isOneOf(kBlanks))
        log(u"'%1' is not a key"_s.arg(QString::fromLatin1(key)));
}

void Dialer::add(char digit)
{
    const QString key = QChar::fromLatin1(digit);
    const QString text = m_text + key;
    const Meaning meaning = meaningOf(text);
    QString refusal = meaning != Meaning::Ordinary ? QString() : restriction();
    if (text.size() > kLongestNumber)
        refusal = u"refused: the number is full"_s;
    if (refusal.isEmpty())
        m_text = text;
    show(key, refusal.isEmpty() ? verdictOn(meaning) : refusal);
}

void Dialer::clear()
{
    m_text.chop(1);
    show(u"clear"_s, verdictOn(meaningOf(m_text)));
}

void Dialer::call()
{
    QByteArray number = m_text.toLatin1();
    const bool isEmergency = PHONE_IsEmergencyCall(number.data());
    const QString refusal = isEmergency ? QString() : restriction();
    if (number.isEmpty()) {
        show(u"call"_s, u"refused: there is no number"_s);
    } else if (!refusal.isEmpty()) {
        show(u"call"_s, refusal);
    } else {
        PHONE_MakeVoiceCall(number.data(), QString(), false, PHONE_MAKE_CALL_CLIR_T{kDefaultClir}, kDefaultLine);
        show(u"call"_s, isEmergency ? u"an emergency call is asked for"_s : u"a call is asked for"_s);
        m_text.clear();
    }
}

void Dialer::hangUp()
{
    PHONE_EndVoiceCall();
    show(u"end"_s, u"the end of the call is asked for"_s);
}

void Dialer::show(const QString& key, const QString& verdict) const
{
    m_output.write(u"%1%2%3"_s.arg(key.leftJustified(kKeyWidth), verdict.leftJustified(kVerdictWidth), m_text).trimmed()
                   + u'\n');
}

QString Dialer::help()
{
    return u"Keys: 0 to 9, *, # and +; Enter or c calls, Backspace or d takes the last key back, e ends the call."_s;
}

} // namespace zyn::handset
