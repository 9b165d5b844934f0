// The language of the window.
#pragma once

#include <QtCore/QLocale>
#include <QtCore/QTranslator>

namespace zyn::window {

/**
 * Has texts, dates and the direction of reading follow a language, as long as it exists.
 *
 * Made after the application and before what shows texts.
 */
class Language
{
public:
    /// @param code  as "de" or "pt_BR"; empty for the system's
    explicit Language(const QString& code = {});

    /// Whether there are texts in it.
    bool isTranslated() const { return m_isTranslated; }

private:
    QTranslator m_texts;
    bool m_isTranslated;
};

} // namespace zyn::window
