// The lines of a recording.
//
//     # zynphone recording, version 1
//     2026-11-25T10:00:00.250Z /ZYN/phone           PHONE_MSG_10     00000007  # PHONE_MSG_SIGNAL_QUALITY_S quality=7
//
// Words with blanks between them: the time in UTC, the channel, the message's name and its payload in
// hexadecimal digits, or "-" for an empty one. In the names every byte that is no graphic ASCII, and "%" and
// "#", is "%" and two hexadecimal digits. What follows a "#" is for people alone.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QByteArray>

namespace zyn::tool {

/// The first line of a recording, without its end.
QByteArray recordingHeader();

/// A failure when @p line is no header, or that of a version that cannot be read.
void checkRecordingHeader(const QByteArray& line);

/// Whether @p line, which is not the first, holds no message. A failure when it is a header of another version.
bool isRecordingComment(const QByteArray& line);

/// The longest line that a reader takes, its end included: any message that a channel takes fits.
inline constexpr qsizetype kLongestRecordingLine = qsizetype{64} * 1024 * 1024;

/// @p message as a line, with its end; its time is kept to the millisecond.
QByteArray recordingLine(const ReceivedMessage& message);

/// The message of @p line, which has no end; the time is UTC. A failure that tells what is wrong.
ReceivedMessage messageFromLine(const QByteArray& line);

} // namespace zyn::tool
