// Shell completion.
#pragma once

#include "handset/common/Completion.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

struct Command;

/// What a shell is told.
struct Completion
{
    QString text;
    handset::CompletionCode code;
};

/// The completions of the last of @p words, which follow the name of @p tool, one per line: verbs, options, fixed words
/// and what is known at this moment.
Completion completions(const Command& tool, const QStringList& words);

} // namespace zyn::tool
