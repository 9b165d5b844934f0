// Emergency numbers for a text field, as the library knows them.
#include "qml/module/EmergencyNumber.h"

#include "utility/PHONE_EmergencyCall.h"

#include <utility>

namespace zyn::qml {
namespace {

EmergencyNumber::Verdict verdictOn(const QString& text)
{
    if (text.isEmpty())
        return EmergencyNumber::Empty;
    // The library would take what is before a NUL for the whole.
    if (text.contains(QChar::Null))
        return EmergencyNumber::Refused;
    QByteArray number = text.toLatin1();
    if (PHONE_IsEmergencyCallNumber(number.data()))
        return EmergencyNumber::Emergency;
    return PHONE_IsEmergencyCallInput(text) ? EmergencyNumber::Possible : EmergencyNumber::Refused;
}

} // namespace

EmergencyNumber::EmergencyNumber(QObject* parent)
    : QObject(parent)
{}

void EmergencyNumber::setText(const QString& text)
{
    if (m_text == text)
        return;
    m_text = text;
    // Before anything is told: nobody is to see the new text with the verdict on the old one.
    const Verdict before = std::exchange(m_verdict, verdictOn(m_text));
    Q_EMIT textChanged();
    if (m_verdict != before)
        Q_EMIT verdictChanged();
}

QString EmergencyNumber::reason() const
{
    switch (m_verdict) {
    case Emergency:
        return tr("Emergency number");
    case Possible:
        return tr("May become an emergency number or a code that is allowed now");
    case Refused:
        return tr("No emergency number begins like this");
    case Empty:
        break;
    }
    return {};
}

void EmergencyNumber::refresh()
{
    const Verdict verdict = verdictOn(m_text);
    if (std::exchange(m_verdict, verdict) != verdict)
        Q_EMIT verdictChanged();
}

} // namespace zyn::qml
