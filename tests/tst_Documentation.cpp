// The documents against the code that they describe.
#include "handset/phone_server/PhoneControl.h"
#include "platform/CommandFrame_p.h"
#include "platform/HandsetState_p.h"
#include "platform/qcop/ChannelFrame_p.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "support/Markdown.h"
#include "support/SignalRecorder.h"
#include "tools/recording/Recording.h"
#include "utility/PHONE_AsyncMsgReceiver.h"
#include "utility/PHONE_CommandSocket_p.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_Settings_p.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"
#include "utility/PHONE_VoiceCallReceiver.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QMap>
#include <QtTest/QTest>

#include <algorithm>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString kSource = QStringLiteral(ZYN_SOURCE_DIR "/");
const QString kNothing = QStringLiteral("—");
const QString kBackticked = QStringLiteral("`([^`\\n]+)`");

QList<MarkdownTable> tablesIn(const QString& name)
{
    return tablesOf(readText(kSource + "docs/"_L1 + name));
}

/// All C++ text of the tree but the tests.
const QString& sources()
{
    static const QString text = [] {
        QString all;
        for (const char* folder : {"examples", "handset", "platform", "qml", "recentcall", "tools", "utility"}) {
            QDirIterator files(kSource + QLatin1String(folder), {u"*.h"_s, u"*.cpp"_s, u"*.c"_s}, QDir::Files,
                               QDirIterator::Subdirectories);
            while (files.hasNext())
                all += readText(files.next());
        }
        return all;
    }();
    return text;
}

QStringList sorted(QStringList names)
{
    names.sort();
    names.removeDuplicates();
    return names;
}

QString difference(const QStringList& documented, const QStringList& actual)
{
    QStringList rows;
    for (const QString& row : documented + actual) {
        if (!actual.contains(row))
            rows += u"a row of nothing: "_s + row;
        if (!documented.contains(row))
            rows += u"no row for: "_s + row;
    }
    return rows.isEmpty() && documented != actual ? u"another order"_s : rows.join(u'\n');
}

/// The size that the code asserts of the record @p name, and a row "offset | size | field" for each of its fields; of
/// one that repeats from @p base on, as its places are called with @p index. No byte is left out: each field ends where
/// the next begins.
QStringList layoutOf(const QString& name, int base = 0, const QString& index = {})
{
    const QString size = capturesOf(sources(), u"sizeof\\(%1\\) == (\\d+)"_s.arg(name)).value(0);
    QMap<int, QString> fields{{size.toInt(), {}}};
    const QRegularExpression asserted(u"offsetof\\(%1, (\\w+)\\) == (\\d+)"_s.arg(name));
    for (const auto& match : asserted.globalMatch(sources()))
        fields[match.captured(2).toInt()] = match.captured(1);
    if (!fields.contains(0)) // the base of an activity record has no name there
        fields[0] = u"PHONE_ENG_RecentCall"_s;
    QStringList rows{size};
    for (auto field = fields.cbegin(); std::next(field) != fields.cend(); ++field) {
        const QString repeated = index.isEmpty() ? QString() : u" + %1 × %2"_s.arg(size, index);
        const int end = std::next(field).key();
        rows += u"%1%2 | %3 | %4"_s.arg(base + field.key()).arg(repeated).arg(end - field.key()).arg(field.value());
    }
    return rows;
}

/// A store file whose header @p records follow.
QStringList storeFile(const QString& size, const QStringList& records)
{
    return QStringList{size} + layoutOf(u"StoreFileHeader"_s).mid(1) + records;
}

