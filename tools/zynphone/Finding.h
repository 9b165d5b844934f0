// What a look at files or at the desk finds: for inspect, its --verify and --repair, and doctor.
#pragma once

#include <QtCore/QJsonArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <utility>
#include <vector>

namespace zyn::tool {

enum class Severity {
    Ok,
    Note, ///< nothing is wrong, but it may explain what is missed
    Wrong,
};

struct Finding
{
    /// A place in a file of records.
    struct Place
    {
        const char* word; ///< what the file calls it
        int number;       ///< from 0
    };

    Severity severity = Severity::Wrong;
    QString subject;                 ///< the file, path, channel or variable concerned
    std::optional<Place> place = {}; ///< nothing when it concerns the subject as a whole
    QString text;                    ///< what is the case, a part of a sentence
    QString remedy = {};             ///< what to do about it; empty when nothing is known

    /// The text behind the place, if there is one.
    QString placedText() const;
};

inline Finding ok(QString subject, QString text)
{
    return {.severity = Severity::Ok, .subject = std::move(subject), .text = std::move(text)};
}

inline Finding note(QString subject, QString text)
{
    return {.severity = Severity::Note, .subject = std::move(subject), .text = std::move(text)};
}

inline Finding wrong(QString subject, QString text, QString remedy)
{
    return {.subject = std::move(subject), .text = std::move(text), .remedy = std::move(remedy)};
}

class Findings : public std::vector<Finding>
{
public:
    using std::vector<Finding>::vector;

    /// @{ That something is wrong with @p subject, or with a place in it.
    void add(const QString& subject, const QString& text);
    void add(const QString& subject, const QStringList& texts);
    void add(const QString& subject, Finding::Place place, const QString& text);
    void add(const QString& subject, Finding::Place place, const QStringList& texts);
    /// @}
    void add(const Findings& others);

    /// The text of each behind its place.
    QStringList placedTexts() const;
    /// One line each: the subject, the place and the text.
    QString text() const;
    /// One object each, with the fields file, slot (null for a file as a whole) and @p textKey.
    QJsonArray json(const char* textKey) const;
};

} // namespace zyn::tool
