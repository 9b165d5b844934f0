// The lanes of a chart, and what is drawn in each as one.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QList>

#include <vector>

namespace zyn::tool {

/// A message, or several that follow each other on their channel and are of one name, or of names that take turns.
struct ChartRun
{
    qsizetype lane;
    std::vector<size_t> messages; ///< their places in the recording, ascending
    size_t inTurn = 1;            ///< how many of them are a turn; they are whole turns

    bool isFold() const { return messages.size() > 1; }
    size_t turns() const { return messages.size() / inTurn; }
};

struct ChartRuns
{
    QList<QCString> lanes;      ///< the channels, in the order of their first messages
    std::vector<ChartRun> runs; ///< in the order of their first messages
};

/// Folds @p messages: from three of a kind, or three turns, on, when no other message came between; from twenty
/// messages on also across those of other channels. Fewer show the order in which things happened.
ChartRuns foldedRuns(const std::vector<ReceivedMessage>& messages);

} // namespace zyn::tool
