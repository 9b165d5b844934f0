// The tool's own output, kept apart from what the library traces.
#include "tools/zynphone/Console.h"

#include <cstdio>

namespace zyn::tool {

void Console::write(const QJsonDocument& document)
{
    // JSON allows all characters from 127 on as they are.
    write(jsonEscaped(QString::fromUtf8(document.toJson(QJsonDocument::Compact))) + QLatin1Char('\n'));
}

void Console::writeError(const QString& line)
{
    if (takeTraced())
        std::fputc('\n', stderr);
    std::fputs((printable(line) + QLatin1Char('\n')).toUtf8().constData(), stderr);
}

} // namespace zyn::tool
