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
#include <utility>

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
    bool hasEnded = false; ///< the caller has ended it
    int64_t seconds = 0;
};

bool isStatus(const ReceivedMessage& message, PHONE_Msg::PHONE_MSG_TYPE_T type)
{
    return message.channel == kPhoneChannel && message.name == phoneMessage(type).name;
}

bool isScreen(const ReceivedMessage& message, RecentCall_Msg::RECENTCALL_MSG_TYPE_T type)
{
    return message.channel == kRecentCallChannel && message.name == recentCallMessage(type).name;
}

bool isRequest(const ReceivedMessage& message, const char* name)
{
    return message.channel == kVoiceCallChannel && message.name == name;
}

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
        return party + (course.hasEnded ? u" ended without an answer."_s : u" has no answer in this recording."_s);
    return u"%1 was connected for %2."_s.arg(party, counted(static_cast<qsizetype>(course.seconds), "second"));
}

int64_t numberOf(const MessageFields& fields, QLatin1String name)
{
    const auto field = std::ranges::find(fields.values, name, &NamedValue::name);
    return field == fields.values.end() ? 0 : field->value.toInteger();
}

/// Finds what messages mean, of which those of a call tell only together.
class Meanings
{
public:
    explicit Meanings(const std::vector<ReceivedMessage>& messages)
        : m_messages(messages)
        , m_texts(messages.size())
    {}

    std::vector<QString> texts()
    {
        for (size_t place = 0; place < m_messages.size(); ++place)
            read(place);
        return m_texts;
    }

private:
    /// The next change of the call is known from what was told before it.
    enum class Expected { Nothing, Dialing, Answer, End };
    /// Within this time of the change of the missed calls the phone tells that the call rings no more, in milliseconds.
    static constexpr qint64 kAtOnce = 1000;

    void read(size_t place)
    {
        const ReceivedMessage& message = m_messages[place];
        QString& text = m_texts[place];
        if (isRequest(message, kMakeCall.name)) {
            text = u"asks for a call"_s;
            m_isPlaced = true;
            expect(Expected::Dialing);
        } else if (isRequest(message, kDropCall.name)) {
            text = u"asks to end the call"_s;
        } else if (isScreen(message, RecentCall_Msg::RECENTCALL_MSG_SHOW_UI_S)) {
            text = opened(message, u"looks at the %1 calls"_s);
            m_ring.reset(); // the missed calls may change because they are read
        } else if (isScreen(message, RecentCall_Msg::RECENTCALL_MSG_SHOW_PAGE_S)) {
            text = opened(message, u"opens the %1"_s);
        } else if (isScreen(message, RecentCall_Msg::RECENTCALL_MSG_EXIT_PICKER_S)) {
            if (const auto selected = numberIn(message, "selected"_L1))
                text = *selected != 0 ? u"a number is picked"_s : u"nothing is picked"_s;
        } else if (isScreen(message, RecentCall_Msg::RECENTCALL_MSG_MISSEDCALL_UPDATE_S)) {
            if (m_ring && !m_update)
                m_update = place;
        } else if (isStatus(message, PHONE_Msg::PHONE_MSG_CURRENT_CONNECTED_DURATION_S)) {
            m_ring.reset();
            if (const auto connected = numberIn(message, "connected"_L1))
                expect(*connected != 0 ? Expected::Answer : Expected::End);
        } else if (isStatus(message, PHONE_Msg::PHONE_MSG_VOICE_CALL_STAT_CHANGED_S)) {
            readChange(place);
        }
    }

    void readChange(size_t place)
    {
        const Expected expected = std::exchange(m_expected, Expected::Nothing);
        if (expected == Expected::Dialing) {
            m_texts[place] = u"the call is placed"_s;
        } else if (expected == Expected::Answer) {
            m_texts[place] = u"the call is answered"_s;
        } else if (expected == Expected::End) {
            m_texts[place] = u"the call has ended"_s;
            m_isPlaced = false;
        } else if (m_ring && m_update && m_messages[*m_update].time.msecsTo(m_messages[place].time) <= kAtOnce) {
            m_texts[*m_ring] = u"a call rings"_s;
            m_texts[*m_update] = u"a call is missed"_s;
            m_texts[place] = u"it rings no more"_s;
            m_ring.reset();
        } else if (!m_isPlaced) {
            m_ring = place;
            m_update.reset();
        }
    }

    void expect(Expected change)
    {
        m_expected = change;
        m_ring.reset();
    }

    /// Nothing where the payload ends before it.
    static std::optional<int64_t> numberIn(const ReceivedMessage& message, QLatin1String name)
    {
        const MessageFields fields = messageFields(message.channel, message.name, message.payload);
        const auto field = std::ranges::find(fields.values, name, &NamedValue::name);
        return field == fields.values.end() || field->value.isUndefined() ? std::nullopt
                                                                          : std::optional(field->value.toInteger());
    }

    /// @p sentence with what is opened, where that has a word.
    static QString opened(const ReceivedMessage& message, const QString& sentence)
    {
        const QStringList values = valueTexts(message, false);
        return values.size() == 1 && !values.first().contains(u'=') ? sentence.arg(values.first()) : QString();
    }

    const std::vector<ReceivedMessage>& m_messages;
    std::vector<QString> m_texts;
    Expected m_expected = Expected::Nothing;
    bool m_isPlaced = false;        ///< a call that was asked for
    std::optional<size_t> m_ring;   ///< the change by which a call may ring
    std::optional<size_t> m_update; ///< the change of the missed calls after it
};

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

std::vector<QString> meanings(const std::vector<ReceivedMessage>& messages)
{
    return Meanings(messages).texts();
}

QStringList outcomes(const std::vector<ReceivedMessage>& messages)
{
    constexpr qsizetype kMost = 6;
    QStringList sentences;
    std::optional<Course> course;
    for (const ReceivedMessage& message : messages) {
        const MessageFields fields = messageFields(message.channel, message.name, message.payload);
        if (isRequest(message, kMakeCall.name)) {
            if (course)
                sentences += sentenceOf(*course);
            course = Course{partyOf(fields)};
        } else if (isStatus(message, PHONE_Msg::PHONE_MSG_CURRENT_CONNECTED_DURATION_S)) {
            if (!course)
                course.emplace();
            course->hasConnected = true;
            course->seconds = std::max(course->seconds, numberOf(fields, "seconds"_L1));
        } else if (course && course->seconds > 0 && isStatus(message, PHONE_Msg::PHONE_MSG_VOICE_CALL_STAT_CHANGED_S)) {
            sentences += sentenceOf(*course);
            course.reset();
        } else if (course && isRequest(message, kDropCall.name)) {
            course->hasEnded = true;
        }
    }
    if (course)
        sentences += course->hasConnected && course->seconds == 0
                         ? (course->party.isEmpty() ? u"A call"_s : u"The call to "_s + course->party) + u" goes on."_s
                         : sentenceOf(*course);
    if (sentences.size() > kMost)
        sentences = sentences.first(kMost - 1) + QStringList{u"And %1 more calls."_s.arg(sentences.size() - kMost + 1)};
    const auto updates = std::ranges::count_if(messages, [](const ReceivedMessage& message) {
        return isScreen(message, RecentCall_Msg::RECENTCALL_MSG_MISSEDCALL_UPDATE_S);
    });
    if (updates > 0)
        sentences += u"The missed calls changed %1."_s.arg(updates == 1 ? u"once"_s : u"%1 times"_s.arg(updates));
    return sentences;
}

} // namespace zyn::tool