/// What the document calls by other names than the code.
QMap<QString, QStringList> filesAndFrames()
{
    const QString list = u"TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S"_s;
    const QStringList entries = layoutOf(u"TAPI_NETWORK_PREFERED_ENTRY_S"_s,
                                         offsetof(TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S, entries), u"i"_s);
    static_assert(sizeof(zyn::emergency::Record) == 42 && sizeof(zyn::CommandFrameHeader::Bytes) == 8);
    return {
        {u"Record file"_s,
         storeFile(QString::number(zyn::RecordFile::size()), {u"8 + 228 × i | 228 | PHONE_ENG_RecentCall"_s})},
        {u"Details file"_s,
         storeFile(QString::number(zyn::DetailsFile::size()), layoutOf(u"TopPalNumberDetail"_s, 8, u"i"_s).mid(1))},
        {u"Favourite's file"_s, storeFile(u"8 + 300 × M"_s, {u"8 + 300 × p | 300 | PHONE_ENG_ActivityLog"_s})},
        {u"Calls looked at"_s, storeFile(u"8 + 8 × N"_s, layoutOf(u"SeenCalls::Mark"_s, 8, u"i"_s).mid(1))},
        {u"Emergency list"_s, {u"42 × N"_s, u"42 × i | 42 | number"_s}},
        {u"Command frame"_s, {u"8 + length"_s, u"0 | 4 | code"_s, u"4 | 4 | length"_s, u"8 | length | data"_s}},
        {u"Channel frame"_s,
         {u"16 + N + P"_s, u"0 | 4 | N"_s, u"4 | 4 | P"_s, u"8 | 8 | sentAt"_s, u"16 | N | name"_s,
          u"16 + N | P | payload"_s}},
        {u"Introduction"_s,
         {u"16 + P"_s, u"0 | 4 | N"_s, u"4 | 4 | P"_s, u"8 | 8 | sentAt"_s, u"16 | 8 | process"_s,
          u"24 | P - 8 | program"_s}},
        {list, layoutOf(list).first(2) + entries.mid(1)},
    };
}

/// The compiler's text for @p Value: a name when there is an enumerator, else "(Type)number".
template<auto Value>
constexpr std::string_view valueText()
{
    const std::string_view text(__PRETTY_FUNCTION__);
    const size_t begin = text.find("Value = ") + 8;
    return text.substr(begin, text.find_first_of(";]", begin) - begin);
}

/// "value | name" for each enumerator from 0 to 63.
template<typename Enum>
QStringList enumerators()
{
    QStringList rows;
    const auto add = [&](int value, std::string_view text) {
        const QString name = QString::fromLatin1(text.data(), qsizetype(text.size()));
        if (!name.startsWith(u'('))
            rows += u"%1 | %2"_s.arg(value).arg(name.section(u':', -1));
    };
    [&]<int... Values>(std::integer_sequence<int, Values...>)
    {
        (add(Values, valueText<static_cast<Enum>(Values)>()), ...);
    }
    (std::make_integer_sequence<int, 64>());
    return rows;
}

// clang-format off
QMap<QString, QStringList> enumerations()
{
    using namespace zyn;
#define ENUMERATION(type) {QStringLiteral(#type), enumerators<type>()}
    return {
        ENUMERATION(RC_CALL_CATEGORY_T), ENUMERATION(RC_CALL_TYPE_T), ENUMERATION(recentcall::Command),
        ENUMERATION(recentcall::Status), ENUMERATION(voicecall::Command), ENUMERATION(voicecall::ClientKind),
        ENUMERATION(voicecall::Reply), ENUMERATION(phonecontrol::Command), ENUMERATION(phonecontrol::Reply),
        ENUMERATION(DialMode), ENUMERATION(OTHER_COMPONENT_SHOW_UI),
    };
#undef ENUMERATION
}

QStringList constants()
{
    using namespace zyn;
#define NUMBER(name) QStringLiteral(#name " | %1").arg(name)
#define TEXT(name) QStringLiteral(#name " | ") + QLatin1String(name)
    return {
        u"StoreFileHeader::kMagic | 0x"_s + QString::number(StoreFileHeader::kMagic, 16).toUpper(),
        NUMBER(StoreFileHeader::kVersion), NUMBER(kRecordSlots), NUMBER(ActivityLog_ENG_RecordStore::kFavourites),
        NUMBER(kMaxContactSlots), TEXT(kTopPalsDetailsName), TEXT(kActivityLogLockName), TEXT(kSeenCallsName),
        TEXT(posix::kStagedInfix), TEXT(kFormerInfix), TEXT(emergency::kListFile), NUMBER(emergency::kRecordLimit),
        NUMBER(kCommandDataLimit), NUMBER(kGreetingCommand), NUMBER(kCommandTimeout.count()),
        TEXT(recentcall::kSocketPath), TEXT(voicecall::kSocketPath), TEXT(phonecontrol::kSocketPath),
        NUMBER(phonecontrol::kLongestSaying), NUMBER(kMessageLimit),
        TEXT(kFixedDialSwitch), TEXT(kTopPalsSwitch), NUMBER(tool::kLongestRecordingLine),
    };
#undef NUMBER
#undef TEXT
}
// clang-format on

struct Message
{
    QString channel;
    QString name;
    QString type;
    QString word; ///< of the phone channel alone
    const zyn::Message* form;
};

