// What a recording tells: who takes part, and what came of the calls.
#include "tools/chart/ChartStory.h"

#include "recentcall/utility/RecentCall_Messages_p.h"
#include "tools/recording/MessageFields.h"
#include "tools/recording/Requests.h"
#include "tools/zynphone/Text.h"
#include "utility/message/PhoneMessages_p.h"

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

struct Role
{
    const char* program;
    const char* role;
};

constexpr std::array<Role, 8> kRoles{{
    {"zyn-phoned", "phone server"},
    {"zyn-recentcalld", "recent-call service"},
    {"zyn-favourites", "owner of the favourites"},
    {"zyn-dialer", "dialer"},
    {"zyn-statusbar", "status bar"},
    {"zyn-recents", "recent-call screens"},
    {"zyn-idle", "idle screen"},
    {"zynphone", "somebody at the desk"},
}};

/// What a call is about: who, and how far it came.
struct Course
{
    QString party;
    bool hasConnected = false;
    int64_t seconds = 0;
};

QString partyOf(const MessageFields& fields)
{
    QString number;
    QString name;
    for (const NamedValue& field : fields.values) {
        if (field.name == "number"_L1)
            number = field.value.toString();
        else if (field.name == "name"_L1)
            name = field.value.toString();
    }
    return elided(name.isEmpty() ? number : u"%1 (%2)"_s.arg(name, number), 60);
}

QString sentenceOf(const Course& course)
{
    const QString party = course.party.isEmpty() ? u"A call"_s : u"The call to "_s + course.party;
    if (!course.hasConnected)
        return party + u" did not come about."_s;
    return u"%1 was connected for %2."_s.arg(party, counted(static_cast<qsizetype>(course.seconds), "second"));
}

int64_t numberOf(const MessageFields& fields, QLatin1String name)
{
    const auto field = std::ranges::find(fields.values, name, &NamedValue::name);
    return field == fields.values.end() ? 0 : field->value.toInteger();
}

} // namespace

QString roleOf(const QString& program)
{
    const auto role =
        std::ranges::find_if(kRoles, [&](const Role& known) { return program == QLatin1String(known.program); });
    return role == kRoles.end() ? QString() : QString(QLatin1String(role->role));
}

QString laneOf(const Participant& participant)
{
    return participant.program.isEmpty() ? u"process %1"_s.arg(participant.process) : participant.program;
}

QString senderLane(const ReceivedMessage& message)
{
    return message.sender.isKnown() ? laneOf(message.sender) : nameText(message.channel);
}

bool asks(const ReceivedMessage& message)
{
    return !requestedAction(message.channel, message.name).isEmpty()
           || (message.channel == kRecentCallChannel
               && messageWord(message.channel, message.name).startsWith("show-"_L1));
}

QStringList outcomes(const std::vector<ReceivedMessage>& messages)
{
    constexpr qsizetype kMost = 6;
    const char* const duration = phoneMessage(PHONE_Msg::PHONE_MSG_CURRENT_CONNECTED_DURATION_S).name;
    const char* const change = phoneMessage(PHONE_Msg::PHONE_MSG_VOICE_CALL_STAT_CHANGED_S).name;
    QStringList sentences;
    std::optional<Course> course;
    for (const ReceivedMessage& message : messages) {
        const MessageFields fields = messageFields(message.channel, message.name, message.payload);
        if (message.channel == kVoiceCallChannel && message.name == kMakeCall.name) {
            if (course)
                sentences += sentenceOf(*course);
            course = Course{partyOf(fields)};
        } else if (message.channel == kPhoneChannel && message.name == duration) {
            if (!course)
                course.emplace();
            course->hasConnected = true;
            course->seconds = std::max(course->seconds, numberOf(fields, "seconds"_L1));
        } else if (message.channel == kPhoneChannel && message.name == change && course && course->seconds > 0) {
            sentences += sentenceOf(*course);
            course.reset();
        }
    }
    if (course)
        sentences += course->hasConnected && course->seconds == 0
                         ? (course->party.isEmpty() ? u"A call"_s : u"The call to "_s + course->party) + u" goes on."_s
                         : sentenceOf(*course);
    if (sentences.size() > kMost)
        sentences = sentences.first(kMost - 1) + QStringList{u"And %1 more calls."_s.arg(sentences.size() - kMost + 1)};
    const char* const update = recentCallMessage(RecentCall_Msg::RECENTCALL_MSG_MISSEDCALL_UPDATE_S).name;
    const auto updates = std::ranges::count_if(messages, [&](const ReceivedMessage& message) {
        return message.channel == kRecentCallChannel && message.name == update;
    });
    if (updates > 0)
        sentences += u"The missed calls changed %1."_s.arg(updates == 1 ? u"once"_s : u"%1 times"_s.arg(updates));
    return sentences;
}

} // namespace zyn::tool
