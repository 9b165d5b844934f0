// One of the programs that take part in a day: its process and the lines that it prints.
#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QProcess>

namespace zyn::handset {

/// A process, and the lines that it has written to standard output and standard error. The destructor ends it.
class Program : public QObject
{
    Q_OBJECT

public:
    Program();
    ~Program() override;

    /// @param command  words separated by blanks; '' is an empty word, and a word in double quotes may contain blanks
    void start(const QString& command);
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }

    void write(const QByteArray& bytes) { m_process.write(bytes); }
    void sendSignal(int signal);
    /// Its exit code; -1 if a signal ended it or it could not be started.
    int exitCode() const;

    /// The lines that are not blank, trimmed, and without the program's name at the start of a log line.
    const QStringList& lines() const { return m_lines; }

Q_SIGNALS:
    /// The program has written a line, or ended.
    void changed();

private:
    void read();

    QProcess m_process;
    QString m_prefix;
    QStringList m_lines;
};

} // namespace zyn::handset
