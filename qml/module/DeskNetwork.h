// What the network and the other parties do to a handset on a desk.
#pragma once

#include "qml/module/FileWatch.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtCore/QVariant>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <vector>

namespace zyn::qml {

class PhoneControlClient;

/**
 * Plays the network, the other parties and the platform to a phone server on a desk.
 *
 *     Button { text: qsTr("Anna calls"); onClicked: DeskNetwork.incoming("0301234567", "Anna") }
 *     Slider { to: 5; stepSize: 1; onMoved: DeskNetwork.status("signal-quality", [value]) }
 *     Connections { target: DeskNetwork; function onRefused(reason) { banner.text = reason } }
 *
 * Each request is answered later, and only when it was refused: by refused(). A phone server that has a modem refuses
 * what only the network does.
 */
class DeskNetwork : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// Whether there is a phone server to play to.
    Q_PROPERTY(bool available READ isAvailable NOTIFY availableChanged FINAL)
    /// Whether a script is played.
    Q_PROPERTY(bool scriptRunning READ isScriptRunning NOTIFY scriptRunningChanged FINAL)
    /// Whether the keypad is locked, as the platform of the desk tells. What is written is what is read a moment later.
    Q_PROPERTY(bool keypadLocked READ isKeypadLocked WRITE setKeypadLocked NOTIFY keypadLockedChanged FINAL)
    /// The state of the SIM card, likewise: 0 and 3 allow the PIN control codes. -1 until it is known.
    Q_PROPERTY(int simCardState READ simCardState WRITE setSimCardState NOTIFY simCardStateChanged FINAL)

public:
    explicit DeskNetwork(QObject* parent = nullptr);
    ~DeskNetwork() override;

    bool isAvailable() const;
    bool isScriptRunning() const { return m_isRunning; }
    bool isKeypadLocked() const { return m_states.isKeypadLocked; }
    void setKeypadLocked(bool isLocked);
    int simCardState() const { return m_states.simCard; }
    void setSimCardState(int state);

    /// Somebody calls.
    Q_INVOKABLE void incoming(const QString& number, const QString& name = {});
    /// The call that rings, here or there, is answered.
    Q_INVOKABLE void answer();
    /// The other party ends the call.
    Q_INVOKABLE void hangUp();
    /// The caller gives up before anybody answers.
    Q_INVOKABLE void missed();
    /// The network does not put the placed call through.
    Q_INVOKABLE void fail();
    /// All states that are known are told again.
    Q_INVOKABLE void snapshot();
    /// The status message that @p word names is told, with a value for each of its fields, as a script has it.
    Q_INVOKABLE void status(const QString& word, const QVariantList& values = {});

    /**
     * Plays the script in @p url, a file or a resource, instead of one that is played. What it says is in the format of
     * the phone server's scripts. A script that cannot be read is refused as a whole; a line that does not apply when
     * its time comes is refused, and the script goes on. It ends with the phone server.
     */
    Q_INVOKABLE void runScript(const QUrl& url);
    /// Plays no more of it.
    Q_INVOKABLE void stopScript();

Q_SIGNALS:
    void availableChanged();
    void scriptRunningChanged();
    void keypadLockedChanged();
    void simCardStateChanged();
    /// Something could not happen: @p reason tells people why.
    void refused(const QString& reason);

private:
    /// A line of a script.
    struct Step
    {
        int lineNumber;
        std::chrono::milliseconds delay;
        QStringList words;
    };

    /// A script that was read, or why it could not be.
    struct Script
    {
        QString name;
        std::vector<Step> steps = {};
        QString error = {};
    };

    /// What the platform of the desk tells.
    struct States
    {
        bool isKeypadLocked = false;
        int simCard = -1;
    };

    static Script read(const QString& path);
    static States readStates();
    void say(const QStringList& words);
    void play(Script script);
    void waitForNext();
    void playNext();
    void setRunning(bool isRunning);
    void refreshStates();
    void noteStates(const States& states);
    void store(const char* key, int value);

    const std::shared_ptr<PhoneControlClient> m_client;
    Script m_script;
    size_t m_position = 0;
    int m_run = 0; ///< counts the scripts, so that what comes late of one is known
    bool m_isRunning = false;
    QTimer m_next;
    FileWatch m_watch;
    States m_states;
};

} // namespace zyn::qml
