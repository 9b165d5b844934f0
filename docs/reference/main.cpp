// Writes the manual pages of the public headers from what Doxygen has read in them: a page for each header, and for
// each class, function, type and variable that it declares a link to it. PAGE_DIR has no page before.
//
// usage: zyn-reference XML_DIR PAGE_DIR DATE SOURCE     SOURCE is the name and version that the pages show
#include "docs/reference/RoffPage.h"
#include "docs/reference/XmlNode.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::reference {

namespace {

// The sections of a file and of a class, by Doxygen's names, in the order in which a page has them. Private ones are
// left out, and so are friends.
constexpr std::pair<QLatin1StringView, QLatin1StringView> kSections[] = {
    {"define"_L1, "Macros"_L1},
    {"enum"_L1, "Enumerations"_L1},
    {"typedef"_L1, "Types"_L1},
    {"public-type"_L1, "Types"_L1},
    {"var"_L1, "Variables"_L1},
    {"func"_L1, "Functions"_L1},
    {"public-static-attrib"_L1, "Constants"_L1},
    {"public-attrib"_L1, "Fields"_L1},
    {"public-static-func"_L1, "Static functions"_L1},
    {"public-func"_L1, "Functions"_L1},
    {"user-defined"_L1, ""_L1},
    {"public-slot"_L1, "Slots"_L1},
    {"signal"_L1, "Signals"_L1},
    {"protected-func"_L1, "For subclasses"_L1},
};

// The text within a paragraph; a list in it is not part of that.
Roff inlineText(const XmlNode& node)
{
    Roff text;
    for (const XmlNode& child : node.children) {
        if (child.name.isEmpty())
            text += prose(child.text);
        else if (child.name == "computeroutput"_L1)
            text += italic(child.plainText());
        else if (child.name == "ref"_L1)
            text += bold(child.plainText());
        else if (child.name != "parameterlist"_L1 && child.name != "simplesect"_L1 && child.name != "table"_L1)
            text += inlineText(child);
    }
    return text.simplified();
}

void writeTable(const XmlNode& table, RoffPage& page)
{
    QStringList rows;
    for (const XmlNode* row : table.all(u"row"_s)) {
        QStringList cells;
        for (const XmlNode* cell : row->all(u"entry"_s))
            cells += prose(cell->plainText());
        rows += cells.join(", "_L1);
    }
    page.lines(rows);
}

void writeParagraph(const XmlNode& paragraph, RoffPage& page)
{
    page.paragraph(inlineText(paragraph));
    for (const XmlNode* list : paragraph.all(u"parameterlist"_s)) {
        for (const XmlNode* item : list->all(u"parameteritem"_s)) {
            page.term({italic(item->child(u"parameternamelist"_s).plainText())});
            page.paragraph(inlineText(item->child(u"parameterdescription"_s)));
            page.endTerm();
        }
    }
    for (const XmlNode* result : paragraph.all(u"simplesect"_s))
        page.paragraph((result->attribute(u"kind"_s) == "return"_L1 ? "Returns "_L1 : ""_L1) + inlineText(*result));
    for (const XmlNode* table : paragraph.all(u"table"_s))
        writeTable(*table, page);
}

void writeParagraphs(const XmlNode& text, RoffPage& page)
{
    for (const XmlNode* paragraph : text.all(u"para"_s))
        writeParagraph(*paragraph, page);
}

void writeDescription(const XmlNode& described, RoffPage& page)
{
    writeParagraphs(described.child(u"briefdescription"_s), page);
    writeParagraphs(described.child(u"detaileddescription"_s), page);
}

QString descriptionOf(const XmlNode& described)
{
    return described.child(u"briefdescription"_s).plainText() + described.child(u"detaileddescription"_s).plainText();
}

// As it is declared, without the class that it belongs to.
QString declarationOf(const XmlNode& member)
{
    const QString name = member.child(u"name"_s).plainText();
    const QString kind = member.attribute(u"kind"_s);
    if (kind == "enum"_L1) {
        const QString type = member.child(u"type"_s).plainText();
        return "enum "_L1 + name + (type.isEmpty() ? QString() : " : "_L1 + type);
    }
    if (kind == "define"_L1)
        return "#define "_L1 + name;
    QString declaration = member.child(u"definition"_s).plainText();
    static const QString kOfClass = u"\\b(\\w+(< \\w+ >)?::)+(?=%1)"_s;
    declaration.remove(QRegularExpression(kOfClass.arg(QRegularExpression::escape(name))));
    const QString arguments = member.child(u"argsstring"_s).plainText();
    if (!declaration.endsWith(arguments)) // which are also the bounds of an array
        declaration += arguments;
    if (kind == "variable"_L1 && !member.child(u"initializer"_s).plainText().isEmpty())
        declaration += ' '_L1 + member.child(u"initializer"_s).plainText();
    static const QRegularExpression kMark(u" ([*&]+)"_s);
    return declaration.replace(kMark, u"\\1 "_s).replace(" )"_L1, ")"_L1).simplified();
}

bool isPrivate(const XmlNode& member)
{
    return member.attribute(u"prot"_s) == "private"_L1 || member.attribute(u"kind"_s) == "friend"_L1;
}

// What nobody calls: a destructor without a word, or a function that there is not.
bool saysNothing(const XmlNode& member)
{
    const QString arguments = member.child(u"argsstring"_s).plainText();
    return descriptionOf(member).isEmpty() && member.attribute(u"kind"_s) == "function"_L1
           && (member.child(u"name"_s).plainText().startsWith('~'_L1) || arguments.endsWith("=delete"_L1)
               || arguments.endsWith("=default"_L1));
}

std::vector<const XmlNode*> membersIn(const XmlNode& section)
{
    std::vector<const XmlNode*> members;
    for (const XmlNode* member : section.all(u"memberdef"_s)) {
        if (!isPrivate(*member) && !saysNothing(*member))
            members.push_back(member);
    }
    return members;
}

void writeValue(const XmlNode& value, RoffPage& page)
{
    const QString text = value.child(u"name"_s).plainText() + ' '_L1 + value.child(u"initializer"_s).plainText();
    if (descriptionOf(value).isEmpty()) {
        page.lines({bold(text)});
        return;
    }
    page.term({bold(text)});
    writeDescription(value, page);
    page.endTerm();
}

void writeMembers(const std::vector<const XmlNode*>& members, RoffPage& page)
{
    for (auto member = members.begin(); member != members.end();) {
        // What is said of a group is said once.
        const QString description = descriptionOf(**member);
        const bool hasValues = !(*member)->all(u"enumvalue"_s).empty();
        QStringList declarations;
        auto next = member;
        do
            declarations += bold(declarationOf(**next++));
        while (next != members.end() && descriptionOf(**next) == description && !hasValues
               && (*next)->all(u"enumvalue"_s).empty());
        if (description.isEmpty() && !hasValues) {
            page.lines(declarations);
        } else {
            page.term(declarations);
            writeDescription(**member, page);
            for (const XmlNode* value : (*member)->all(u"enumvalue"_s))
                writeValue(*value, page);
            page.endTerm();
        }
        member = next;
    }
}

// A group of its own is named by who wrote it, else by what is in it.
QString headOf(const XmlNode& section, const XmlNode& member, QLatin1StringView title)
{
    const QString header = section.child(u"header"_s).plainText();
    if (!header.isEmpty() || !title.isEmpty())
        return header.isEmpty() ? QString(title) : header;
    const QString kind = member.attribute(u"kind"_s);
    return kind == "enum"_L1 ? u"Enumerations"_s : kind == "variable"_L1 ? u"Variables"_s : u"Functions"_s;
}

void writeSections(const XmlNode& compound, RoffPage& page)
{
    QString last;
    for (const auto& [kind, title] : kSections) {
        for (const XmlNode* section : compound.all(u"sectiondef"_s)) {
            const std::vector<const XmlNode*> members = membersIn(*section);
            if (section->attribute(u"kind"_s) != kind || members.empty())
                continue;
            const QString head = headOf(*section, *members.front(), title);
            if (head != last)
                page.subsection(prose(last = head));
            writeParagraphs(section->child(u"description"_s), page);
            writeMembers(members, page);
        }
    }
}

QString declarationOfClass(const XmlNode& theClass)
{
    QStringList bases;
    for (const XmlNode* base : theClass.all(u"basecompoundref"_s)) {
        if (base->attribute(u"prot"_s) == "public"_L1)
            bases += "public "_L1 + base->plainText();
    }
    QString head;
    for (const XmlNode* parameter : theClass.child(u"templateparamlist"_s).all(u"param"_s))
        head += (head.isEmpty() ? "template<"_L1 : ", "_L1) + parameter->plainText();
    head += (head.isEmpty() ? ""_L1 : "> "_L1) + theClass.attribute(u"kind"_s) + ' '_L1
            + theClass.child(u"compoundname"_s).plainText();
    return bases.isEmpty() ? head : head + " : "_L1 + bases.join(", "_L1);
}

/// A header with the classes that it declares.
struct Header
{
    QString path; ///< as it is included
    XmlNode file;
    std::vector<XmlNode> classes;
};

// What of the header has a page of its own, and the header itself first. Macros and names without an underscore, such
// as those of integers, are not looked up.
QStringList namesIn(const Header& header)
{
    QStringList names{QFileInfo(header.path).completeBaseName()};
    for (const XmlNode& theClass : header.classes)
        names += theClass.child(u"compoundname"_s).plainText();
    for (const XmlNode* section : header.file.all(u"sectiondef"_s)) {
        for (const XmlNode* member : section->all(u"memberdef"_s)) {
            const QString name = member->child(u"name"_s).plainText();
            if (member->attribute(u"kind"_s) != "define"_L1 && name.contains('_'_L1))
                names += name;
        }
    }
    names.removeDuplicates();
    return names;
}

// The first sentence, as the other half of one that begins with the names.
QString briefOf(const Header& header)
{
    QString brief = header.file.child(u"briefdescription"_s).plainText();
    if (brief.endsWith('.'_L1))
        brief.chop(1);
    if (brief.size() > 1 && brief[1].isLower())
        brief[0] = brief[0].toLower();
    return brief;
}

QByteArray pageOf(const Header& header, const QStringList& names, const QString& date, const QString& source)
{
    RoffPage page(names.front(), date, source);
    page.section(u"NAME"_s);
    page.paragraph(code(names.join(", "_L1)) + " \\- "_L1 + prose(briefOf(header)));
    page.section(u"SYNOPSIS"_s);
    QStringList synopsis{bold("#include <"_L1 + header.path + '>'_L1)};
    for (const XmlNode& theClass : header.classes)
        synopsis += bold(declarationOfClass(theClass));
    page.lines(synopsis);
    page.section(u"DESCRIPTION"_s);
    if (header.classes.size() == 1)
        writeDescription(header.classes.front(), page);
    else
        writeParagraphs(header.file.child(u"briefdescription"_s), page);
    writeParagraphs(header.file.child(u"detaileddescription"_s), page);
    writeSections(header.file, page);
    for (const XmlNode& theClass : header.classes) {
        if (header.classes.size() > 1) {
            page.section(code(theClass.child(u"compoundname"_s).plainText()));
            writeDescription(theClass, page);
        }
        writeSections(theClass, page);
    }
    page.section(u"SEE ALSO"_s);
    page.paragraph(bold(u"zynphone"_s) + "(7)"_L1);
    return page.text();
}

// Headers whose declarations have no page, such as those that declare macros only, are none.
std::optional<Header> readHeader(const QString& folder, const QString& id)
{
    std::optional<XmlNode> document = readXml(folder + id + ".xml"_L1);
    if (!document)
        std::exit(EXIT_FAILURE);
    Header header;
    header.file = document->child(u"compounddef"_s);
    header.path = header.file.child(u"location"_s).attribute(u"file"_s);
    if (!header.path.endsWith(".h"_L1))
        return std::nullopt;
    bool declares = false;
    for (const XmlNode* section : header.file.all(u"sectiondef"_s))
        declares = declares || section->attribute(u"kind"_s) != "define"_L1;
    for (const XmlNode* reference : header.file.all(u"innerclass"_s)) {
        document = readXml(folder + reference->attribute(u"refid"_s) + ".xml"_L1);
        if (!document)
            std::exit(EXIT_FAILURE);
        header.classes.push_back(document->child(u"compounddef"_s));
    }
    return declares || !header.classes.empty() ? std::optional(std::move(header)) : std::nullopt;
}

bool write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush())
        return true;
    std::fprintf(stderr, "%s: %s\n", qPrintable(path), qPrintable(file.errorString()));
    return false;
}

