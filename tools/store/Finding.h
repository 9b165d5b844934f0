// What is wrong with the files of a store, and how it is told.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "tools/zynphone/Table.h"

#include <QtCore/QByteArray>
#include <QtCore/QJsonArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <algorithm>
#include <span>
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

    bool isValid() const { return problems.empty(); }
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

/// No file of a store is longer, in bytes.
inline constexpr qsizetype kStoreFileLimit = qsizetype{16} * 1024 * 1024;

/// What a place in a file of records is called.
inline constexpr char kSlotWord[] = "slot";

/// The read flags that have a meaning.
inline constexpr uint8_t kKnownReadFlags = PHONE_ENG_RecentCall::kRead | PHONE_ENG_RecentCall::kStrictRead;

/// What is wrong with the header that @p image begins with; then its slots may be anything.
QStringList headerProblems(const QByteArray& image);

/// A size that is not the one that @p expected says, or nothing.
QStringList sizeProblems(const QByteArray& image, qint64 expected);

/// The flags of @p call, which is in use, that have no meaning.
QStringList flagProblems(const PHONE_ENG_RecentCall& call);

/// The texts of @p call that are not ended.
QStringList textProblems(const PHONE_ENG_RecentCall& call);

inline bool isTerminated(std::span<const char> field)
{
    return std::ranges::find(field, '\0') != field.end();
}

class Findings
{
public:
    /// About the file @p name as a whole.
    void add(const QString& name, const QString& text);
    /// About the place @p place of it, which is called @p placeWord.
    void add(const QString& name, const char* placeWord, int place, const QString& text);
    /// What @p found says about the file @p name.
    void add(const QString& name, const FileFindings& found);

    void add(const Findings& others);

    bool isEmpty() const { return m_findings.empty(); }
    qsizetype count() const { return static_cast<qsizetype>(m_findings.size()); }

    /// One line each: the file, the place and the text.
    QString text() const;
    /// One object each, with the fields file, slot (null for a file as a whole) and @p textKey.
    QJsonArray json(const char* textKey) const;

private:
    struct Finding
    {
        QString file;
        const char* placeWord;
        Problem problem;
    };

    std::vector<Finding> m_findings;
};

} // namespace zyn::tool
