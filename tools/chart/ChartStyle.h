// The colours and fonts of a chart.
#pragma once

#include <QtCore/QString>

namespace zyn::tool {

/// The rules of a chart with @p lanes lanes, for light and for dark surroundings.
QString chartStyle(qsizetype lanes);

/// The class of what has the colour of a lane.
QString laneClass(qsizetype lane);

} // namespace zyn::tool