QList<Message> messages()
{
    const auto text = [](const char* name) { return name ? QString::fromLatin1(name) : kNothing; };
    QList<Message> all;
    for (const zyn::PhoneMessage& message : zyn::phoneMessages()) {
        all += {text(message.channel), text(message.name), text(message.enumerator), text(message.word), &message};
    }
    for (const zyn::Message& message : zyn::channelMessages())
        all += {text(message.channel), text(message.name), text(message.enumerator), {}, &message};
    return all;
}

QString payloadText(const zyn::Message& message)
{
    static const QStringList kinds{u"int"_s, u"byte"_s, u"char"_s, u"text"_s, u"%1 bytes"_s};
    if (message.isRecord())
        return (message.fields.size() > 2 ? u"AllStatus "_s : u"TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S "_s)
               + QLatin1String(message.record);
    QStringList texts;
    for (const zyn::Field& field : message.fields) {
        const QLatin1String first(message.fields.begin()->name);
        QString text = kinds.at(qsizetype(field.kind));
        text.replace("%1"_L1, QString::number(field.size)) += u' ' + QLatin1String(field.name);
        if (field.occurs == zyn::Occurrence::AsCounted)
            text += u" × "_s + first;
        else if (field.occurs == zyn::Occurrence::WhenSet)
            text += " if "_L1 + first + u" ≠ 0"_s;
        texts += text;
    }
    return texts.isEmpty() ? kNothing : texts.join(u", "_s);
}

/// What is wrong with the cell "Emits" of @p message: a signal that its client does not have or that has other
/// arguments, or an argument that is neither a number nor in the payload.
QString emissionProblem(const Message& message, const QString& cell)
{
    static const QMap<QString, const QMetaObject*> clients{
        {QLatin1String(zyn::kPhoneChannel), &PHONE_MsgClient::staticMetaObject},
        {QLatin1String(zyn::kVoiceCallChannel), &PHONE_VoiceCallReceiver::staticMetaObject},
        {QLatin1String(zyn::kRecentCallChannel), &RecentCall_MsgClient::staticMetaObject}};
    static const QRegularExpression emission(u"`(\\w+)`(?:\\(([^)]*)\\))?"_s);
    QStringList known = capturesOf(payloadText(*message.form), u"(\\S+)(?=,|$| if| ×)"_s);
    const QMetaObject* const client = clients.value(message.channel, &QObject::staticMetaObject);
    for (const auto& match : emission.globalMatch(cell)) {
        const QStringList arguments = match.captured(2).split(u", "_s, Qt::SkipEmptyParts);
        const auto isMeant = [&](const QByteArray& signature) {
            const qsizetype count = signature.contains("()") ? 0 : 1 + signature.count(',');
            return signature.startsWith(match.captured(1).toLatin1() + '(')
                   && (!match.hasCaptured(2) || count == arguments.size() || signature.endsWith("_S)"));
        };
        if (std::ranges::none_of(signalsOf(*client), isMeant))
            return match.captured();
        for (QString argument : arguments) {
            argument.remove(u"low byte of "_s).remove(QRegularExpression(u" [=≠] \\d+$"_s));
            if (!known.contains(argument) && argument.front().isLetter())
                return argument;
        }
    }
    return {};
}

} // namespace

