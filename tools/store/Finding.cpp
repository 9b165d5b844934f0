// What is wrong with the files of a store, and how it is told.
#include "tools/store/Finding.h"

#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/zynphone/Console.h"

#include <QtCore/QJsonObject>

#include <cstring>

using namespace Qt::StringLiterals;

namespace zyn::tool {

QString placeText(const char* placeWord, const Problem& problem)
{
    if (problem.place == Problem::kWholeFile)
        return problem.text;
    return u"%1 %2: "_s.arg(QLatin1String(placeWord)).arg(problem.place) + problem.text;
}

QStringList problemTexts(const FileFindings& findings)
{
    QStringList texts;
    for (const Problem& problem : findings.problems)
        texts += placeText(findings.placeWord, problem);
    return texts;
}

QStringList headerProblems(const QByteArray& image)
{
    StoreFileHeader header{0, 0};
    if (image.size() < qsizetype{sizeof header})
        return {u"the header is cut short"_s};
    std::memcpy(&header, image.constData(), sizeof header);
    QStringList problems;
    if (header.magic != header.kMagic)
        problems += u"the magic is 0x%1, not 0x%2"_s.arg(header.magic, 8, 16, QLatin1Char('0'))
                        .arg(header.kMagic, 8, 16, QLatin1Char('0'));
    if (header.version != header.kVersion)
        problems += u"the version is %1, not %2"_s.arg(header.version).arg(header.kVersion);
    return problems;
}

QStringList sizeProblems(const QByteArray& image, qint64 expected)
{
    if (image.size() == expected)
        return {};
    return {u"the size is %1 bytes, not %2"_s.arg(image.size()).arg(expected)};
}

QStringList flagProblems(const PHONE_ENG_RecentCall& call)
{
    QStringList problems;
    if ((call.readFlags & ~kKnownReadFlags) != 0)
        problems += u"the read flags are 0x%1"_s.arg(call.readFlags, 2, 16, QLatin1Char('0'));
    if (call.inUse != 1)
        problems += u"the flag of its use is %1"_s.arg(int{call.inUse});
    if (call.completed > 1)
        problems += u"the flag of its completion is %1"_s.arg(call.completed);
    return problems;
}

QStringList textProblems(const PHONE_ENG_RecentCall& call)
{
    QStringList problems;
    if (!isTerminated(call.phoneNumber))
        problems += u"the number has no NUL"_s;
    if (!isTerminated(call.displayName))
        problems += u"the name has no NUL"_s;
    if (!isTerminated(call.pttSessionId))
        problems += u"the session id has no NUL"_s;
    return problems;
}

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
