// Shell completion.
#include "tools/zynphone/Completion.h"

#include "tools/zynphone/Command.h"

#include <algorithm>

namespace zyn::tool {
namespace {

using handset::Candidates;

/// Follows the words before the one to complete.
class Cursor
{
public:
    explicit Cursor(const Command& tool)
        : m_command(&tool)
    {}

    void pass(const QString& word)
    {
        if (!m_valueName.isEmpty())
            m_valueName.clear();
        else if (handset::looksLikeOption(word))
            passOption(word);
        else
            passArgument(word);
    }

    /// The name of what is next, as the help shows it; null if nothing is.
    QString nextName() const
    {
        if (!m_valueName.isEmpty())
            return m_valueName;
        const std::vector<Argument>& arguments = m_command->arguments;
        if (m_arguments.size() < std::ssize(arguments))
            return arguments[static_cast<size_t>(m_arguments.size())].name;
        return !arguments.empty() && arguments.back().isRepeatable() ? arguments.back().name : QString();
    }

    bool isAtOption(const QString& beginning) const
    {
        return m_valueName.isEmpty() && handset::looksLikeOption(beginning);
    }

    Candidates candidates(const QString& beginning) const
    {
        if (isAtOption(beginning))
            return handset::candidatesOf(allOptions());
        Candidates found;
        if (m_valueName.isEmpty() && m_arguments.isEmpty()) {
            for (const Command& verb : m_command->verbs)
                found += {verb.name, verb.summary};
        }
        const QString name = nextName();
        found += handset::candidatesOf(m_command->words.value(name));
        if (const CandidateSource source = m_command->sources.value(name))
            found += source(m_arguments);
        return found;
    }

private:
    QList<QCommandLineOption> allOptions() const { return m_command->options + commonOptions(); }

    void passOption(const QString& word)
    {
        const QList<QCommandLineOption> options = allOptions();
        const QCommandLineOption* const option = handset::optionTyped(options, word);
        m_valueName = option ? option->valueName() : QString();
    }

    void passArgument(const QString& word)
    {
        const auto verb = std::ranges::find(m_command->verbs, word, &Command::name);
        if (m_arguments.isEmpty() && verb != m_command->verbs.end())
            m_command = &*verb;
        else
            m_arguments += word;
    }

    const Command* m_command;
    QStringList m_arguments;
    QString m_valueName; ///< set if the next word is an option's value
};

} // namespace

Completion completions(const Command& tool, const QStringList& words)
{
    const handset::TypedWords typed(words);
    Cursor cursor(tool);
    for (const QString& word : typed.before())
        cursor.pass(word);
    const bool takesFiles = !cursor.isAtOption(typed.beginning()) && handset::isFile(cursor.nextName());
    return {typed.answer(cursor.candidates(typed.beginning())),
            takesFiles ? handset::FilesToo : handset::OnlyCandidates};
}

} // namespace zyn::tool
