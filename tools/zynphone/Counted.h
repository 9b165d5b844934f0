// Numbers of things in words.
#pragma once

#include <QtCore/QString>

namespace zyn::tool {

/// "1 message", "2 messages" for "message".
inline QString counted(qsizetype number, const char* thing)
{
    return QStringLiteral("%1 %2").arg(QString::number(number), QLatin1String(thing))
           + (number == 1 ? QLatin1String() : QLatin1String("s"));
}

} // namespace zyn::tool
