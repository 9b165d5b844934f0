// The elements of a picture in SVG.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QXmlStreamWriter>

#include <initializer_list>
#include <utility>

namespace zyn::tool {

/// Writes one picture, element by element. Places and sizes are pixels; the classes are those of its style.
class SvgWriter
{
public:
    SvgWriter();
    SvgWriter(const SvgWriter&) = delete;
    SvgWriter& operator=(const SvgWriter&) = delete;

    /// The picture's size, and what is told to those who do not see it.
    void begin(int width, int height, const QString& title, const QString& description);
    void style(const QString& rules);
    /// Ends the picture, and gives it.
    QByteArray finish();

    /// What follows, until endGroup(), belongs together.
    void beginGroup(const QString& styleClass);
    void endGroup();
    /// What a viewer shows for the group that has just begun.
    void tooltip(const QString& text);

    void text(const char* styleClass, int x, int y, const QString& content);
    /// A text whose beginning, if it is not empty, has the class @p prefixClass.
    void text(const char* styleClass, int x, int y, const char* prefixClass, const QString& prefix,
              const QString& content);
    void rectangle(const char* styleClass, int x, int y, int width, int height, int corner);
    void circle(const char* styleClass, int x, int y, int radius);
    void path(const char* styleClass, const QString& steps);

private:
    using Attributes = std::initializer_list<std::pair<const char*, QString>>;
    void beginElement(const char* name, Attributes attributes);
    void emptyElement(const char* name, Attributes attributes);
    void textElement(const char* name, Attributes attributes, const QString& content);

    QByteArray m_svg;
    QXmlStreamWriter m_xml;
};

} // namespace zyn::tool
