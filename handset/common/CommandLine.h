// The command line of a program of the handset.
#pragma once

#include <QtCore/QCommandLineOption>
#include <QtCore/QCommandLineParser>

#include <chrono>
#include <optional>

namespace zyn::handset {

class Output;

/// The exit code of a program that was started with arguments that it does not know.
inline constexpr int kUsageError = 2;

/// The options that every program has, --help, --version, --ready-fd and --trace, and what a program adds to them.
class CommandLine
{
public:
    /// @param output  of a program that shows something; the library's trace text is for standard error then
    explicit CommandLine(const QString& description, Output* output = nullptr);

    void add(const QCommandLineOption& option) { m_parser.addOption(option); }
    /// Adds an option with a number of milliseconds, 1 or more. Its text contains "%1" for the default, if it has one.
    void addTime(const QString& name, const QString& text, std::optional<int> defaultValue = std::nullopt);

    /// Parses the application's arguments; false, and told in the log, when they are not right. Ends the
    /// process after --help and --version.
    bool parse();

    bool isSet(const QString& name) const { return m_parser.isSet(name); }
    QString value(const QString& name) const { return m_parser.value(name); }
    /// The value of an option that was added with addTime().
    std::chrono::milliseconds time(const QString& name) const;

    /// Tells the log that clients are served at @p path, and the service manager and whoever waits at --ready-fd that
    /// they are.
    void announce(const QString& path) const;

private:
    [[noreturn]] void showAndExit(const QString& text);
    bool hasTimes() const;
    bool readReadyFd();
    void directTraces();

    Output* const m_output;
    QCommandLineParser m_parser;
    QStringList m_times;
    int m_readyFd = -1; ///< -1: none
};

} // namespace zyn::handset
