// The lanes of a chart, and what is drawn in each as one.
#pragma once

#include "tools/zynphone/MessageText.h"

#include <QtCore/QList>

#include <vector>

namespace zyn::tool {

/// A message, or several of one name that follow each other on their channel.
struct ChartRun
{
    qsizetype lane;
    std::vector<size_t> messages; ///< their places in the recording, ascending

    bool isFold() const { return messages.size() > 1; }
};

struct ChartRuns
{
    QList<QCString> lanes;      ///< the channels, in the order of their first messages
    std::vector<ChartRun> runs; ///< in the order of their first messages
};

/// Folds @p messages: from three of a kind on, when no other message came between; from twenty on also across
/// those of other channels. Fewer show the order in which things happened.
ChartRuns foldedRuns(const std::vector<ReceivedMessage>& messages);

} // namespace zyn::tool
