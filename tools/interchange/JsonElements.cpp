// Where the elements of a JSON array stand.
#include "tools/interchange/JsonElements.h"

namespace zyn::tool {

int JsonElements::nextLine()
{
    bool isBetween = false;
    for (; m_at < m_text.size(); ++m_at) {
        const char character = m_text[m_at];
        const bool isBlank = character == ' ' || character == '\t' || character == '\r' || character == '\n';
        if (isBetween && !isBlank)
            break;
        if (character == '\n')
            ++m_line;
        else if (character == '"')
            passString();
        else if (character == '[' || character == '{')
            isBetween = m_depth++ == 0;
        else if (character == ']' || character == '}')
            --m_depth;
        else if (character == ',')
            isBetween = m_depth == 1;
    }
    return m_line;
}

/// Goes to the end of the string that begins here.
void JsonElements::passString()
{
    for (++m_at; m_at < m_text.size() && m_text[m_at] != '"'; ++m_at) {
        if (m_text[m_at] == '\\')
            ++m_at;
    }
}

} // namespace zyn::tool
