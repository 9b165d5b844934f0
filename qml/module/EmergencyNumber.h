// Emergency numbers for a text field.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

#include <cstdint>

namespace zyn::qml {

/**
 * Tells of a text, as it is typed, whether it may be dialed while dialing is restricted.
 *
 *     TextField { id: field }
 *     EmergencyNumber { id: number; text: field.text }
 *     Label { text: number.reason }
 *
 * The verdict is found anew with each change of the text, and by refresh(); each time the emergency list is read.
 */
class EmergencyNumber : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// What is typed so far.
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)
    /// What is true of it.
    Q_PROPERTY(Verdict verdict READ verdict NOTIFY verdictChanged FINAL)
    /// The verdict for people.
    Q_PROPERTY(QString reason READ reason NOTIFY verdictChanged FINAL)
    /// Whether the text is an emergency number as it stands.
    Q_PROPERTY(bool emergency READ isEmergency NOTIFY verdictChanged FINAL)

public:
    /// What may become of a text while dialing is restricted.
    enum Verdict : uint8_t {
        Empty,     ///< there is no text
        Emergency, ///< it is an emergency number
        Possible,  ///< it may become one, or a control code that is allowed now
        Refused,   ///< it is none, and cannot become one
    };
    Q_ENUM(Verdict)

    explicit EmergencyNumber(QObject* parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString& text);
    Verdict verdict() const { return m_verdict; }
    QString reason() const;
    bool isEmergency() const { return m_verdict == Emergency; }

    /// Finds the verdict again, as when the SIM card or the keypad lock has changed.
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    void textChanged();
    void verdictChanged();

private:
    QString m_text;
    Verdict m_verdict = Empty;
};

} // namespace zyn::qml
