// Where the elements of a JSON array stand.
#pragma once

#include <QtCore/QByteArrayView>

namespace zyn::tool {

/// Goes through the elements of an array, as the parser that Qt has does not say where they stand.
class JsonElements
{
public:
    /// @p text is sound JSON, an array, and must outlive it.
    explicit JsonElements(QByteArrayView text)
        : m_text(text)
    {}

    /// The line, from 1, on which the next element begins.
    int nextLine();

private:
    void passString();

    const QByteArrayView m_text;
    qsizetype m_at = 0;
    int m_line = 1;
    int m_depth = 0;
};

} // namespace zyn::tool
