// What was measured, as a table, as JSON, as a picture and in the document.
#include "bench/Report.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtCore/QSaveFile>
#include <QtCore/QStringList>
#include <QtCore/QSysInfo>
#include <QtCore/QThread>

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

using namespace Qt::StringLiterals;

namespace bench {
namespace {

bool isPeer(const MeasuredColumn& column)
{
    static const std::set<std::string> others = {kOurs, kLimit, kByHand};
    return !others.contains(column.name);
}

const MeasuredColumn* bestPeer(const MeasuredRow& row)
{
    const MeasuredColumn* best = nullptr;
    for (const MeasuredColumn& column : row.columns) {
        if (isPeer(column) && column.taken && (!best || column.taken->median < best->taken->median))
            best = &column;
    }
    return best;
}

QString shown(std::optional<double> nanoseconds)
{
    return nanoseconds ? duration(*nanoseconds) : u"–"_s;
}

QString times(std::optional<double> ratio)
{
    return ratio ? QString::number(*ratio, 'f', 2) + u" ×"_s : u"–"_s;
}

/// The cells of a row's line.
QStringList cells(const MeasuredRow& row)
{
    const auto ratio = row.ratio();
    QString peers;
    for (const MeasuredColumn& column : row.columns) {
        if (isPeer(column) && column.taken)
            peers += (peers.isEmpty() ? u""_s : u", "_s) + QString::fromStdString(column.name) + u' '
                     + duration(column.taken->median);
    }
    const double spread = row.columns.front().taken ? row.columns.front().taken->spread : 0;
    const QString verdict = !ratio ? u""_s : *ratio <= row.goal ? u"met"_s : u"above"_s;
    return {QString::fromStdString(row.name),
            shown(row.of(kOurs)),
            u"± %1 %"_s.arg(spread * 100, 0, 'f', 1),
            shown(row.of(kLimit)),
            shown(row.of(kByHand)),
            peers.isEmpty() ? u"–"_s : peers,
            times(ratio) + (ratio ? u" "_s + QString::fromStdString(row.base) : u""_s),
            u"%1 × "_s.arg(row.goal) + QString::fromStdString(row.base),
            verdict};
}

const QStringList kTitles = {u"Operation"_s, u"Ours"_s,  u"Spread"_s, u"Limit"_s, u"By hand"_s,
                             u"Peers"_s,     u"Ratio"_s, u"Goal"_s,   u""_s};

QString missingPeers(const Results& results)
{
    std::set<std::string> missing;
    for (const MeasuredRow& row : results) {
        for (const MeasuredColumn& column : row.columns) {
            if (!column.taken)
                missing.insert(column.name);
        }
    }
    QStringList names;
    for (const std::string& name : missing)
        names += QString::fromStdString(name);
    return names.isEmpty() ? QString() : u"Not installed, and not measured: %1.\n"_s.arg(names.join(u", "_s));
}

QJsonValue value(std::optional<double> number)
{
    return number ? QJsonValue(*number) : QJsonValue(QJsonValue::Null);
}

QJsonObject object(const MeasuredRow& row)
{
    QJsonObject peers;
    QJsonArray missing;
    QJsonObject spreads;
    for (const MeasuredColumn& column : row.columns) {
        const QString name = QString::fromStdString(column.name);
        if (!column.taken)
            missing.append(name);
        else if (isPeer(column))
            peers[name] = column.taken->median;
        if (column.taken)
            spreads[name] = column.taken->spread;
    }
    const auto ours = row.of(kOurs);
    const auto limit = row.of(kLimit);
    return {{u"name"_s, QString::fromStdString(row.name)},
            {u"ours_ns"_s, value(ours)},
            {u"limit_ns"_s, value(limit)},
            {u"by_hand_ns"_s, value(row.of(kByHand))},
            {u"ratio_to_limit"_s, value(ours && limit ? std::optional(*ours / *limit) : std::nullopt)},
            {u"goal"_s, row.goal},
            {u"goal_of"_s, QString::fromStdString(row.base)},
            {u"ratio_to_goal"_s, value(row.ratio() ? std::optional(*row.ratio() / row.goal) : std::nullopt)},
            {u"spreads"_s, spreads},
            {u"peers"_s, peers},
            {u"missing"_s, missing}};
}

/// The lengths of the picture, in its own unit.
constexpr double kNames = 300;
constexpr double kDecade = 70;
constexpr double kRowHeight = 34;
constexpr double kTop = 48;

double place(double nanoseconds)
{
    return kNames + kDecade * std::max(0.0, std::log10(nanoseconds) - 1);
}

QString bar(double top, double nanoseconds, const QString& colour, const QString& text)
{
    return u"<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"8\" fill=\"%4\"/>\n"
           u"<text x=\"%5\" y=\"%6\" font-size=\"9\">%7</text>\n"_s.arg(kNames)
               .arg(top)
               .arg(place(nanoseconds) - kNames, 0, 'f', 1)
               .arg(colour)
               .arg(place(nanoseconds) + 4, 0, 'f', 1)
               .arg(top + 7.5)
               .arg(text.toHtmlEscaped());
}

QString picturedRow(const MeasuredRow& row, double top)
{
    QString text = u"<text x=\"%1\" y=\"%2\" text-anchor=\"end\">%3</text>\n"_s.arg(kNames - 8)
                       .arg(top + 16)
                       .arg(QString::fromStdString(row.name).toHtmlEscaped());
    if (const auto ours = row.of(kOurs))
        text += bar(top, *ours, u"#2a6fbb"_s, duration(*ours));
    if (const auto base = row.of(row.base))
        text += bar(top + 9, *base, u"#9bb8d3"_s, duration(*base));
    if (const MeasuredColumn* const peer = bestPeer(row))
        text += bar(top + 18, peer->taken->median, u"#d08a3c"_s,
                    duration(peer->taken->median) + u' ' + QString::fromStdString(peer->name));
    return text;
}

} // namespace

QString duration(double nanoseconds)
{
    static constexpr std::array kUnits = {"ns", "µs", "ms", "s"};
    size_t unit = 0;
    while (nanoseconds >= 999.5 && unit + 1 < kUnits.size()) {
        nanoseconds /= 1000;
        ++unit;
    }
    const int decimals = nanoseconds < 9.995 ? 2 : nanoseconds < 99.95 ? 1 : 0;
    return QString::number(nanoseconds, 'f', decimals) + u' ' + QString::fromUtf8(kUnits.at(unit));
}

QString textTable(const Results& results)
{
    std::vector<QStringList> lines = {kTitles};
    for (const MeasuredRow& row : results)
        lines.push_back(cells(row));
    std::vector<qsizetype> widths(static_cast<size_t>(kTitles.size()));
    for (const QStringList& line : lines) {
        for (size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], line[static_cast<qsizetype>(i)].size());
    }
    QString text;
    for (const QStringList& line : lines) {
        QString shownLine;
        for (size_t i = 0; i < widths.size(); ++i)
            shownLine += line[static_cast<qsizetype>(i)].leftJustified(widths[i] + 2);
        text += shownLine.trimmed() + u'\n';
    }
    return text + missingPeers(results);
}

