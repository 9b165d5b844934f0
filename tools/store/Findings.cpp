// Lines about the files of a store: what is wrong with them, or what was done to them.
#include "tools/store/Findings.h"

#include "tools/zynphone/Console.h"

#include <QtCore/QJsonObject>

using namespace Qt::StringLiterals;

namespace zyn::tool {

void Findings::add(const QString& name, const QString& text)
{
    add(name, "", Problem::kWholeFile, text);
}

void Findings::add(const QString& name, const char* placeWord, int place, const QString& text)
{
    m_findings.push_back({name, placeWord, {place, text}});
}

void Findings::add(const QString& name, const FileFindings& found)
{
    for (const Problem& problem : found.problems)
        m_findings.push_back({name, found.placeWord, problem});
}

void Findings::add(const Findings& others)
{
    m_findings.insert(m_findings.end(), others.m_findings.begin(), others.m_findings.end());
}

QString Findings::text() const
{
    QString lines;
    for (const Finding& finding : m_findings)
        lines += printable(finding.file + u": "_s + placeText(finding.placeWord, finding.problem)) + u'\n';
    return lines;
}

QJsonArray Findings::json(const char* textKey) const
{
    QJsonArray objects;
    for (const auto& [file, placeWord, problem] : m_findings) {
        const QJsonValue slot = problem.place == Problem::kWholeFile ? QJsonValue() : QJsonValue(problem.place);
        objects += QJsonObject{{u"file"_s, file}, {u"slot"_s, slot}, {QLatin1String(textKey), problem.text}};
    }
    return objects;
}

} // namespace zyn::tool
