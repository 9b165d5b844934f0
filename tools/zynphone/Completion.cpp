// Shell completion.
#include "tools/zynphone/Completion.h"

#include "tools/zynphone/Command.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

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
        else if (isOption(word))
            m_valueName = word.contains(u'=') ? QString() : valueName(word);
        else
            passArgument(word);
    }

    QStringList candidates(const QString& beginning) const
    {
        if (!m_valueName.isEmpty())
            return m_command->words.value(m_valueName);
        return isOption(beginning) ? options() : argumentWords();
    }

private:
    static bool isOption(const QString& word) { return word.startsWith(u'-'); }
    QList<QCommandLineOption> allOptions() const { return m_command->options + commonOptions(); }

    /// The name of the value of the option @p word; null if it takes none.
    QString valueName(const QString& word) const
    {
        const QString name = word.mid(word.startsWith("--"_L1) ? 2 : 1);
        for (const QCommandLineOption& option : allOptions()) {
            if (option.names().contains(name))
                return option.valueName();
        }
        return {};
    }

    void passArgument(const QString& word)
    {
        const auto verb = std::ranges::find(m_command->verbs, word, &Command::name);
        if (m_arguments == 0 && verb != m_command->verbs.end())
            m_command = &*verb;
        else
            ++m_arguments;
    }

    QStringList options() const
    {
        QStringList names;
        for (const QCommandLineOption& option : allOptions())
            names += u"--"_s + option.names().constFirst();
        return names;
    }

    /// Verbs, and the fixed words of the next argument.
    QStringList argumentWords() const
    {
        QStringList words;
        for (const Command& verb : m_command->verbs) {
            if (m_arguments == 0)
                words += verb.name;
        }
        const std::vector<Argument>& arguments = m_command->arguments;
        if (m_arguments < arguments.size())
            words += m_command->words.value(arguments[m_arguments].name);
        else if (!arguments.empty() && arguments.back().isRepeatable())
            words += m_command->words.value(arguments.back().name);
        return words;
    }

    const Command* m_command;
    size_t m_arguments = 0;
    QString m_valueName; ///< set if the next word is an option's value
};

} // namespace

QString completions(const Command& tool, const QStringList& words)
{
    // The shell splits "--option=value" at the sign.
    QStringList before = words;
    QString beginning = before.isEmpty() ? QString() : before.takeLast();
    before.removeAll(u"="_s);
    if (beginning == "="_L1)
        beginning.clear();
    Cursor cursor(tool);
    for (const QString& word : before)
        cursor.pass(word);
    QString lines;
    for (const QString& candidate : cursor.candidates(beginning)) {
        if (candidate.startsWith(beginning))
            lines += candidate + u'\n';
    }
    return lines;
}

} // namespace zyn::tool