QString markdownTable(const Results& results)
{
    QStringList titles = kTitles;
    titles.last() = u"Goal met"_s;
    QString text = u"| "_s + titles.join(u" | "_s) + u" |\n"_s + u"|---"_s.repeated(titles.size()) + u"|\n"_s;
    for (const MeasuredRow& row : results)
        text += u"| "_s + cells(row).join(u" | "_s) + u" |\n"_s;
    const QString missing = missingPeers(results);
    return text + (missing.isEmpty() ? missing : u'\n' + missing);
}

QByteArray json(const Results& results)
{
    QJsonArray rows;
    for (const MeasuredRow& row : results)
        rows.append(object(row));
    return QJsonDocument(rows).toJson();
}

QString svg(const Results& results)
{
    const double height = kTop + kRowHeight * static_cast<double>(results.size()) + 10;
    QString text = u"<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 1000 %1\" font-family=\"sans-serif\" "
                   u"font-size=\"12\">\n<rect width=\"1000\" height=\"%1\" fill=\"#ffffff\"/>\n"_s.arg(height);
    text +=
        u"<text x=\"%1\" y=\"16\" font-size=\"11\"><tspan fill=\"#2a6fbb\">ours</tspan>, <tspan fill=\"#6f93b5\">"
        u"what its goal is a multiple of</tspan>, <tspan fill=\"#d08a3c\">the best peer</tspan></text>\n"_s.arg(kNames);
    for (int power = 1; power <= 9; ++power) {
        const double nanoseconds = std::pow(10.0, power);
        const double x = place(nanoseconds);
        text += u"<line x1=\"%1\" x2=\"%1\" y1=\"38\" y2=\"%2\" stroke=\"#e0e0e0\"/>\n"
                u"<text x=\"%1\" y=\"34\" font-size=\"9\" text-anchor=\"middle\">%3</text>\n"_s.arg(x)
                    .arg(height - 8)
                    .arg(duration(nanoseconds).remove(QRegularExpression(u"\\.0+"_s)));
    }
    double top = kTop;
    for (const MeasuredRow& row : results) {
        text += picturedRow(row, top);
        top += kRowHeight;
    }
    return text + u"</svg>\n"_s;
}

QString machine()
{
    QFile processors(u"/proc/cpuinfo"_s);
    QString model = QSysInfo::currentCpuArchitecture();
    if (processors.open(QIODevice::ReadOnly)) {
        static const QRegularExpression form(u"model name\\s*: (.*)"_s);
        const auto match = form.match(QString::fromUtf8(processors.readAll()));
        model = match.hasMatch() ? match.captured(1) : model;
    }
    return u"%1 × %2, Linux %3, %4, Qt %5"_s.arg(QThread::idealThreadCount())
        .arg(model, QSysInfo::kernelVersion(), QSysInfo::prettyProductName(), QString::fromLatin1(qVersion()));
}

void replaceInDocument(const QString& path, const QString& name, const QString& text)
{
    QFile document(path);
    require(document.open(QIODevice::ReadOnly), "the document");
    QString all = QString::fromUtf8(document.readAll());
    const QString first = u"<!-- %1 -->\n"_s.arg(name);
    const qsizetype begin = all.indexOf(first);
    const qsizetype end = all.indexOf(u"<!-- /%1 -->"_s.arg(name), begin);
    require(begin >= 0 && end >= 0, "the document's marks");
    all.replace(begin + first.size(), end - begin - first.size(), text);
    QSaveFile replaced(path);
    require(replaced.open(QIODevice::WriteOnly) && replaced.write(all.toUtf8()) >= 0 && replaced.commit(),
            "writing the document");
}

} // namespace bench
