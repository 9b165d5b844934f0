// The elements of a picture in SVG.
#include "tools/chart/SvgWriter.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr char kTitleId[] = "chart-title";
constexpr char kDescriptionId[] = "chart-description";

QString px(int value)
{
    return QString::number(value);
}

QString latin1(const char* text)
{
    return QLatin1String(text);
}

} // namespace

SvgWriter::SvgWriter()
    : m_xml(&m_svg)
{
    m_xml.setAutoFormatting(true);
    m_xml.setAutoFormattingIndent(1);
}

void SvgWriter::begin(int width, int height, const QString& title, const QString& description)
{
    m_xml.writeStartDocument();
    beginElement("svg", {{"xmlns", u"http://www.w3.org/2000/svg"_s},
                         {"width", px(width)},
                         {"height", px(height)},
                         {"viewBox", u"0 0 %1 %2"_s.arg(px(width), px(height))},
                         {"role", u"img"_s},
                         {"aria-labelledby", latin1(kTitleId) + u' ' + latin1(kDescriptionId)}});
    textElement("title", {{"id", latin1(kTitleId)}}, title);
    textElement("desc", {{"id", latin1(kDescriptionId)}}, description);
}

void SvgWriter::style(const QString& rules)
{
    textElement("style", {}, rules);
}

QByteArray SvgWriter::finish()
{
    m_xml.writeEndDocument();
    return m_svg;
}

void SvgWriter::beginGroup(const QString& styleClass)
{
    beginElement("g", {{"class", styleClass}});
}

void SvgWriter::endGroup()
{
    m_xml.writeEndElement();
}

void SvgWriter::tooltip(const QString& text)
{
    textElement("title", {}, text);
}

void SvgWriter::text(const char* styleClass, int x, int y, const QString& content)
{
    text(styleClass, x, y, "", QString(), content);
}

void SvgWriter::text(const char* styleClass, int x, int y, const char* prefixClass, const QString& prefix,
                     const QString& content)
{
    beginElement("text", {{"class", latin1(styleClass)}, {"x", px(x)}, {"y", px(y)}});
    if (!prefix.isEmpty())
        textElement("tspan", {{"class", latin1(prefixClass)}}, prefix);
    m_xml.writeCharacters(content);
    m_xml.writeEndElement();
}

void SvgWriter::rectangle(const char* styleClass, int x, int y, int width, int height, int corner)
{
    emptyElement("rect", {{"class", latin1(styleClass)},
                          {"x", px(x)},
                          {"y", px(y)},
                          {"width", px(width)},
                          {"height", px(height)},
                          {"rx", px(corner)}});
}

void SvgWriter::circle(const char* styleClass, int x, int y, int radius)
{
    emptyElement("circle", {{"class", latin1(styleClass)}, {"cx", px(x)}, {"cy", px(y)}, {"r", px(radius)}});
}

void SvgWriter::path(const char* styleClass, const QString& steps)
{
    emptyElement("path", {{"class", latin1(styleClass)}, {"d", steps}});
}

void SvgWriter::beginElement(const char* name, Attributes attributes)
{
    m_xml.writeStartElement(latin1(name));
    for (const auto& [attribute, value] : attributes)
        m_xml.writeAttribute(latin1(attribute), value);
}

void SvgWriter::emptyElement(const char* name, Attributes attributes)
{
    m_xml.writeEmptyElement(latin1(name));
    for (const auto& [attribute, value] : attributes)
        m_xml.writeAttribute(latin1(attribute), value);
}

void SvgWriter::textElement(const char* name, Attributes attributes, const QString& content)
{
    beginElement(name, attributes);
    m_xml.writeCharacters(content);
    m_xml.writeEndElement();
}

} // namespace zyn::tool
