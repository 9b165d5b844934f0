// What a look at the desk has found.
#pragma once

#include <QtCore/QString>

#include <vector>

namespace zyn::tool::doctor {

enum class Level {
    Ok,
    Note, ///< nothing is wrong, but it may explain what is missed
    Wrong,
};

struct Finding
{
    Level level;
    QString subject; ///< the path, channel or variable concerned
    QString text;    ///< what is the case, a part of a sentence
    QString remedy;  ///< what to do about it; of what is wrong only
};

using Findings = std::vector<Finding>;

inline Finding ok(QString subject, QString text)
{
    return {Level::Ok, std::move(subject), std::move(text), {}};
}

inline Finding note(QString subject, QString text)
{
    return {Level::Note, std::move(subject), std::move(text), {}};
}

inline Finding wrong(QString subject, QString text, QString remedy)
{
    return {Level::Wrong, std::move(subject), std::move(text), std::move(remedy)};
}

} // namespace zyn::tool::doctor
