// A message as one line for people, and as JSON for programs.
#pragma once

#include "platform/QCString.h"
#include "tools/recording/Participant.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtCore/QJsonObject>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdint>
#include <optional>

namespace zyn::tool {

struct MessageFields;

/// A received message.
struct ReceivedMessage
{
    QDateTime time; ///< when it was sent; of arrival when that is not known
    QCString channel;
    QCString name;
    QByteArray payload;
    Participant sender = {};
    std::optional<QList<Participant>> hearers = {}; ///< who listened; nothing when that is not known
    bool isLate = false;                            ///< it was sent before the one that came before it
};

/// How a message is shown to people.
struct MessageLook
{
    bool isRaw = false; ///< with the message's own name and the whole payload
    bool isColourful = false;
    int width = 0; ///< of the terminal, to which a line is cut; 0 for none
};

/// Tells a process by its program, and by its number too where there is more than one of that program.
class ParticipantNames
{
public:
    QString nameOf(const Participant& participant);

private:
    QHash<QString, QSet<int64_t>> m_processes; ///< those that were seen, by their program
};

/// A channel's or message's name, quoted unless it is one printable word.
QString nameText(const QCString& name);

/// "name=value" for each field, and up to 64 of the bytes after the last one. All characters are printable.
QStringList fieldTexts(const MessageFields& fields);

/// A channel by the last part of its name.
QString channelWord(const QCString& channel);

/// What people call a message: its word where it has a type, such as signal-quality or show-ui, else its name.
QString messageWord(const QCString& channel, const QCString& name);

/// The values of a message in words where they are known, else as fieldTexts(). With @p tellsUnknown the first text
/// says so of a message that the library does not know.
QStringList valueTexts(const ReceivedMessage& message, bool tellsUnknown = true);

/// Time, sender, channel, message and values, without a line end.
QString messageText(const ReceivedMessage& message, const MessageLook& look, ParticipantNames& names);

/// The same as JSON, with the field names in the monitor's help, the time in UTC.
QJsonObject messageJson(const ReceivedMessage& message, bool raw);

} // namespace zyn::tool
