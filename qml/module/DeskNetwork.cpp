// What the network and the other parties do to a handset on a desk: words to its phone server, and its state file.
#include "qml/module/DeskNetwork.h"

#include "handset/common/ScriptReader.h"
#include "platform/HandsetState_p.h"
#include "platform/posix/File_p.h"
#include "qml/module/HandsetFiles.h"
#include "qml/module/Lanes.h"
#include "qml/module/PhoneControlClient.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::qml {
namespace {

QStringList wordsOf(const phonecontrol::LineEvent& event)
{
    return {QLatin1String(event.name)};
}

/// The path of what @p url names; empty if it is neither a file nor a resource.
QString pathOf(const QUrl& url)
{
    return url.scheme() == u"qrc"_s ? u':' + url.path() : url.toLocalFile();
}

std::optional<QByteArray> scriptText(const QString& path)
{
    if (!path.startsWith(u':'))
        return posix::readWhole(QFile::encodeName(path), handset::kLargestScript);
    QFile resource(path);
    if (!resource.open(QIODevice::ReadOnly) || resource.size() > handset::kLargestScript)
        return std::nullopt;
    return resource.readAll();
}

} // namespace

DeskNetwork::DeskNetwork(QObject* parent)
    : QObject(parent)
    , m_client(PhoneControlClient::shared())
{
    connect(m_client.get(), &PhoneControlClient::followingChanged, this, [this] {
        if (!isAvailable())
            stopScript();
        Q_EMIT availableChanged();
    });
    m_next.setSingleShot(true);
    m_next.setTimerType(Qt::PreciseTimer);
    connect(&m_next, &QTimer::timeout, this, &DeskNetwork::playNext);
    connect(&m_watch, &FileWatch::changed, this, &DeskNetwork::refreshStates);
    m_watch.setFiles({deskStateFile()});
    refreshStates();
}

DeskNetwork::~DeskNetwork() = default;

bool DeskNetwork::isAvailable() const
{
    return m_client->isFollowing();
}

void DeskNetwork::setKeypadLocked(bool isLocked)
{
    store(handset::kKeypadLock.key, isLocked);
}

void DeskNetwork::setSimCardState(int state)
{
    store(handset::kSimCard.key, state);
}

void DeskNetwork::incoming(const QString& number, const QString& name)
{
    QStringList words = wordsOf(phonecontrol::kIncoming) << number;
    if (!name.isEmpty())
        words += name;
    say(words);
}

void DeskNetwork::answer()
{
    say(wordsOf(phonecontrol::kAnswer));
}

void DeskNetwork::hangUp()
{
    say(wordsOf(phonecontrol::kHangUp));
}

void DeskNetwork::missed()
{
    say(wordsOf(phonecontrol::kMissed));
}

void DeskNetwork::fail()
{
    say(wordsOf(phonecontrol::kFail));
}

void DeskNetwork::snapshot()
{
    say(wordsOf(phonecontrol::kSnapshot));
}

void DeskNetwork::status(const QString& word, const QVariantList& values)
{
    QStringList words{word};
    for (const QVariant& value : values)
        words += value.toString();
    say(words);
}

void DeskNetwork::runScript(const QUrl& url)
{
    stopScript();
    setRunning(true);
    runBeside(
        Lane::Files, this, [path = pathOf(url)] { return read(path); },
        [this, run = m_run](Script script) {
            if (run == m_run)
                play(std::move(script));
        });
}

void DeskNetwork::stopScript()
{
    ++m_run;
    m_next.stop();
    setRunning(false);
}

DeskNetwork::Script DeskNetwork::read(const QString& path)
{
    Script script{.name = QFileInfo(path).fileName()};
    const std::optional<QByteArray> text = scriptText(path);
    if (!text) {
        script.error = tr("%1 is not a readable file of at most 1 MiB").arg(path);
        return script;
    }
    try {
        handset::readScriptText(*text, [&script](const QString& line, int lineNumber) {
            QStringList words = handset::scriptWords(line);
            const auto delay = handset::takeScriptDelay(words);
            script.steps.push_back({lineNumber, delay, words});
        });
    } catch (const handset::ScriptError& error) {
        script.error = u"%1:%2"_s.arg(script.name, error.text);
    }
    return script;
}

void DeskNetwork::say(const QStringList& words)
{
    m_client->say(words, this, [this](const QString& refusal) {
        if (!refusal.isEmpty())
            Q_EMIT refused(refusal);
    });
}

void DeskNetwork::play(Script script)
{
    if (!script.error.isEmpty()) {
        stopScript();
        Q_EMIT refused(script.error);
        return;
    }
    m_script = std::move(script);
    m_position = 0;
    waitForNext();
}

void DeskNetwork::waitForNext()
{
    if (m_position < m_script.steps.size())
        m_next.start(m_script.steps[m_position].delay);
    else
        stopScript();
}

/// Plays a line, and goes on once it is answered: the server is never told more than it takes.
void DeskNetwork::playNext()
{
    const Step& step = m_script.steps[m_position++];
    const QString place = u"%1:%2"_s.arg(m_script.name, QString::number(step.lineNumber));
    m_client->say(step.words, this, [this, run = m_run, place](const QString& refusal) {
        if (!refusal.isEmpty())
            Q_EMIT refused(u"%1: %2"_s.arg(place, refusal));
        if (run != m_run)
            return;
        if (m_client->isFollowing())
            waitForNext();
        else
            stopScript();
    });
}

void DeskNetwork::setRunning(bool isRunning)
{
    if (std::exchange(m_isRunning, isRunning) != isRunning)
        Q_EMIT scriptRunningChanged();
}

DeskNetwork::States DeskNetwork::readStates()
{
    return {.isKeypadLocked = handset::readState(handset::kKeypadLock) != 0,
            .simCard = handset::readState(handset::kSimCard)};
}

void DeskNetwork::refreshStates()
{
    runBeside(Lane::Files, this, readStates, [this](const States& states) { noteStates(states); });
}

void DeskNetwork::noteStates(const States& states)
{
    const States old = std::exchange(m_states, states);
    if (states.isKeypadLocked != old.isKeypadLocked)
        Q_EMIT keypadLockedChanged();
    if (states.simCard != old.simCard)
        Q_EMIT simCardStateChanged();
}

void DeskNetwork::store(const char* key, int value)
{
    const auto write = [key, value] {
        SETUP_SET_Manager settings(handset::stateFile(), false);
        return settings.setSettingInfo(QLatin1String(handset::kGroup), QLatin1String(key), value);
    };
    runBeside(Lane::Files, this, write, [this](bool isStored) {
        if (!isStored)
            Q_EMIT refused(tr("The state of the handset cannot be written"));
    });
    refreshStates();
}

} // namespace zyn::qml
