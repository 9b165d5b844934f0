// Which messages are wanted.
#pragma once

#include "tools/recording/MessageText.h"
#include "tools/zynphone/Command.h"

#include <QtCore/QList>
#include <QtCore/QRegularExpression>

namespace zyn::tool {

/// Lets messages through that fit each of its options, and one of the values of each.
class MessageFilter
{
public:
    static QList<QCommandLineOption> options();

    explicit MessageFilter(const Invocation& invocation);

    bool lets(const ReceivedMessage& message) const;

private:
    QList<QRegularExpression> m_messages; ///< word, name or enumerator; * and ? stand for anything
    QList<QRegularExpression> m_senders;  ///< program, likewise
    QStringList m_texts;                  ///< in the values as they are shown, letter by letter
};

} // namespace zyn::tool
