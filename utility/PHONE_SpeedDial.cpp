// The nine numbers of speed dial.
#include "utility/PHONE_SpeedDial.h"

#include "platform/SETUP_SET_Manager.h"
#include "utility/PHONE_Settings_p.h"

#include <algorithm>

namespace {

constexpr int kFirstIndex = 1;
constexpr int kLastIndex = 9;

QString group()
{
    return zyn::settingPart(zyn::setting::kSpeedDialGroup);
}

QString readNumber(SETUP_SET_Manager& settings, int index)
{
    QString number;
    settings.getSettingInfo(group(), QString::number(index), number, QLatin1String(""), false);
    return number;
}

bool writeNumber(SETUP_SET_Manager& settings, int index, const QString& number)
{
    return settings.setSettingInfo(group(), QString::number(index), number, false);
}

} // namespace

PHONE_SpeedDial::PHONE_SpeedDial() = default;

PHONE_SpeedDial::~PHONE_SpeedDial() = default;

QString PHONE_SpeedDial::getTurboDialing(int index)
{
    SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
    return readNumber(settings, index);
}

bool PHONE_SpeedDial::setTurboDialing(int index, QString const& number)
{
    SETUP_SET_Manager settings(zyn::kPhoneSettings, true);
    return writeNumber(settings, index, number);
}

int PHONE_SpeedDial::getFirstAvailableTurboDialingIndex()
{
    SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
    for (int index = kFirstIndex; index <= kLastIndex; ++index) {
        if (readNumber(settings, index).isEmpty())
            return index;
    }
    return -1;
}

bool PHONE_SpeedDial::setTurboDialing(QStringList const& numbers)
{
    SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
    int index = kFirstIndex;
    for (const QString& number : numbers.first(std::min<qsizetype>(numbers.size(), kLastIndex)))
        writeNumber(settings, index++, number);
    return settings.flush();
}

void PHONE_SpeedDial::getTurboDialingList(QStringList& numbers)
{
    numbers.clear();
    SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
    for (int index = kFirstIndex; index <= kLastIndex; ++index)
        numbers += readNumber(settings, index);
}

QString Phone_GetTurboDialingByIndex(int index)
{
    return PHONE_SpeedDial().getTurboDialing(index);
}
