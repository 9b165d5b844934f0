// What a recording tells: who takes part, and what came of the calls.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace zyn::tool {

/// What a program of the handset is for people; empty for any other.
QString roleOf(const QString& program);

/// The lane of a participant: its program. Processes of one program share it, for most live only for a message.
QString laneOf(const Participant& participant);
/// The lane of a message's sender; its channel's name where the sender is not known.
QString senderLane(const ReceivedMessage& message);

/// Whether a message asks for something: a call, a page of the screens. Others tell.
bool asks(const ReceivedMessage& message);

/// What each of @p messages means to people, as "a call rings", where it or those around it tell; else empty.
std::vector<QString> meanings(const std::vector<ReceivedMessage>& messages);

/// What came of the calls of @p messages, a sentence each, as far as they tell.
QStringList outcomes(const std::vector<ReceivedMessage>& messages);

} // namespace zyn::tool
