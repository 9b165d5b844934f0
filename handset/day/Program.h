// A program of the handset that takes part in a day.
#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QProcess>

namespace zyn::handset {

/// A process, and the lines that it has written to standard output and standard error. It ends with the object.
class Program : public QObject
{
    Q_OBJECT

public:
    Program();
    ~Program() override;

    /// @param command  words, of which '' is an empty one, and those in double quotes may hold blanks
    void start(const QString& command);
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }

    void write(const QByteArray& bytes) { m_process.write(bytes); }
    /// Sends it a signal.
    void sendSignal(int signal);
    /// How it has ended: its exit code, or -1 when a signal ended it or it could not be started.
    int exitCode() const;

    /// Those that are not blank, without the blanks around them and the program's name in front of those of its log.
    const QStringList& lines() const { return m_lines; }

Q_SIGNALS:
    /// It has written a line, or ended.
    void changed();

private:
    void read();

    QProcess m_process;
    QString m_prefix;
    QStringList m_lines;
};

} // namespace zyn::handset
