// The words of people for the fields of messages, on a command line or in a script.
#pragma once

#include "utility/message/Payload_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::handset {

/// How a program reads words. Each function refuses one that it cannot read in the program's own way, by an exception
/// that may call it @p what.
struct WordReader
{
    int (*number)(const QString& word, const QString& what, int lowest, int highest);
    QByteArray (*block)(const QString& word, const QString& what, qsizetype size);
    QString (*latin1)(const QString& word, const QString& what, qsizetype limit); ///< null where there are no records
};

/// The value of @p field, which occurs once, that @p word stands for.
FieldValue valueFrom(const WordReader& reader, const Field& field, const QString& word, const QString& what);

} // namespace zyn::handset
