// The files of the activity log: their names, and how they are checked, made and removed.
#pragma once

#include <QtCore/QString>

namespace zyn {

// All but the paths write what they do to standard output.

/// The path of a file of the activity log, null for a name that is empty (and a line on standard output) or that a file
/// of another kind has or may get.
QString topPalsPath(const QString& name);
/// The path of a contact's file; null for the name of the details file as well.
QString contactPath(const QString& number);

bool checkTopPalsDetailsFile(const QString& fileName);
bool checkTopPalsFile(const QString& fileName, int slots);

/// @{ Leave an empty file of exactly its size, unless another process has just made a valid one.
bool createTopPalsDetailsFile(const QString& fileName);
bool createActivityLogTopPalsFile(const QString& fileName, int slots);
/// @}

/// Deletes a contact's file if it is valid.
bool removeTopPalsAvlFile(const QString& number, int slots);

} // namespace zyn