bool writePages(const QString& from, const QString& to, const QString& date, const QString& source)
{
    const std::optional<XmlNode> index = readXml(from + "index.xml"_L1);
    if (!index)
        return false;
    QDir().mkpath(to);
    for (const XmlNode* compound : index->all(u"compound"_s)) {
        if (compound->attribute(u"kind"_s) != "file"_L1)
            continue;
        const std::optional<Header> header = readHeader(from, compound->attribute(u"refid"_s));
        if (!header)
            continue;
        const QStringList names = namesIn(*header);
        const QString page = names.front() + ".3"_L1;
        if (!write(to + page, pageOf(*header, names, date, source)))
            return false;
        for (const QString& name : names.mid(1)) {
            const QString link = to + name + ".3"_L1;
            if (!QFile::link(page, link)) {
                std::fprintf(stderr, "%s: cannot be made\n", qPrintable(link));
                return false;
            }
        }
    }
    return true;
}

} // namespace

} // namespace zyn::reference

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fputs("usage: zyn-reference XML_DIR PAGE_DIR DATE SOURCE\n", stderr);
        return 2;
    }
    const auto argument = [argv](int i) { return QString::fromLocal8Bit(argv[i]); };
    const bool written =
        zyn::reference::writePages(argument(1) + '/'_L1, argument(2) + '/'_L1, argument(3), argument(4));
    return written ? EXIT_SUCCESS : EXIT_FAILURE;
}
