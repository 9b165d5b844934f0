// What is wrong with a line of a script.
#pragma once

#include <QtCore/QString>

namespace zyn::handset {

/// Thrown while a line is read, and caught where its number is known.
struct ScriptError
{
    QString text;
};

} // namespace zyn::handset
