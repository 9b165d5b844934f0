// The command line of a handset program.
#include "handset/common/CommandLine.h"

#include "handset/common/Completion.h"
#include "handset/common/Log.h"
#include "handset/common/Output.h"
#include "handset/common/Suggestion.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

const QString kReadyFd = u"ready-fd"_s;
const QString kTrace = u"trace"_s;

std::optional<int> number(const QString& text, int minimum)
{
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    return isNumber && value >= minimum ? std::optional(value) : std::nullopt;
}

bool usageError(const QString& text)
{
    log(text);
    return false;
}

constexpr char kReady[] = "READY=1";
constexpr auto kNotifyTimeout = 5s;
/// Marks the name of an abstract socket; its address begins with a NUL instead.
constexpr char kAbstractMark = '@';

bool sendDatagram(QByteArray path, const QByteArray& text)
{
    if (path.size() > posix::kUnixPathLimit) {
        errno = ENAMETOOLONG;
        return false;
    }
    if (path.front() == kAbstractMark)
        path.front() = '\0';
    const posix::UniqueFd fd(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!fd.isValid())
        return false;
    posix::limitSends(fd.get(), kNotifyTimeout);
    const posix::UnixAddress address = posix::unixAddress(path);
    return posix::retry([&] {
               return ::sendto(fd.get(), text.constData(), size_t(text.size()), MSG_NOSIGNAL, address.get(),
                               address.length);
           })
           == text.size();
}

/// Notifies the service manager that started this program, if any. Waits at most kNotifyTimeout for a busy one.
void notifyServiceManager()
{
    const QByteArray path = qgetenv("NOTIFY_SOCKET");
    if (!path.isEmpty() && !sendDatagram(path, kReady))
        log(u"cannot notify the service manager at %1: %2"_s.arg(QString::fromLocal8Bit(path),
                                                                 QString::fromLocal8Bit(std::strerror(errno))));
}

} // namespace

CommandLine::CommandLine(const QString& description, Output* output)
    : m_output(output)
{
    m_parser.setApplicationDescription(description);
    add(QCommandLineOption(kReadyFd,
                           u"Write \"ready\" and a line end to this open descriptor as soon as the "
                           "program is at work, and close it unless it is a standard stream."_s,
                           u"number"_s));
    add(QCommandLineOption(kTrace, m_output ? u"Show the library's trace text on standard error."_s
                                            : u"Leave the library's trace text on standard output, which "
                                              "somebody must then read: the service waits for it."_s));
}

void CommandLine::add(const QCommandLineOption& option, const QStringList& words)
{
    m_parser.addOption(option);
    m_options += option;
    m_words.insert(option.names().constFirst(), words);
}

void CommandLine::addTime(const QString& name, const QString& text, std::optional<int> defaultValue)
{
    const QString value = defaultValue ? QString::number(*defaultValue) : QString();
    add(QCommandLineOption(name, defaultValue ? text.arg(value) : text, u"milliseconds"_s, value));
    m_times += name;
}

bool CommandLine::parse()
{
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"Show this help."_s);
    add(help);
    const QCommandLineOption version = m_parser.addVersionOption();
    m_options += version;
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == kCompleteWord)
        completeAndExit(arguments.mid(2));
    if (!m_parser.parse(arguments))
        return usageError(parseError());
    if (m_parser.isSet(help))
        showAndExit(m_parser.helpText());
    if (m_parser.isSet(version))
        showAndExit(u"%1 %2\n"_s.arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion()));
    if (!m_parser.positionalArguments().isEmpty())
        return usageError(u"unexpected argument '%1'"_s.arg(m_parser.positionalArguments().constFirst()));
    if (!hasTimes() || !readReadyFd())
        return false;
    directTraces();
    return true;
}

QString CommandLine::parseError() const
{
    const QStringList unknown = m_parser.unknownOptionNames();
    if (unknown.isEmpty())
        return m_parser.errorText();
    QStringList known;
    for (const Candidate& option : candidatesOf(m_options))
        known += option.text;
    const QString word = (unknown.first().size() == 1 ? u"-"_s : u"--"_s) + unknown.first();
    return u"unknown option '%1'"_s.arg(word) + suggestion(word, known);
}

void CommandLine::completeAndExit(const QStringList& words)
{
    const TypedWords typed(words);
    const QString last = typed.before().isEmpty() ? QString() : typed.before().constLast();
    const QCommandLineOption* const option = optionTyped(m_options, last);
    if (!option || option->valueName().isEmpty())
        showAndExit(typed.answer(candidatesOf(m_options)));
    showAndExit(typed.answer(candidatesOf(m_words.value(option->names().constFirst()))),
                isFile(option->valueName()) ? FilesToo : OnlyCandidates);
}

void CommandLine::showAndExit(const QString& text, int code)
{
    std::optional<Output> own;
    Output& output = m_output ? *m_output : own.emplace();
    output.write(text);
    std::exit(output.isValid() ? code : output.exitCode());
}

bool CommandLine::hasTimes() const
{
    return std::ranges::all_of(m_times, [this](const QString& name) {
        return !isSet(name) || number(value(name), 1)
               || usageError(u"--%1 must be a number of milliseconds, 1 or more"_s.arg(name));
    });
}

bool CommandLine::readReadyFd()
{
    if (!isSet(kReadyFd))
        return true;
    const auto fd = number(value(kReadyFd), 0);
    const int flags = fd ? ::fcntl(*fd, F_GETFD) : -1;
    // Descriptors of this process are close-on-exec; inherited ones are not.
    const bool isTaken = m_output && fd == STDOUT_FILENO;
    if (flags < 0 || (flags & FD_CLOEXEC) != 0 || isTaken)
        return usageError(u"--ready-fd must be the number of an open descriptor"_s);
    m_readyFd = *fd;
    return true;
}

/// Otherwise a pipe that nobody reads would block the service in the middle of a request.
void CommandLine::directTraces()
{
    if (m_output && isSet(kTrace))
        m_output->showTrace();
    if (m_output || isSet(kTrace))
        return;
    if (m_readyFd == STDOUT_FILENO)
        m_readyFd = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    silenceStandardOutput();
}

std::chrono::milliseconds CommandLine::time(const QString& name) const
{
    return std::chrono::milliseconds(value(name).toInt());
}

void CommandLine::announce(const QString& path) const
{
    log(u"listening on %1"_s.arg(QDir::cleanPath(path)));
    notifyServiceManager();
    if (m_readyFd < 0)
        return;
    if (::write(m_readyFd, "ready\n", 6) != 6)
        log(u"nobody reads from descriptor %1"_s.arg(m_readyFd));
    if (m_readyFd > STDERR_FILENO)
        ::close(m_readyFd);
}

} // namespace zyn::handset
