// zynphone top: the phone's state as it changes.
#include "tools/commands/Commands.h"

#include "handset/common/Application.h"
#include "handset/common/TerminationSignals.h"
#include "platform/HandsetState_p.h"
#include "tools/top/Keys.h"
#include "tools/top/Screen.h"
#include "tools/top/StateSources.h"
#include "tools/top/TopView.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Console.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <chrono>
#include <csignal>
#include <optional>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::tool {
namespace {

/// Interval for polling files that nobody announces.
constexpr std::chrono::milliseconds kPollInterval = 1s;
/// Changes within this time are drawn together.
constexpr std::chrono::milliseconds kDrawDelay = 30ms;
/// How long a snapshot waits for the phone server's replies.
constexpr std::chrono::milliseconds kAnswerTime = 500ms;

/// The whole state, kept up to date by the event loop.
class Phone
{
public:
    Phone()
        : m_status(state)
        , m_calls(state, m_status)
    {
        if (!m_status.isListening() || !m_calls.isListening())
            throw failure(u"cannot listen on the channels; 'zynphone doctor' tells why"_s);
        poll();
        m_poll.callOnTimeout([this] { poll(); });
        m_poll.start(kPollInterval);
        m_status.getTotalByteAndConnectedDuration();
    }

    PhoneState state;

private:
    void poll()
    {
        m_calls.refresh();
        readFavourites(state);
        show(Item::KeypadLock, handset::kKeypadLock);
        show(Item::PhoneSystem, handset::kPhoneSystem);
        if (state.value(Item::SimCard).text.isNull())
            show(Item::SimCard, handset::kSimCard);
    }

    void show(Item item, const handset::State& stored)
    {
        if (const std::optional<int> value = handset::storedState(stored))
            state.set(item, QString::number(*value));
        else
            state.remove(item);
    }

    StatusSource m_status;
    CallSource m_calls;
    QTimer m_poll;
};

/// Shows a phone until the user or a signal ends it.
class Top
{
public:
    explicit Top(Console& console)
        : m_console(console)
        , m_signals([this](int signal) { handle(signal); })
        , m_screen(console)
        , m_keys(STDIN_FILENO, QSocketNotifier::Read)
    {
        m_draw.setSingleShot(true);
        m_draw.callOnTimeout([this] { draw(); });
        QObject::connect(&m_phone.state, &PhoneState::changed, &m_draw, [this] {
            if (!m_draw.isActive())
                m_draw.start(kDrawDelay);
        });
        QObject::connect(&m_keys, &QSocketNotifier::activated, &m_draw, [this] { readKeys(); });
        m_keys.setEnabled(::isatty(STDIN_FILENO) == 1);
        draw();
    }

private:
    void draw()
    {
        Canvas canvas = m_screen.blank();
        m_scrolled = layOut(m_phone.state, canvas, m_scrolled);
        if (!m_screen.show(canvas))
            m_draw.start(kPollInterval); // until the user resumes the terminal
        if (!m_console.isValid())
            QCoreApplication::quit();
    }

    void handle(int signal)
    {
        if (signal == SIGHUP || signal == SIGQUIT)
            return QCoreApplication::quit();
        if (signal == SIGTSTP) {
            m_screen.leave();
            TerminalSignals::stop();
            m_screen.enter();
        }
        if (signal == SIGCONT) {
            m_screen.leave(); // the shell may have changed the terminal's mode
            m_screen.enter();
        }
        draw();
    }

    void readKeys()
    {
        char keys[64];
        const ssize_t count = ::read(STDIN_FILENO, keys, sizeof keys);
        if (count <= 0)
            return m_keys.setEnabled(false);
        for (const Key key : keysIn({keys, static_cast<size_t>(count)})) {
            if (key == Key::Quit)
                return QCoreApplication::quit();
            m_scrolled = scrolledBy(key, m_scrolled, m_screen.blank().rows());
            draw();
        }
    }

    Console& m_console;
    Phone m_phone;             // before the screen, which its warnings must not disturb
    TerminalSignals m_signals; // before the screen, so that no signal kills the process while the screen is active
    Screen m_screen;
    QSocketNotifier m_keys;
    QTimer m_draw;
    int m_scrolled = 0; ///< the lines above the first one that is shown
};

ExitCode showOnce(const TimeLimit& timeLimit, bool isJson, Console& console)
{
    const Phone phone;
    if (timeLimit.isSet())
        timeLimit.start();
    else
        QTimer::singleShot(kAnswerTime, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
    if (isJson)
        console.write(QJsonDocument(stateObject(phone.state)));
    else
        console.write(stateText(phone.state));
    return Done;
}

ExitCode showLive(const TimeLimit& timeLimit, Console& console)
{
    if (!console.isTerminal())
        throw failure(u"standard output is not a terminal; --once writes plain lines"_s);
    if (const QByteArray terminal = qgetenv("TERM"); terminal.isEmpty() || terminal == "dumb")
        throw failure(u"the terminal (TERM is '%1') cannot be drawn on; --once writes plain lines"_s.arg(
            QString::fromUtf8(terminal)));
    handset::ignoreBrokenPipes();
    const Top top(console);
    timeLimit.start();
    QCoreApplication::exec();
    return Done;
}

ExitCode showTop(const Invocation& invocation, Console& console)
{
    const TimeLimit timeLimit(invocation);
    const handset::TerminationSignals signalsThatEnd;
    const bool isJson = invocation.isSet(u"json"_s);
    if (invocation.isSet(u"once"_s))
        return showOnce(timeLimit, isJson, console);
    if (isJson)
        throw usageError(u"--json is for --once"_s);
    return showLive(timeLimit, console);
}

} // namespace

Command topCommand()
{
    return {.name = u"top"_s,
            .summary = u"Show the phone's state on the terminal as it changes, until q, SIGINT or SIGTERM"_s,
            .details = u"\nThe arrow keys, Page Up, Page Down, Home and End scroll where it does not fit.\n"
                       "What no message has told since it was started is shown as \u2013, numbers of the telephony\n"
                       "platform as they come. It asks the phone server for the data counters once. The object of\n"
                       "--json has an object for each section, with a text for each line, null if unknown.\n"_s,
            .options = {jsonOption(),
                        flagOption(u"once"_s, u"write the state once, as plain lines, after --for or half a second"_s),
                        TimeLimit::option()},
            .run = showTop};
}

} // namespace zyn::tool
