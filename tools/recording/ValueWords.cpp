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
QString wordOf(int64_t number)
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
struct Row
{
    const char* channel;
    const char* message; ///< null for every one
    const char* field;
    QString (*word)(int64_t number);
};

const char* nameOf(PHONE_Msg::PHONE_MSG_TYPE_T type)
{
    return phoneMessage(type).name;
}

const std::array kRows{
    Row{kPhoneChannel, nullptr, "battery-capacity", percent},
    Row{kPhoneChannel, nameOf(PHONE_Msg::PHONE_MSG_BATTERY_VALUE_CHANGE_S), "value", percent},
    Row{kPhoneChannel, nullptr, "network", wordOf<kNetwork>},
    Row{kPhoneChannel, nameOf(PHONE_Msg::PHONE_MSG_NETWORK_STATUS_S), "status", wordOf<kNetwork>},
    Row{kPhoneChannel, nullptr, "connected", wordOf<kYesOrNo>},
    Row{kPhoneChannel, nullptr, "on", wordOf<kSwitch>},
    Row{kVoiceCallChannel, nullptr, "dial-mode", wordOf<kDialModes>},
    Row{kRecentCallChannel, nullptr, "category", wordOf<kCategories>},
    Row{kRecentCallChannel, nullptr, "page", pageWord},
    Row{kRecentCallChannel, nullptr, "selected", wordOf<kYesOrNo>},
};

} // namespace

QString valueWord(const QCString& channel, const QCString& name, const QString& field, int64_t number)
{
    const auto row = std::ranges::find_if(kRows, [&](const Row& known) {
        return channel == known.channel && (!known.message || name == known.message)
               && field == QLatin1String(known.field);
    });
    return row == kRows.end() ? QString() : row->word(number);
}

} // namespace zyn::tool
