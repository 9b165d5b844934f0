// A kind of store file that can be inspected.
#pragma once

#include "tools/zynphone/Table.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace zyn::tool {

/// What is wrong with a file, or with one place in it.
struct Problem
{
    int place; ///< from 0; kWholeFile when it is about no single place
    QString text;

    static constexpr int kWholeFile = -1;
};

class Problems : public std::vector<Problem>
{
public:
    Problems() = default;
    /// Problems of the file as a whole.
    explicit Problems(const QStringList& texts) { add(Problem::kWholeFile, texts); }

    void add(int place, const QString& text) { push_back({place, text}); }
    void add(int place, const QStringList& texts)
    {
        for (const QString& text : texts)
            add(place, text);
    }
};

/// What was found out about one file.
struct FileFindings
{
    QString kind;          ///< what the file is, for people
    const char* placeWord; ///< what a place in it is called
    Problems problems;     ///< none for a sound file
    Table usedSlots;

    bool isSound() const { return problems.empty(); }
};

/// @p problem as a line tells it; @p placeWord is what its place is called.
QString placeText(const char* placeWord, const Problem& problem);
/// That of every problem in @p findings.
QStringList problemTexts(const FileFindings& findings);

/// How a kind of file is told from others, by its name or else by its bytes, and checked.
struct FileKind
{
    bool (*isNamed)(const QString& name);
    bool (*isShaped)(const QByteArray& image);
    FileFindings (*check)(const QString& name, const QByteArray& image);
};

} // namespace zyn::tool