class tst_Documentation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void laysOutFilesAndFrames()
    {
        const QMap<QString, QStringList> others = filesAndFrames();
        QSet<QString> documented;
        for (const MarkdownTable& table : tablesIn(u"formats.md"_s)) {
            if (!table.has("Offset"))
                continue;
            const auto caption = QRegularExpression(u"^`?([^`]+)`?, (.+) bytes:$"_s).match(table.caption);
            const QString name = caption.captured(1);
            documented += name;
            QStringList rows{caption.captured(2).remove(QRegularExpression(u"(?<=\\d) (?=\\d)"_s))};
            for (const QStringList& row : table.rows)
                rows += table.text(row, {"Offset", "Size", "Field"});
            QCOMPARE(difference(rows, others.contains(name) ? others[name] : layoutOf(name)), QString());
        }
        const QStringList inOthers{u"StoreFileHeader"_s, u"ChannelFrameHeader"_s, u"SeenCalls::Mark"_s,
                                   u"TopPalNumberDetail"_s, u"TAPI_NETWORK_PREFERED_ENTRY_S"_s};
        const QString inMemory = u"RC_PttInfo_T"_s;
        for (const QString& name : capturesOf(sources(), u"offsetof\\(([\\w:]+), \\w+\\) =="_s) + others.keys())
            QVERIFY2(documented.contains(name) || inOthers.contains(name) || name == inMemory, qPrintable(name));
    }

    void numbersEnumerators()
    {
        QMap<QString, QStringList> undocumented = enumerations();
        for (const MarkdownTable& table : tablesIn(u"formats.md"_s) + tablesIn(u"messages.md"_s)) {
            if (!table.has("Name"))
                continue;
            QStringList rows;
            for (const QStringList& row : table.rows) {
                rows += table.text(row, {table.has("Code") ? "Code" : "Value", "Name"});
                const QString record = capturesOf(table.cell(row, "Data"), kBackticked).value(0);
                if (!record.isEmpty())
                    QCOMPARE(table.cell(row, "Length"), layoutOf(record).first());
            }
            rows.removeDuplicates();
            const QString name = capturesOf(table.caption, u"`([\\w:]+)`:$"_s).value(0);
            QCOMPARE(difference(rows, undocumented.take(name)), QString());
        }
        QCOMPARE(undocumented.keys(), QStringList());
    }

    void namesConstantsAndSettings()
    {
        QStringList documented;
        QStringList states;
        QStringList columns;
        for (const MarkdownTable& table : tablesIn(u"formats.md"_s)) {
            for (const QStringList& row : table.rows) {
                if (table.has("Constant"))
                    documented += table.text(row, {"Constant"}) + " | "_L1 + table.cell(row, "Value").remove(u' ');
                if (table.has("Word") && table.has("Key"))
                    states += table.text(row, {"Key", "Word"});
                if (table.heading.contains("CSV"_L1))
                    columns += capturesOf(table.cell(row, "Field"), kBackticked);
                for (const QString& key : capturesOf(table.cell(row, "Group") + table.cell(row, "Key"), kBackticked))
                    QVERIFY2(key.toInt() > 0 || sources().contains(u'"' + key + u'"'), qPrintable(key));
            }
        }
        QCOMPARE(difference(documented, constants()), QString());
        const QStringList columnsInCode = capturesOf(sources(), u"\\{\"(\\w+)\",\\s(?:kEntry \\+ )?offsetof"_s);
        QCOMPARE(difference(sorted(columns), sorted(columnsInCode)), QString());
        QStringList actual;
        for (const zyn::handset::State& state : zyn::handset::kStates)
            actual += QLatin1String(state.key) + " | "_L1 + QLatin1String(state.name);
        QCOMPARE(difference(states, actual), QString());
    }

    void listsWhatModemsTell()
    {
        QStringList documented;
        for (const MarkdownTable& table : tablesIn(u"modems.md"_s)) {
            if (!table.has("Message"))
                continue;
            for (const QStringList& row : table.rows) {
                const QStringList types = table.cell(row, "Message").split(u", "_s);
                const QStringList words = capturesOf(table.cell(row, "Word"), kBackticked);
                for (qsizetype i = 0; i < types.size(); ++i)
                    documented += types[i] + " | "_L1 + words.value(i);
            }
        }
        QString told = readText(kSource + "handset/phone_server/PhoneLine.cpp"_L1);
        for (const QString& file : QDir(kSource + "handset/modem"_L1).entryList({u"*.cpp"_s}))
            told += readText(kSource + "handset/modem/"_L1 + file);
        const QString types = readText(kSource + "utility/PHONE_Msg.h"_L1);
        QStringList actual;
        for (const QString& type : sorted(capturesOf(told, u"\\b(PHONE_MSG_\\w+_S)\\b"_s))) {
            const QString number = capturesOf(types, type + u" = (\\d+)"_s).value(0);
            actual += number + " | "_L1 + QLatin1String(zyn::phoneMessages()[number.toUInt()].word);
        }
        QCOMPARE(difference(sorted(documented), sorted(actual)), QString());
    }

    void listsMessages()
    {
        QMap<QString, Message> known;
        QStringList actual;
        for (const Message& message : messages()) {
            const QString key = message.channel + " | "_L1 + message.name;
            known[key] = message;
            actual += QStringList{key, message.type, message.word, payloadText(*message.form)}.join(u" | "_s);
        }
        QStringList documented;
        QStringList emitted;
        for (const MarkdownTable& table : tablesIn(u"messages.md"_s)) {
            if (!table.has("Message"))
                continue;
            for (const QStringList& row : table.rows) {
                documented += table.heading + " | "_L1 + table.text(row, {"Message", "Type", "Word", "Payload"});
                const Message message = known.value(table.heading + " | "_L1 + table.text(row, {"Message"}));
                const QString emits = table.cell(row, "Emits");
                QCOMPARE(row.constFirst() + emissionProblem(message, emits), row.constFirst());
                emitted += capturesOf(emits, u"`(\\w+)`"_s);
            }
        }
        QCOMPARE(difference(documented, actual), QString());
        QStringList all;
        for (const QMetaObject* client :
             {&PHONE_MsgClient::staticMetaObject, &PHONE_VoiceCallReceiver::staticMetaObject,
              &RecentCall_MsgClient::staticMetaObject}) {
            for (const QByteArray& signature : signalsOf(*client))
                all += QString::fromLatin1(signature).section(u'(', 0, 0);
        }
        QCOMPARE(difference(sorted(emitted), sorted(all)), QString());
    }

    void listsSignals()
    {
        const auto name = [](const QByteArray& signature) { return signature.first(signature.indexOf('(')); };
        QSet<QByteArray> relayed;
        for (const QByteArray& signature : signalsOf(PHONE_AsyncMsgReceiver::staticMetaObject))
            relayed += name(signature);
        QStringList actual;
        for (const QByteArray& signature : signalsOf(PHONE_MsgClient::staticMetaObject))
            actual += QString::fromLatin1(signature) + (relayed.contains(name(signature)) ? " | yes"_L1 : " | no"_L1);
        QStringList documented;
        for (const MarkdownTable& table : tablesIn(u"messages.md"_s)) {
            for (const QStringList& row : table.has("Relayed") ? table.rows : QList<QStringList>())
                documented += table.text(row, {"Signal", "Relayed"});
        }
        QCOMPARE(difference(documented, actual), QString());
    }

    /// An application that writes to standard output has to know of the library's lines there.
    void tellsOfTheTrace()
    {
        static const QRegularExpression printing(
            u"\\b(PHONE_Log|logEntry|std::printf|std::fputs)\\(|\\b(Trace|LogText) \\w"_s);
        QStringList silent;
        int printers = 0;
        for (const char* folder : {"utility/", "recentcall/utility/"}) {
            const QDir sources(kSource + QLatin1String(folder));
            for (const QString& name : sources.entryList({u"*.cpp"_s})) {
                const QString header = QString(name).replace(u".cpp"_s, u".h"_s);
                if (!sources.exists(header) || !readText(sources.filePath(name)).contains(printing))
                    continue;
                ++printers;
                if (!readText(sources.filePath(header)).contains("platform/QuietTrace.h"_L1))
                    silent += header;
            }
        }
        QCOMPARE(silent.join(u' '), QString());
        QVERIFY(printers > 10);
    }

    void namesWhatThereIs_data()
    {
        QTest::addColumn<QString>("document");
        for (const char* name : {"CHANGELOG.md", "CONTRIBUTING.md", "README.md"})
            QTest::newRow(name) << QString::fromLatin1(name);
        for (const QString& name : QDir(kSource + "docs"_L1).entryList({u"*.md"_s}))
            QTest::newRow(qPrintable(name)) << "docs/"_L1 + name;
    }

    /// Links lead to files and headings; what backticks hold of paths in the tree and of functions is there.
    void namesWhatThereIs()
    {
        QFETCH(const QString, document);
        const QString text = readText(kSource + document).remove(QRegularExpression(u"```[^`]*```"_s));
        QVERIFY(!text.isEmpty());
        QStringList missing;
        for (const QString& link : capturesOf(text, u"\\]\\(([^):]+)\\)"_s)) {
            const QString path = link.section(u'#', 0, 0);
            const QString folder = QFileInfo(kSource + document).path() + u'/';
            const QString target = path.isEmpty() ? kSource + document : folder + path;
            const QString heading = link.section(u'#', 1);
            if (!QFileInfo::exists(target) || (!heading.isEmpty() && !anchorsOf(readText(target)).contains(heading)))
                missing += link;
        }
        static const QRegularExpression path(
            u"^(cmake|docs|examples|handset|platform|qml|recentcall|scripts|tests|tools|utility)/[\\w./-]*$"_s);
        static const QRegularExpression function(u"^[\\w:]+(\\(\\)|::\\w+)$"_s);
        for (const QString& token : capturesOf(text, kBackticked)) {
            if (path.match(token).hasMatch() && !QFileInfo::exists(kSource + token))
                missing += token;
            for (const QString& name : capturesOf(function.match(token).captured(), u"(\\w+)"_s)) {
                if (!sources().contains(QRegularExpression(u"\\b%1\\b"_s.arg(name))))
                    missing += token;
            }
        }
        QCOMPARE(missing.join(u' '), QString());
    }
};

QTEST_GUILESS_MAIN(tst_Documentation)
#include "tst_Documentation.moc"
