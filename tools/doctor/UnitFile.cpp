// Which programs the service manager's units start.
#include "tools/doctor/UnitFile.h"

#include "platform/posix/File_p.h"
#include "tools/doctor/Fault.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QStandardPaths>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr qint64 kUnitLimit = qint64{256} * 1024;
/// Far above the number of services on any machine.
constexpr qsizetype kMostUnits = 4096;
constexpr qsizetype kMostDropIns = 64;

QStringList names(const QByteArray& directory, const QString& pattern, QDir::Filters filters)
{
    // Links to nowhere and to devices, which mask a unit, are no files to QDir::Files alone.
    return QDir(QFile::decodeName(directory)).entryList({pattern}, filters | QDir::System | QDir::Hidden);
}

/// The lines of a unit, of which those that end in a backslash go on in the next that is no comment.
QList<QByteArray> linesOf(const QByteArray& text)
{
    QList<QByteArray> lines;
    bool goesOn = false;
    for (const QByteArray& part : text.split('\n')) {
        const QByteArray line = part.trimmed();
        if (line.startsWith('#') || line.startsWith(';'))
            continue;
        const bool isCut = line.endsWith('\\');
        const QByteArray rest = isCut ? line.chopped(1) : line;
        if (goesOn)
            lines.last() += ' ' + rest;
        else
            lines += rest;
        goesOn = isCut;
    }
    return lines;
}

/// The first word of a command, without the marks before it and its quotes; empty if it is not closed.
QByteArray firstWord(QByteArray command)
{
    while (!command.isEmpty() && QByteArray("@-:+!|").contains(command.front()))
        command.remove(0, 1);
    if (!command.startsWith('"') && !command.startsWith('\''))
        return command.simplified().split(' ').first();
    const qsizetype end = command.indexOf(command.front(), 1);
    return end < 0 ? QByteArray() : command.sliced(1, end - 1);
}

/// @p word with the specifiers replaced; empty if it has one that only the service manager knows.
QByteArray expanded(const QByteArray& word)
{
    QByteArray result;
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (word.at(i) != '%') {
            result += word.at(i);
            continue;
        }
        const QByteArray specifier = word.mid(++i, 1);
        if (specifier == "h")
            result += QFile::encodeName(QDir::homePath());
        else if (specifier == "%")
            result += '%';
        else
            return {};
    }
    return result;
}

/// The absolute path of the program of @p command; empty if it cannot be known.
QByteArray programOf(const QByteArray& command)
{
    QByteArray program = expanded(firstWord(command));
    if (program.isEmpty() || program.startsWith('/'))
        return program;
    return QFile::encodeName(QStandardPaths::findExecutable(
        QFile::decodeName(program), {u"/usr/local/sbin"_s, u"/usr/local/bin"_s, u"/usr/sbin"_s, u"/usr/bin"_s}));
}

/// What is read of a file; empty of one that masks what it overrides, too.
QByteArray unitText(const QByteArray& file)
{
    return posix::readWhole(file, kUnitLimit).value_or(QByteArray());
}

void addStarts(const QByteArray& file, std::vector<UnitStart>& starts)
{
    constexpr QByteArrayView kKey = "ExecStart";
    bool isService = false;
    for (const QByteArray& line : linesOf(unitText(file))) {
        if (line.startsWith('['))
            isService = line == "[Service]";
        const qsizetype equals = line.indexOf('=');
        if (!isService || equals < 0 || line.first(equals).trimmed() != kKey)
            continue;
        const QByteArray command = line.sliced(equals + 1).trimmed();
        if (command.isEmpty())
            starts.clear();
        else if (const QByteArray program = programOf(command); !program.isEmpty())
            starts.push_back({file, program});
    }
}

/// The drop-ins of the unit @p name in the order of their names, whatever their directories.
QList<QByteArray> dropIns(const QList<QByteArray>& directories, const QString& name)
{
    QMap<QString, QByteArray> files;
    for (const QByteArray& directory : directories) {
        const QByteArray folder = directory + '/' + QFile::encodeName(name) + ".d";
        for (const QString& file : names(folder, u"*.conf"_s, QDir::Files).mid(0, kMostDropIns)) {
            if (!files.contains(file))
                files.insert(file, folder + '/' + QFile::encodeName(file));
        }
    }
    return files.values();
}

/// The units that others want or require.
QSet<QString> enabledUnits(const QList<QByteArray>& directories)
{
    QSet<QString> enabled;
    for (const QByteArray& directory : directories) {
        for (const QString& pattern : {u"*.wants"_s, u"*.requires"_s}) {
            for (const QString& folder : names(directory, pattern, QDir::Dirs)) {
                const QStringList wanted =
                    names(directory + '/' + QFile::encodeName(folder), u"*.service"_s, QDir::Files);
                enabled += QSet<QString>(wanted.begin(), wanted.end());
            }
        }
    }
    return enabled;
}

} // namespace

std::vector<Unit> unitsIn(const QList<QByteArray>& directories)
{
    QMap<QString, QByteArray> files;
    for (const QByteArray& directory : directories) {
        for (const QString& name : names(directory, u"*.service"_s, QDir::Files)) {
            if (!files.contains(name) && files.size() < kMostUnits)
                files.insert(name, directory + '/' + QFile::encodeName(name));
        }
    }
    const QSet<QString> enabled = enabledUnits(directories);
    std::vector<Unit> units;
    for (const auto& [name, file] : files.asKeyValueRange()) {
        if (unitText(file).isEmpty()) // masked, whatever its drop-ins say
            continue;
        Unit unit{QFile::encodeName(name), enabled.contains(name), {}};
        addStarts(file, unit.starts);
        for (const QByteArray& dropIn : dropIns(directories, name))
            addStarts(dropIn, unit.starts);
        units.push_back(std::move(unit));
    }
    return units;
}

} // namespace zyn::tool
