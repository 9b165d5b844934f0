// Draws a recording as a message sequence chart.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

namespace zyn::tool {

/// The chart of @p messages in SVG, titled @p title, with at most @p lanes lanes. The output is reproducible.
QByteArray chartSvg(const std::vector<ReceivedMessage>& messages, const QString& title, qsizetype lanes);

} // namespace zyn::tool
