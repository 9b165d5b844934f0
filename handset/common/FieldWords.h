// Parses the fields of messages, as typed on a command line or in a script.
#pragma once

#include "utility/message/Payload_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::handset {

/// The parsers of a program for the kinds of fields. Each throws the program's own exception for an invalid word,
/// naming the field @p what.
struct WordReader
{
    int (*number)(const QString& word, const QString& what, int lowest, int highest);
    QByteArray (*block)(const QString& word, const QString& what, qsizetype size);
    QString (*latin1)(const QString& word, const QString& what, qsizetype limit); ///< null where there are no records
};

/// The value of the single field @p field that @p word stands for.
FieldValue valueFrom(const WordReader& reader, const Field& field, const QString& word, const QString& what);

} // namespace zyn::handset
