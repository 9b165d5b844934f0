// What a check of files or of the environment finds: for inspect, its --verify and --repair, and doctor.
#include "tools/zynphone/Finding.h"

#include "tools/zynphone/Console.h"

#include <QtCore/QJsonObject>

using namespace Qt::StringLiterals;

namespace zyn::tool {

QString Finding::positionedText() const
{
    return position ? u"%1 %2: "_s.arg(QLatin1String(position->word)).arg(position->number) + text : text;
}

void Findings::add(const QString& subject, const QString& text)
{
    push_back({.subject = subject, .text = text});
}

void Findings::add(const QString& subject, const QStringList& texts)
{
    for (const QString& text : texts)
        add(subject, text);
}

void Findings::add(const QString& subject, Finding::Position position, const QString& text)
{
    push_back({.subject = subject, .position = position, .text = text});
}

void Findings::add(const QString& subject, Finding::Position position, const QStringList& texts)
{
    for (const QString& text : texts)
        add(subject, position, text);
}

void Findings::add(const Findings& others)
{
    insert(end(), others.begin(), others.end());
}

QStringList Findings::positionedTexts() const
{
    QStringList texts;
    for (const Finding& finding : *this)
        texts += finding.positionedText();
    return texts;
}

QString Findings::text() const
{
    QString lines;
    for (const Finding& finding : *this)
        lines += printable(finding.subject + u": "_s + finding.positionedText()) + u'\n';
    return lines;
}

QJsonArray Findings::json(const char* textKey) const
{
    QJsonArray objects;
    for (const Finding& finding : *this) {
        const QJsonValue slot = finding.position ? QJsonValue(finding.position->number) : QJsonValue();
        objects += QJsonObject{{u"file"_s, finding.subject}, {u"slot"_s, slot}, {QLatin1String(textKey), finding.text}};
    }
    return objects;
}

} // namespace zyn::tool
