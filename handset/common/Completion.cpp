// Completion of command lines: what the shells ask of a program, and how it answers.
#include "handset/common/Completion.h"

#include "handset/common/Text.h"

#include <QtCore/QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::handset {

Candidates candidatesOf(const QStringList& words)
{
    Candidates candidates;
    for (const QString& word : words)
        candidates += {word};
    return candidates;
}

Candidates candidatesOf(const QList<QCommandLineOption>& options)
{
    Candidates candidates;
    for (const QCommandLineOption& option : options) {
        const QStringList names = option.names();
        const auto longName = std::ranges::find_if(names, [](const QString& name) { return name.size() > 1; });
        if (longName != names.end())
            candidates += {u"--"_s + *longName, option.description()};
    }
    return candidates;
}

const QCommandLineOption* optionTyped(const QList<QCommandLineOption>& options, const QString& word)
{
    const QString name = word.mid(word.startsWith("--"_L1) ? 2 : 1);
    const auto found = std::ranges::find_if(options, [&](const auto& option) { return option.names().contains(name); });
    return looksLikeOption(word) && found != options.end() ? &*found : nullptr;
}

bool isFile(const QString& valueName)
{
    constexpr QLatin1String kNames[] = {"FILE"_L1, "PATH"_L1, "COMMAND"_L1};
    return std::ranges::find(kNames, valueName.toUpper()) != std::end(kNames);
}

TypedWords::TypedWords(const QStringList& words)
    : m_before(words)
{
    if (!m_before.isEmpty())
        m_beginning = m_before.takeLast();
    // Some shells split "--option=value" at the sign.
    m_before.removeAll(u"="_s);
    if (m_beginning == "="_L1)
        m_beginning.clear();
    const qsizetype sign = m_beginning.startsWith("--"_L1) ? m_beginning.indexOf(u'=') : -1;
    if (sign < 0)
        return;
    m_option = m_beginning.first(sign + 1);
    m_before += m_beginning.first(sign);
    m_beginning = m_beginning.sliced(sign + 1);
}

QString TypedWords::answer(const Candidates& candidates) const
{
    QString lines;
    QSet<QString> known;
    for (const Candidate& candidate : candidates) {
        const bool isOffered = !candidate.text.isEmpty() && candidate.text.startsWith(m_beginning)
                               && printable(candidate.text) == candidate.text;
        if (!isOffered || known.contains(candidate.text))
            continue;
        known += candidate.text;
        lines += m_option + candidate.text;
        if (!candidate.meaning.isEmpty())
            lines += u'\t' + printable(candidate.meaning.simplified());
        lines += u'\n';
    }
    return lines;
}

} // namespace zyn::handset
