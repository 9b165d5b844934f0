// Text helpers: elision, words for values, suggestions, field texts.
#pragma once

#include "handset/common/Suggestion.h"
#include "handset/common/Text.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <algorithm>
#include <cstdint>

namespace zyn::tool {

using namespace Qt::StringLiterals;

/// @p text, shortened to @p limit characters, at least 1, with an ellipsis as the last.
inline QString elided(const QString& text, qsizetype limit)
{
    if (text.size() <= limit)
        return text;
    qsizetype kept = limit - 1;
    // A lone surrogate shows nothing.
    if (kept > 0 && text[kept - 1].isHighSurrogate())
        --kept;
    return text.left(kept) + QChar(u'\u2026');
}

template<typename Value>
struct Word
{
    const char* text;
    Value value;
};

/// The word of @p words for @p value, or the number if there is none.
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

/// The row of @p words for @p text. A usage error, which names @p what and lists the words, if there is none.
template<typename Words>
auto wordNamed(const Words& words, const QString& text, const QString& what)
{
    const auto found = std::ranges::find_if(words, [&](const auto& word) { return text == QLatin1String(word.text); });
    if (found != words.end())
        return *found;
    throw usageError(u"unknown %1 '%2'; known are %3"_s.arg(what, text, wordTexts(words).join(", "_L1)));
}

using handset::counted;
using handset::suggestion;

/// @p text, for a Latin-1 field of @p limit characters. A usage error, which names @p what, if it does not fit.
inline QString latin1Field(const QString& text, const QString& what, qsizetype limit)
{
    if (std::ranges::any_of(text, [](QChar character) { return character.unicode() > 0xFF; }))
        throw usageError(u"the %1 holds characters that are not Latin-1"_s.arg(what));
    if (text.size() > limit)
        throw usageError(u"the %1 has %2 characters; at most %3 fit"_s.arg(what).arg(text.size()).arg(limit));
    return text;
}

/// The seconds since 1970 of @p time, which was given as @p text. A usage error if a record cannot store them.
inline int32_t secondsOf(const QDateTime& time, const QString& text)
{
    const qint64 seconds = time.toSecsSinceEpoch();
    if (seconds != static_cast<int32_t>(seconds))
        throw usageError(u"'%1' is not within 1901-12-13T20:45:52Z and 2038-01-19T03:14:07Z"_s.arg(text));
    return static_cast<int32_t>(seconds);
}

} // namespace zyn::tool
