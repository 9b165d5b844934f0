// The language of the window.
#include "qml/handset/Language.h"

#include <QtGui/QGuiApplication>

using namespace Qt::StringLiterals;

namespace zyn::window {

Language::Language(const QString& code)
{
    const QLocale locale = code.isEmpty() ? QLocale() : QLocale(code);
    m_isTranslated = m_texts.load(locale, u"zyn-handset"_s, u"_"_s, u":/i18n"_s);
    // Otherwise the texts are those of the sources, whose plurals are in a translation, too.
    if (m_isTranslated || m_texts.load(u":/i18n/zyn-handset_en.qm"_s))
        QCoreApplication::installTranslator(&m_texts);
    if (code.isEmpty())
        return;
    QLocale::setDefault(locale);
    QGuiApplication::setLayoutDirection(locale.textDirection());
}

} // namespace zyn::window
