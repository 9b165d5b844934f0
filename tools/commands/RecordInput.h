// The records of the telephony platform, as a command line describes them.
#pragma once

#include "tools/zynphone/Command.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QStringList>

namespace zyn::tool {

/// The options of allStatusFrom(), one for each field of the all-status record.
QList<QCommandLineOption> allStatusOptions();
/// The all-status record with the fields that @p call sets; the others are 0.
QByteArray allStatusFrom(const Invocation& invocation);

/// The network list of @p words, which are an id and a name for each network.
QByteArray networkListFrom(const QStringList& words);

} // namespace zyn::tool
