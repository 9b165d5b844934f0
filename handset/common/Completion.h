// Completion of command lines: what the shells ask of a program, and how it answers.
#pragma once

#include <QtCore/QCommandLineOption>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::handset {

/// The first word of a command line with which a shell asks for what may follow the words behind it.
inline constexpr QLatin1String kCompleteWord("__complete");

/// The exit code of the answer: whether names of files may follow, too, which the shell knows best.
enum CompletionCode { OnlyCandidates = 0, FilesToo = 1 };

/// A word that may follow.
struct Candidate
{
    QString text;
    QString meaning = {}; ///< which some shells show; may be empty
};
using Candidates = QList<Candidate>;

Candidates candidatesOf(const QStringList& words);
Candidates candidatesOf(const QList<QCommandLineOption>& options);

/// The option of @p options that @p word, as it is typed, names; null if there is none.
const QCommandLineOption* optionTyped(const QList<QCommandLineOption>& options, const QString& word);

inline bool looksLikeOption(const QString& word)
{
    return word.startsWith(u'-');
}

/// Whether the value or argument of this name, as the help shows it, is a file.
bool isFile(const QString& valueName);

/// A command line as far as it is typed.
class TypedWords
{
public:
    /// @param words  the last one is to be completed
    explicit TypedWords(const QStringList& words);

    const QStringList& before() const { return m_before; }
    const QString& beginning() const { return m_beginning; }

    /// The answer: those of @p candidates that begin as the last word does, one a line, a tab before the meaning. What
    /// would control a terminal is left out.
    QString answer(const Candidates& candidates) const;

private:
    QStringList m_before;
    QString m_beginning;
    QString m_option; ///< "--option=", if the last word begins so
};

} // namespace zyn::handset
