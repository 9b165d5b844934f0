// The status messages of a script.
#pragma once

#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::handset {

/// The status message with that word for people; a ScriptError when there is none.
const PhoneMessage& scriptMessage(const QString& word);

/// The payload of @p message with a word for each field, or one for a record; a ScriptError when they do not fit.
QByteArray scriptPayload(const PhoneMessage& message, const QStringList& words);

/// A line for each status message: its name and its fields.
QString scriptMessagesHelp();

} // namespace zyn::handset
