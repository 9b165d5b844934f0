// The status messages of a script.
#pragma once

#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::handset {

/// The status message of that name for people; a ScriptError when there is none.
const zyn::PhoneMessage& scriptMessage(const QString& name);

/// The payload of @p message with @p values for its fields, one each; a ScriptError when they do not fit.
QByteArray scriptPayload(const zyn::PhoneMessage& message, const QStringList& values);

/// A line for each status message: its name and its fields.
QString scriptMessagesHelp();

} // namespace zyn::handset
