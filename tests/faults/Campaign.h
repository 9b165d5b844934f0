// What the campaigns of zyn-faults have in common: where their choices begin, how long they are, and what they count.
#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QRandomGenerator>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace faults {

/// How the campaigns are run.
struct Options
{
    quint32 seed = 0;
    bool isShort = false;
    QString programs; ///< the folder of the handset's programs
};

/// One run of one campaign.
class Campaign
{
public:
    Campaign(QString name, const Options& options);

    /// The length of a loop: @p full, or @p brief in the short form that is a test.
    qint64 length(qint64 full, qint64 brief) const { return m_options.isShort ? brief : full; }
    QRandomGenerator& random() { return m_random; }
    /// The path of one of the handset's programs.
    QString program(const char* name) const { return m_options.programs + u'/' + QLatin1String(name); }

    /// Counts what the honest side did.
    void operate(qint64 count = 1) { m_operations += count; }
    /// Counts what was broken.
    void breakThings(qint64 count = 1) { m_faults += count; }
    /// Counts a check, and a loss, which is told at once, when it does not hold; gives @p holds back.
    bool check(bool holds, const QString& what);
    /// Says why the campaign cannot be run here.
    void skip(const QString& why);
    bool isSkipped() const { return !m_skipped.isEmpty(); }
    /// Keeps a figure that the campaign measured, such as the most memory; a later one of the same name replaces it.
    void measure(const QString& name, qint64 value) { m_figures[name] = value; }
    /// Tells, at most once a second, how far the campaign is.
    void progress(qint64 done, qint64 of);

    bool isLost() const { return m_losses > 0; }
    QJsonObject result() const;
    QString line() const;

private:
    QString m_name;
    Options m_options;
    QRandomGenerator m_random;
    qint64 m_operations = 0;
    qint64 m_faults = 0;
    qint64 m_checks = 0;
    qint64 m_losses = 0;
    QStringList m_firstLosses;
    QString m_skipped; ///< why
    QJsonObject m_figures;
    qint64 m_start;
    qint64 m_lastProgress;
};

// The campaigns; main.cpp has their table.

void calls(Campaign& campaign);
void clients(Campaign& campaign);
void files(Campaign& campaign);
void kills(Campaign& campaign);
void messages(Campaign& campaign);
void playWeek(Campaign& campaign);
void servers(Campaign& campaign);
void setClocks(Campaign& campaign);

} // namespace faults
