// How values of the phone's state are written.
#pragma once

#include <QtCore/QString>
#include <QtCore/QTime>

#include <cstdint>

namespace zyn::tool {

inline QString now()
{
    return QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
}

inline QString yesNo(bool is)
{
    return is ? QStringLiteral("yes") : QStringLiteral("no");
}

/// h:mm:ss
inline QString secondsText(uint32_t seconds)
{
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds % 3600 / 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace zyn::tool
