// The messages that a file holds as they were recorded.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace zyn::tool {

/// A recording, read and checked whole.
class Recording
{
public:
    /// Reads the file @p path. A failure that names the file, and the line that is damaged, if any is.
    explicit Recording(const QString& path);

    /// Leaves out what is not on one of @p channels, unless that is empty. A failure when one of them has no message.
    void keepOnly(const QStringList& channels);

    /// The channels that have messages.
    QSet<QCString> channels() const;

    /// In the order of their times, which are UTC.
    const std::vector<ReceivedMessage>& messages() const { return m_messages; }

private:
    void addLine(const QByteArray& line);

    QString m_path;
    std::vector<ReceivedMessage> m_messages;
};

} // namespace zyn::tool
