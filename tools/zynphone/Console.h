// The tool's own output, kept apart from what the library traces.
#pragma once

#include "handset/common/Output.h"
#include "handset/common/Text.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QString>

namespace zyn::tool {

using handset::jsonEscaped;
using handset::printable;

/// Standard output and standard error of the tool.
class Console : public handset::Output
{
public:
    using Output::write;
    /// Writes @p document on one line; only printable characters come out.
    void write(const QJsonDocument& document);
    /// Writes one line to standard error, apart from trace text that may stand there without a line end.
    void writeError(const QString& line);
};

} // namespace zyn::tool
