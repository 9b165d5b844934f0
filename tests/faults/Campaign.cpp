#include "tests/faults/Campaign.h"

#include <QtCore/QDateTime>
#include <QtCore/QJsonArray>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace faults {

namespace {

/// More losses than these are counted, and not told.
constexpr qsizetype kToldLosses = 20;

/// Milliseconds of a clock that nobody sets: a campaign may set the other one.
qint64 now()
{
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
}

} // namespace

Campaign::Campaign(QString name, const Options& options)
    : m_name(std::move(name))
    , m_options(options)
    , m_random(options.seed)
    , m_start(now())
    , m_lastProgress(m_start)
{}

bool Campaign::check(bool holds, const QString& what)
{
    ++m_checks;
    if (holds)
        return true;
    ++m_losses;
    if (m_firstLosses.size() < kToldLosses) {
        m_firstLosses.append(what);
        std::fprintf(stderr, "%s: LOSS  %s\n", qPrintable(m_name), qPrintable(what));
    }
    return false;
}

void Campaign::skip(const QString& why)
{
    m_skipped = why;
    std::fprintf(stderr, "%s: %s: skipped\n", qPrintable(m_name), qPrintable(why));
}

void Campaign::progress(qint64 done, qint64 of)
{
    const qint64 time = now();
    if (time - m_lastProgress < 1000)
        return;
    m_lastProgress = time;
    std::fprintf(stderr, "%s: %lld of %lld, %lld losses\n", qPrintable(m_name), static_cast<long long>(done),
                 static_cast<long long>(of), static_cast<long long>(m_losses));
}

QJsonObject Campaign::result() const
{
    return {{u"campaign"_s, m_name},
            {u"seed"_s, qint64(m_options.seed)},
            {u"seconds"_s, double(now() - m_start) / 1000},
            {u"operations"_s, m_operations},
            {u"faults"_s, m_faults},
            {u"checks"_s, m_checks},
            {u"losses"_s, m_losses},
            {u"skipped"_s, m_skipped},
            {u"firstLosses"_s, QJsonArray::fromStringList(m_firstLosses)},
            {u"figures"_s, m_figures}};
}

QString Campaign::line() const
{
    if (isSkipped())
        return u"%1: skipped: %2"_s.arg(m_name, m_skipped);
    QString line = u"%1: seed %2, %3 s: %4 operations, %5 faults, %6 checks, %7 losses"_s.arg(m_name)
                       .arg(m_options.seed)
                       .arg(double(now() - m_start) / 1000, 0, 'f', 1)
                       .arg(m_operations)
                       .arg(m_faults)
                       .arg(m_checks)
                       .arg(m_losses);
    for (auto figure = m_figures.begin(); figure != m_figures.end(); ++figure)
        line += u"; %1 %2"_s.arg(figure.key()).arg(figure.value().toInteger());
    return line;
}

} // namespace faults
