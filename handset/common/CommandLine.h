// The command line of a handset program.
#pragma once

#include <QtCore/QCommandLineOption>
#include <QtCore/QCommandLineParser>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QStringList>

#include <chrono>
#include <optional>

namespace zyn::handset {

class Output;

/// Exit code for invalid arguments.
inline constexpr int kUsageError = 2;

/// The options of every program, --help, --version, --ready-fd and --trace, and those that a program adds.
class CommandLine
{
public:
    /// @param output  of a program that shows something; redirects the library's trace text
    explicit CommandLine(const QString& description, Output* output = nullptr);

    /// @param words  the fixed values of the option, for completion
    void add(const QCommandLineOption& option, const QStringList& words = {});
    /// Adds an option in milliseconds, 1 or more. "%1" in its text stands for the default, if there is one.
    void addTime(const QString& name, const QString& text, std::optional<int> defaultValue = std::nullopt);

    /// Parses the application's arguments; false if they are invalid, which is logged. Exits after --help, --version
    /// and a shell's question.
    bool parse();

    bool isSet(const QString& name) const { return m_parser.isSet(name); }
    QString value(const QString& name) const { return m_parser.value(name); }
    /// The value of an option added with addTime().
    std::chrono::milliseconds time(const QString& name) const;

    /// Logs that clients are served at @p path, and notifies the service manager and the reader of --ready-fd.
    void announce(const QString& path) const;

private:
    [[noreturn]] void showAndExit(const QString& text, int code = 0);
    /// Answers a shell that asks what may follow @p words.
    [[noreturn]] void completeAndExit(const QStringList& words);
    QString parseError() const;
    bool hasTimes() const;
    bool readReadyFd();
    void directTraces();

    Output* const m_output;
    QCommandLineParser m_parser;
    QList<QCommandLineOption> m_options;
    QMap<QString, QStringList> m_words; ///< fixed values, by an option's first name
    QStringList m_times;
    int m_readyFd = -1; ///< -1 without --ready-fd
};

} // namespace zyn::handset
