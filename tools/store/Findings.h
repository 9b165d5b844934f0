// Lines about the files of a store: what is wrong with them, or what was done to them.
#pragma once

#include "tools/store/FileKind.h"

#include <QtCore/QJsonArray>
#include <QtCore/QString>

#include <vector>

namespace zyn::tool {

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
