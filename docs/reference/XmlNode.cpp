// Reads a file of XML into a tree.
#include "docs/reference/XmlNode.h"

#include <QtCore/QFile>
#include <QtCore/QXmlStreamReader>

#include <cstdio>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::reference {

namespace {

// Deeper than any comment, so that a damaged file cannot exhaust the stack.
constexpr int kDeepest = 100;

XmlNode readElement(QXmlStreamReader& reader, int depth)
{
    XmlNode node;
    node.name = reader.name().toString();
    const QXmlStreamAttributes attributes = reader.attributes();
    for (const QXmlStreamAttribute& attribute : attributes)
        node.attributes[attribute.name().toString()] = attribute.value().toString();
    if (depth == kDeepest)
        reader.raiseError(u"too deep"_s);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            node.children.push_back(readElement(reader, depth + 1));
            break;
        case QXmlStreamReader::Characters:
            node.children.push_back({{}, reader.text().toString(), {}, {}});
            break;
        case QXmlStreamReader::EndElement:
            return node;
        default:
            break;
        }
    }
    return node;
}

void append(const XmlNode& node, QString& text)
{
    text += node.text;
    for (const XmlNode& child : node.children)
        append(child, text);
}

} // namespace

QString XmlNode::attribute(const QString& key) const
{
    const auto found = attributes.find(key);
    return found == attributes.end() ? QString() : found->second;
}

const XmlNode& XmlNode::child(const QString& key) const
{
    static const XmlNode nothing{};
    const std::vector<const XmlNode*> found = all(key);
    return found.empty() ? nothing : *found.front();
}

std::vector<const XmlNode*> XmlNode::all(const QString& key) const
{
    std::vector<const XmlNode*> found;
    for (const XmlNode& node : children) {
        if (node.name == key)
            found.push_back(&node);
    }
    return found;
}

QString XmlNode::plainText() const
{
    QString whole;
    append(*this, whole);
    return whole.simplified();
}

std::optional<XmlNode> readXml(const QString& path)
{
    QFile file(path);
    QString fault;
    if (file.open(QIODevice::ReadOnly)) {
        QXmlStreamReader reader(&file);
        XmlNode document;
        if (reader.readNextStartElement())
            document = readElement(reader, 0);
        if (!reader.hasError())
            return document;
        fault = reader.errorString();
    } else {
        fault = file.errorString();
    }
    std::fprintf(stderr, "%s: %s\n", qPrintable(path), qPrintable(fault));
    return std::nullopt;
}

} // namespace zyn::reference
