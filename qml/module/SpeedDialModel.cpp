// The nine numbers of speed dial, as a list.
#include "qml/module/SpeedDialModel.h"

#include "qml/module/HandsetFiles.h"
#include "qml/module/Lanes.h"
#include "utility/PHONE_SpeedDial.h"

#include <QtCore/QStringList>

#include <utility>
#include <vector>

namespace zyn::qml {
namespace {

constexpr int kFirstKey = 1;
constexpr int kLastKey = 9;

constexpr ListRole<SpeedDialRow> kSpeedDialRoles[] = {
    {"key", [](const SpeedDialRow& row) { return QVariant(row.digit); }},
    {"number", [](const SpeedDialRow& row) { return QVariant(row.number); }},
};

struct SpeedDialNumbers
{
    QString problem;
    QStringList numbers;
};

SpeedDialNumbers readSpeedDial()
{
    SpeedDialNumbers result{phoneSettingsProblem(), {}};
    if (result.problem.isEmpty())
        PHONE_SpeedDial().getTurboDialingList(result.numbers);
    return result;
}

} // namespace

SpeedDialModel::SpeedDialModel(QObject* parent)
    : FetchedRows(kSpeedDialRoles, parent)
{
    connect(&m_watch, &FileWatch::changed, this, &SpeedDialModel::reload);
    m_watch.setFiles({phoneSettingsFile()});
    reload();
}

void SpeedDialModel::fetch()
{
    begin();
    runBeside(Lane::Files, this, readSpeedDial, [this](const SpeedDialNumbers& result) {
        if (result.problem.isEmpty())
            show(result.numbers);
        finish(result.problem);
    });
}

void SpeedDialModel::set(int key, const QString& number)
{
    begin();
    if (key < kFirstKey || key > kLastKey) {
        finish(tr("Speed dial has the keys 1 to 9, and not %1").arg(key));
        return;
    }
    const auto store = [key, number] { return PHONE_SpeedDial().setTurboDialing(key, number); };
    runBeside(Lane::Files, this, store, [this, key](bool isStored) {
        finish(isStored ? QString() : tr("The number of key %1 cannot be stored in the settings").arg(key));
        if (isStored)
            reload();
    });
}

QString SpeedDialModel::numberFor(int key) const
{
    const SpeedDialRow* const row = find(key - kFirstKey);
    return row ? row->number : QString();
}

void SpeedDialModel::show(const QStringList& numbers)
{
    std::vector<SpeedDialRow> fresh;
    int firstFree = -1;
    for (const QString& number : numbers) {
        fresh.push_back({kFirstKey + static_cast<int>(fresh.size()), number});
        if (firstFree < 0 && number.isEmpty())
            firstFree = fresh.back().digit;
    }
    setRows(std::move(fresh));
    if (std::exchange(m_firstFree, firstFree) != firstFree)
        Q_EMIT firstFreeChanged();
}

} // namespace zyn::qml
