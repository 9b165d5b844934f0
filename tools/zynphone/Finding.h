// What a check of files or of the environment finds: for inspect, its --verify and --repair, and doctor.
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
    Note, ///< not a fault, but it may explain missing output
    Wrong,
};

struct Finding
{
    /// A record in a file.
    struct Position
    {
        const char* word; ///< its kind in this file
        int number;       ///< from 0
    };

    Severity severity = Severity::Wrong;
    QString subject;                       ///< the file, path, channel or variable concerned
    std::optional<Position> position = {}; ///< unset if it concerns the whole subject
    QString text;                          ///< the fact, as part of a sentence
    QString remedy = {};                   ///< how to fix it; empty if unknown

    /// The text, after the position if there is one.
    QString positionedText() const;
};

inline Finding ok(QString subject, QString text)
{
    return {.severity = Severity::Ok, .subject = std::move(subject), .text = std::move(text)};
}

inline Finding note(QString subject, QString text, QString remedy = {})
{
    return {.severity = Severity::Note,
            .subject = std::move(subject),
            .text = std::move(text),
            .remedy = std::move(remedy)};
}

inline Finding wrong(QString subject, QString text, QString remedy)
{
    return {.subject = std::move(subject), .text = std::move(text), .remedy = std::move(remedy)};
}

class Findings : public std::vector<Finding>
{
public:
    using std::vector<Finding>::vector;

    /// @{ Adds a fault of @p subject, or of a position in it.
    void add(const QString& subject, const QString& text);
    void add(const QString& subject, const QStringList& texts);
    void add(const QString& subject, Finding::Position position, const QString& text);
    void add(const QString& subject, Finding::Position position, const QStringList& texts);
    /// @}
    void add(const Findings& others);

    /// The texts with their positions.
    QStringList positionedTexts() const;
    /// One line each: subject, position and text.
    QString text() const;
    /// One object each, with the fields file, slot (null for a whole file) and @p textKey.
    QJsonArray json(const char* textKey) const;
};

} // namespace zyn::tool
