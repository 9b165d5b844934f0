// A recording as a message sequence chart.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

namespace zyn::tool {

/// The chart of @p messages in SVG, titled @p title; the same messages and title give the same bytes.
QByteArray chartSvg(const std::vector<ReceivedMessage>& messages, const QString& title);

} // namespace zyn::tool
