// The nine numbers of speed dial, as a list.
#pragma once

#include "qml/module/FetchedListModel.h"
#include "qml/module/FileWatch.h"

#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

namespace zyn::qml {

/// A key of speed dial.
struct SpeedDialRow
{
    int digit;      ///< 1 to 9
    QString number; ///< empty when the key is free

    int key() const { return digit; }
    bool operator==(const SpeedDialRow&) const = default;
};

/**
 * The numbers of speed dial under the keys 1 to 9: nine rows, once they are loaded.
 *
 *     ListView {
 *         model: SpeedDialModel { id: speedDial }
 *         delegate: Label { required property int key; required property string number; text: key + ": " + number }
 *     }
 *     Button { enabled: speedDial.firstFree > 0; onClicked: speedDial.set(speedDial.firstFree, "112") }
 *
 * Roles: `key` (1 to 9), `number` (text, empty when the key is free). Changes by other processes are followed. The
 * settings are read and written beside the user interface; a write may wait up to 5 seconds for another writer.
 */
class SpeedDialModel : public ZYN_LIST_OF(SpeedDialRow)
{
    Q_OBJECT
    QML_ELEMENT
    /// The lowest free key; -1 when none is free, and until the list is loaded.
    Q_PROPERTY(int firstFree READ firstFree NOTIFY firstFreeChanged FINAL)

public:
    explicit SpeedDialModel(QObject* parent = nullptr);

    int firstFree() const { return m_firstFree; }

    /// Stores @p number, as it is, under @p key; an empty one frees the key. failed() tells when it could not be
    /// stored.
    Q_INVOKABLE void set(int key, const QString& number);
    /// Frees @p key.
    Q_INVOKABLE void clear(int key) { set(key, {}); }
    /// The number under @p key; empty when there is none, or it is not known yet.
    Q_INVOKABLE QString numberFor(int key) const;

Q_SIGNALS:
    void firstFreeChanged();

protected:
    void fetch() override;

private:
    void show(const QStringList& numbers);

    FileWatch m_watch;
    int m_firstFree = -1;
};

} // namespace zyn::qml
