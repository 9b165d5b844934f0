// The records of the telephony platform, as a command line describes them.
#include "tools/commands/RecordInput.h"

#include "platform/TAPI.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/Text.h"
#include "utility/FixedText_p.h"
#include "utility/message/AllStatus_p.h"

#include <cstdint>
#include <iterator>
#include <limits>
#include <span>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using NetworkList = TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S;
using Network = TAPI_NETWORK_PREFERED_ENTRY_S;

constexpr qsizetype kMaxNetworks = std::size(NetworkList{}.entries);

QByteArray imageOf(int32_t number)
{
    return QByteArray(reinterpret_cast<const char*>(&number), sizeof number);
}

/// The bytes of @p field that @p word stands for.
QByteArray allStatusBytes(const AllStatusField& field, const QString& word)
{
    const QString name = u"--"_s + QLatin1String(field.name);
    switch (field.kind) {
    case FieldKind::Int:
        return imageOf(wholeNumber(word, name));
    case FieldKind::Byte:
        return QByteArray(1, static_cast<char>(wholeNumber(word, name, 0, std::numeric_limits<uint8_t>::max())));
    case FieldKind::Text:
        return latin1Field(word, name, field.size - 1).toLatin1().leftJustified(field.size, '\0');
    default:
        return blockFrom(word, name, field.size);
    }
}

QString allStatusMeaning(const AllStatusField& field)
{
    switch (field.kind) {
    case FieldKind::Int:
        return u"of a snapshot, a whole number"_s;
    case FieldKind::Byte:
        return u"of a snapshot, 0 to 255"_s;
    case FieldKind::Text:
        return u"of a snapshot, Latin-1, at most %1 characters"_s.arg(field.size - 1);
    default:
        return u"of a snapshot, at most %1 characters, or hex: and %1 bytes"_s.arg(field.size);
    }
}

void storeWord(std::span<char> field, const QString& word, const QString& what)
{
    storeText(field, latin1Field(word, what, static_cast<qsizetype>(field.size()) - 1).toLatin1());
}

} // namespace

QList<QCommandLineOption> allStatusOptions()
{
    QList<QCommandLineOption> options;
    for (const AllStatusField& field : kAllStatusFields)
        options += valueOption(QLatin1String(field.name), u"VALUE"_s, allStatusMeaning(field));
    return options;
}

QByteArray allStatusFrom(const Invocation& invocation)
{
    QByteArray record(sizeof(AllStatus), '\0');
    for (const AllStatusField& field : kAllStatusFields) {
        if (const QString name = QLatin1String(field.name); invocation.isSet(name))
            record.replace(field.offset, field.size, allStatusBytes(field, invocation.value(name)));
    }
    return record;
}

QByteArray networkListFrom(const QStringList& words)
{
    if (words.size() % 2 != 0)
        throw usageError(u"missing name of network '%1'"_s.arg(words.last()));
    if (words.size() / 2 > kMaxNetworks)
        throw usageError(u"%1 networks; at most %2 fit"_s.arg(words.size() / 2).arg(kMaxNetworks));
    NetworkList list = {};
    for (qsizetype index = 0; index < words.size(); index += 2) {
        Network& network = list.entries[list.count++];
        storeWord(network.id, words[index], u"network id"_s);
        storeWord(network.name, words[index + 1], u"network name"_s);
    }
    return QByteArray(reinterpret_cast<const char*>(&list), sizeof list);
}

} // namespace zyn::tool
