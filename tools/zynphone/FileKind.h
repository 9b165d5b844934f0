// A kind of store file that can be inspected.
#pragma once

#include "tools/zynphone/Table.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

/// What was found out about one file.
struct FileFindings
{
    QString kind;         ///< what the file is, for people
    QStringList problems; ///< one line each; none for a sound file
    Table usedSlots;

    bool isSound() const { return problems.isEmpty(); }
};

/// How a kind of file is told from others, by its name or else by its bytes, and checked.
struct FileKind
{
    bool (*isNamed)(const QString& name);
    bool (*isShaped)(const QByteArray& image);
    FileFindings (*check)(const QString& name, const QByteArray& image);
};

} // namespace zyn::tool
