// A file of XML as a tree, for what Doxygen writes.
#pragma once

#include <QtCore/QString>

#include <map>
#include <optional>
#include <vector>

namespace zyn::reference {

/// An element, or, without a name, a text between elements.
struct XmlNode
{
    QString name;
    QString text;
    std::map<QString, QString> attributes;
    std::vector<XmlNode> children;

    /// Empty without such an attribute.
    QString attribute(const QString& key) const;
    /// The first child of that name; an empty element when there is none.
    const XmlNode& child(const QString& key) const;
    /// All children of that name.
    std::vector<const XmlNode*> all(const QString& key) const;
    /// The text in it and in all below it, with single blanks.
    QString plainText() const;
};

/// The document's element; says on standard error what hinders it.
std::optional<XmlNode> readXml(const QString& path);

} // namespace zyn::reference
