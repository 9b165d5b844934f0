// The texts that people and other programs write: tables, recordings, scripts, words of a command line.
#include "fuzz/Fuzz.h"

#include "handset/common/FieldWords.h"
#include "handset/common/ScriptReader.h"
#include "handset/phone_server/DeskModem.h"
#include "handset/phone_server/PhoneLine.h"
#include "handset/phone_server/Script.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/interchange/RecordSchemas.h"
#include "tools/interchange/RecordsFile.h"
#include "tools/recording/Recording.h"
#include "tools/zynphone/BlockText.h"
#include "utility/message/PhoneMessages_p.h"

#include <array>

namespace zyn::fuzz {
namespace {

using tool::CommandError;

/// Records in @p format: what is read can be written in each format, and comes back.
void readRecords(const tool::RecordFormat& format, Input& input)
{
    const tool::RecordSchema& schema = input.below(2) == 0 ? tool::callSchema() : tool::favouriteSchema();
    tool::ReadRecords read;
    try {
        read = format.read(schema, input.rest(), QStringLiteral("input"));
    } catch (const CommandError& error) {
        require(!error.message().isEmpty(), "a refusal says why");
        return;
    }
    for (const QByteArray& record : read.records)
        require(record.size() == schema.blank.size(), "a record is whole");
    for (const tool::RecordFormat* other : {&tool::kCsvFormat, &tool::kJsonFormat}) {
        const QByteArray text = other->write(schema.fields, read.records).toUtf8();
        const tool::ReadRecords again = other->read(schema, text, QStringLiteral("output"));
        require(again.problems.isEmpty() && again.records == read.records, "records come back");
    }
}

QList<QByteArray> recordSeeds(const tool::RecordFormat& format)
{
    PHONE_ENG_RecentCall call(QStringLiteral("0301112222"), QDateTime::fromSecsSinceEpoch(1'700'000'000), 60);
    call.setDisplayName(QStringLiteral("D\u00F6ra, \"x\""));
    call.category = RC_CALL_CATEGORY_MISSED;
    call.inUse = 1;
    const QByteArray record = bytesOf(call).toByteArray();
    QByteArray odd = record;
    odd.replace(0, 42, QByteArray(42, '\xE9'));
    PHONE_ENG_ActivityLog entry(call);
    entry.setMsgString(QStringLiteral("Hello"));
    return {
        '\0' + format.write(tool::callSchema().fields, {record, odd}).toUtf8(),
        '\1'
            + format.write(tool::favouriteSchema().fields, {tool::favouriteRecord(2, QStringLiteral("1112222"), entry)})
                  .toUtf8(),
    };
}

void readCsv(Input& input)
{
    readRecords(tool::kCsvFormat, input);
}

QList<QByteArray> csvSeeds()
{
    return recordSeeds(tool::kCsvFormat);
}

void readJson(Input& input)
{
    readRecords(tool::kJsonFormat, input);
}

QList<QByteArray> jsonSeeds()
{
    return recordSeeds(tool::kJsonFormat);
}

/// A recording, as replay, inspect and chart read it.
void readRecording(Input& input)
{
    const Folder folder;
    const QString path = folder.path(QStringLiteral("recording"));
    writeFile(path, input.rest());
    try {
        tool::Recording recording(path);
        for (size_t i = 1; i < recording.messages().size(); ++i)
            require(recording.messages()[i - 1].time <= recording.messages()[i].time, "messages are in order");
        const size_t all = recording.messages().size();
        const size_t requests = recording.takeRequests().size();
        require(recording.messages().size() + requests == all, "no message is lost");
        tool::RecordingWriter writer(path, tool::RecordingWriter::Existing::Append);
        for (const tool::ReceivedMessage& message : recording.messages())
            require(writer.write(message), "a message can be recorded again");
        require(tool::Recording(path).messages().size() == all + recording.messages().size(),
                "a recording can be continued");
    } catch (const CommandError& error) {
        require(!error.message().isEmpty(), "a refusal says why");
    }
}

QList<QByteArray> recordingSeeds()
{
    tool::ReceivedMessage message;
    message.time = QDateTime::fromMSecsSinceEpoch(1'700'000'000'123, Qt::UTC);
    message.channel = kMakeCall.channel;
    message.name = kMakeCall.name;
    message.payload = encode(kMakeCall, {FieldValue(QStringLiteral("0301112222")), FieldValue(QString()), FieldValue(0),
                                         FieldValue(0), FieldValue(0), FieldValue(2)});
    const QByteArray line = tool::recordingLine(message);
    message.channel = kPhoneChannel;
    message.name = phoneMessage(PHONE_Msg::PHONE_MSG_BATTERY_STATUS_S).name;
    message.payload = "\x50";
    message.sender = {QStringLiteral("zyn-phoned"), 17};
    message.hearers = QList<tool::Participant>{{QStringLiteral("zyn-idle"), 18}};
    const QByteArray header = tool::recordingHeader() + '\n';
    return {header + line + tool::recordingLine(message), header + line.chopped(3), header,
            QByteArray(header).replace("2", "1") + line};
}

/// A script of the phone server, and the events of its lines.
void readScript(Input& input)
{
    const Folder folder;
    const QString path = folder.path(QStringLiteral("script"));
    writeFile(path, input.rest());
    const auto script = handset::readScript(path);
    if (!script)
        return;
    handset::PhoneStatus status;
    handset::DeskModem modem{{.step = std::chrono::milliseconds(0), .talk = std::chrono::milliseconds(0)}};
    handset::PhoneLine line(modem, status);
    for (const handset::ScriptStep& step : *script) {
        require(step.delay.count() >= 0, "no event comes before the one before it");
        handset::runScriptStep(step, line);
    }
}

QList<QByteArray> scriptSeeds()
{
    return {
        "# a day\nincoming 0301112222 Dora\n+100 answer\n+5 hangup\nincoming 0301112222 \"Dora D\"\nmissed\nsnapshot\n",
        "power-on-mode 1\n+0 battery-capacity 80\nsignal-quality 4\nservice-name \"Some network\"\nfail\n",
        "+5\n",
        "all-status 0102\nnetwork-list-0 00\nimsi-id hex:00\n",
    };
}

/// A program that takes words for fields.
constexpr handset::WordReader kWords{tool::wholeNumber, tool::blockFrom, tool::latin1Field};

/// The words of a command line or of a script as the fields of a message.
void readWords(Input& input)
{
    const auto messages = phoneMessages();
    const PhoneMessage& message = messages[static_cast<size_t>(input.byte()) % messages.size()];
    try {
        std::vector<FieldValue> values;
        for (const Field& field : message.fields)
            values.push_back(
                handset::valueFrom(kWords, field, QString::fromUtf8(input.text()), QStringLiteral("word")));
        const bool hasNetworks =
            std::ranges::any_of(message.fields, [](const Field& field) { return field.kind == FieldKind::Networks; });
        const QByteArray payload = encode(message, values);
        const FieldValues read = decode(message, payload);
        if (hasNetworks)
            return;
        require(read.isComplete() && read.end == payload.size(), "a message of words is whole");
        require(encode(message, read.list) == payload, "a message of words comes back");
    } catch (const CommandError& error) {
        require(!error.message().isEmpty(), "a refusal says why");
    }
    try {
        handset::scriptWords(QString::fromUtf8(input.text()));
        tool::bytesFromHex(QString::fromUtf8(input.text()));
    } catch (const CommandError&) {
        return;
    } catch (const handset::ScriptError&) {
        return;
    }
}

QList<QByteArray> wordSeeds()
{
    QList<QByteArray> seeds;
    for (char index = 0; index < char(phoneMessages().size()); ++index)
        seeds += index
                 + QByteArray("\x01"
                              "1")
                       .repeated(6);
    return seeds;
}

constexpr std::array kTextTargets{
    Target{"text_csv", "import of CSV, of calls and of favourites", readCsv, csvSeeds},
    Target{"text_json", "import of JSON, of calls and of favourites", readJson, jsonSeeds},
    Target{"text_recording", "recordings, both versions, read and continued", readRecording, recordingSeeds},
    Target{"text_script", "scripts of the phone server, and their events", readScript, scriptSeeds},
    Target{"text_words", "the words of command lines as fields of messages", readWords, wordSeeds},
};

} // namespace

std::span<const Target> textTargets()
{
    return kTextTargets;
}

} // namespace zyn::fuzz
