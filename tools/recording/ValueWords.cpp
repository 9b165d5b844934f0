// Words and units for the values of messages, where their meaning is known.
#include "tools/recording/ValueWords.h"

#include "handset/recentcall_screen/ScreenPage.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "tools/zynphone/RecordText.h"
#include "utility/message/PhoneMessages_p.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// The one network status that the library interprets.
constexpr int kRegistered = 5;

constexpr std::array<Word<int>, 3> kDialModes{
    {{"ordinary", DialOrdinary}, {"direct", DialDirectly}, {"prefixed", DialPrependly}}};
constexpr std::array<Word<int>, 2> kSwitch{{{"off", 0}, {"on", 1}}};
constexpr std::array<Word<int>, 1> kNetwork{{{"registered", kRegistered}}};
constexpr std::array<Word<int>, 2> kYesOrNo{{{"no", 0}, {"yes", 1}}};

template<const auto& Words>
QString knownWord(int64_t number)
{
    for (const auto& word : Words) {
        if (number == int64_t{word.value})
            return QLatin1String(word.text);
    }
    return {};
}

QString pageWord(int64_t number)
{
    const handset::ScreenPage* const page = handset::pageNumbered(static_cast<int>(number));
    return page ? QString(QLatin1String(page->name)) : QString();
}

QString percent(int64_t number)
{
    return u"%1 %"_s.arg(number);
}

/// A field whose values have words, in every message of the channel that has it, or in one.
struct ValueRow
{
    const char* channel;
    const char* message; ///< null for every one
    const char* field;
    QString (*word)(int64_t number);
};

const char* typeName(PHONE_Msg::PHONE_MSG_TYPE_T type)
{
    return phoneMessage(type).name;
}

const std::array kValueRows{
    ValueRow{kPhoneChannel, nullptr, "battery-capacity", percent},
    ValueRow{kPhoneChannel, typeName(PHONE_Msg::PHONE_MSG_BATTERY_VALUE_CHANGE_S), "value", percent},
    ValueRow{kPhoneChannel, nullptr, "network", knownWord<kNetwork>},
    ValueRow{kPhoneChannel, typeName(PHONE_Msg::PHONE_MSG_NETWORK_STATUS_S), "status", knownWord<kNetwork>},
    ValueRow{kPhoneChannel, nullptr, "connected", knownWord<kYesOrNo>},
    ValueRow{kPhoneChannel, nullptr, "on", knownWord<kSwitch>},
    ValueRow{kVoiceCallChannel, nullptr, "dial-mode", knownWord<kDialModes>},
    ValueRow{kRecentCallChannel, nullptr, "category", knownWord<kCategories>},
    ValueRow{kRecentCallChannel, nullptr, "page", pageWord},
    ValueRow{kRecentCallChannel, nullptr, "selected", knownWord<kYesOrNo>},
};

} // namespace

QString valueWord(const QCString& channel, const QCString& name, const QString& field, int64_t number)
{
    const auto row = std::ranges::find_if(kValueRows, [&](const ValueRow& known) {
        return channel == known.channel && (!known.message || name == known.message)
               && field == QLatin1String(known.field);
    });
    return row == kValueRows.end() ? QString() : row->word(number);
}

} // namespace zyn::tool
