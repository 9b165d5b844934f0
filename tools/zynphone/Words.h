// Words that stand for values, on the command line and in what the tool writes.
#pragma once

#include "tools/zynphone/ExitCode.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <algorithm>

namespace zyn::tool {

template<typename Value>
struct Word
{
    const char* text;
    Value value;
};

/// The word of @p words for @p value, or its number when there is none.
template<typename Words, typename Value>
QString wordFor(const Words& words, Value value)
{
    const auto found = std::ranges::find_if(words, [value](const Word<Value>& word) { return word.value == value; });
    return found == words.end() ? QString::number(value) : QLatin1String(found->text);
}

/// The texts of @p words.
template<typename Words>
QStringList wordTexts(const Words& words)
{
    QStringList texts;
    for (const auto& word : words)
        texts += QLatin1String(word.text);
    return texts;
}

/// The row of @p words for @p text; a usage error that names @p what and lists the words when it is none of
/// them.
template<typename Words>
auto wordNamed(const Words& words, const QString& text, const QString& what)
{
    const auto found = std::ranges::find_if(words, [&](const auto& word) { return text == QLatin1String(word.text); });
    if (found != words.end())
        return *found;
    throw usageError(
        QStringLiteral("unknown %1 '%2'; known are %3").arg(what, text, wordTexts(words).join(QLatin1String(", "))));
}

} // namespace zyn::tool
