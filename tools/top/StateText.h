// How values of the phone's state are written.
#pragma once

#include <QtCore/QString>
#include <QtCore/QTime>

namespace zyn::tool {

inline QString now()
{
    return QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
}

inline QString yesNo(bool is)
{
    return is ? QStringLiteral("yes") : QStringLiteral("no");
}

} // namespace zyn::tool
