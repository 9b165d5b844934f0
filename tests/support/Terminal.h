// A terminal, on which a program runs and shows something.
#pragma once

#include "platform/posix/UniqueFd_p.h"
#include "tests/support/Process.h"

#include <QtCore/QProcessEnvironment>
#include <QtCore/QRegularExpression>

#include <csignal>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>

/// A pseudo-terminal with as much of a screen as the project's programs use.
class Terminal
{
public:
    Terminal(int columns, int rows)
        : m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {
        char name[64] = {};
        if (::grantpt(m_master.get()) != 0 || ::unlockpt(m_master.get()) != 0
            || ::ptsname_r(m_master.get(), name, sizeof name) != 0)
            qFatal("no terminal");
        m_slave.reset(::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC));
        resize(columns, rows);
    }
    ~Terminal()
    {
        tell(SIGKILL);
        process.waitForFinished(role::kTimeout);
    }

    void start(const QString& program, const QStringList& arguments, const QHash<QString, QString>& variables = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("NO_COLOR"));
        environment.insert(QStringLiteral("TERM"), QStringLiteral("xterm"));
        for (auto variable = variables.begin(); variable != variables.end(); ++variable)
            environment.insert(variable.key(), variable.value());
        process.setProcessEnvironment(environment);
        process.setChildProcessModifier([slave = m_slave.get()] {
            ::setsid();
            ::ioctl(slave, TIOCSCTTY, 0);
            for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                ::dup2(slave, fd);
        });
        process.start(program, arguments);
    }

    void tell(int signal) const
    {
        if (process.processId() > 0)
            ::kill(static_cast<pid_t>(process.processId()), signal);
    }
    void type(const char* keys) const { ::write(m_master.get(), keys, qstrlen(keys)); }
    /// Takes no output from here on, as after Ctrl+S.
    void stopOutput() const { ::tcflow(m_slave.get(), TCOOFF); }
    void hangUp() { m_slave.reset(), m_master.reset(); }

    /// The screen becomes blank: whoever draws on it is told.
    void resize(int columns, int rows)
    {
        m_screen = QList<QString>(rows, QString(columns, u' '));
        winsize size = {};
        size.ws_col = static_cast<unsigned short>(columns);
        size.ws_row = static_cast<unsigned short>(rows);
        ::ioctl(m_master.get(), TIOCSWINSZ, &size);
    }

    /// What the keyboard does with keys.
    tcflag_t keyboard() const
    {
        termios settings = {};
        ::tcgetattr(m_master.get(), &settings);
        return settings.c_lflag;
    }

    /// What has come since it was last asked, as it came.
    QByteArray take()
    {
        read();
        return std::exchange(m_raw, {});
    }
    QString row(int number)
    {
        read();
        return m_screen.value(number);
    }
    /// The row that holds @p text, waited for; -1 when none does.
    int find(const QString& text)
    {
        const auto place = [&] {
            read();
            for (int number = 0; number < m_screen.size(); ++number) {
                if (m_screen[number].contains(text))
                    return number;
            }
            return -1;
        };
        return QTest::qWaitFor([&] { return place() >= 0; }, role::kTimeout) ? place() : -1;
    }

    QProcess process;

private:
    void read()
    {
        char bytes[4096];
        for (ssize_t n = 0; (n = ::read(m_master.get(), bytes, sizeof bytes)) > 0;) {
            m_raw.append(bytes, n);
            m_left.append(bytes, n);
        }
        // A sequence, or characters; what is cut short waits for its end.
        static const QRegularExpression part(QStringLiteral("\\G(?:\033\\[([?\\d;]*)([A-Za-z])|([^\033]))"));
        const QString text = QString::fromUtf8(m_left);
        qsizetype end = 0;
        for (auto match = part.match(text); match.hasMatch(); match = part.match(text, end)) {
            end = match.capturedEnd();
            obey(match.captured(2), match.captured(1).split(u';'), match.captured(3));
        }
        m_left = text.mid(end).toUtf8();
    }

    void obey(const QString& command, const QStringList& numbers, const QString& character)
    {
        if (command == u"H") {
            m_row = numbers.value(0).toInt() - 1;
            m_column = numbers.value(1).toInt() - 1;
        } else if (command == u"J") {
            for (QString& line : m_screen)
                line.fill(u' ');
        } else if (!character.isEmpty() && m_row < m_screen.size() && m_column < m_screen[m_row].size()) {
            m_screen[m_row][m_column++] = character[0];
        }
    }

    zyn::posix::UniqueFd m_master;
    zyn::posix::UniqueFd m_slave;
    QByteArray m_raw;
    QByteArray m_left;
    QList<QString> m_screen;
    qsizetype m_row = 0;
    qsizetype m_column = 0;
};
