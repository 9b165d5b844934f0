// The missed calls in numbers.
#include "qml/module/MissedCalls.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::qml {

MissedCalls::MissedCalls(QObject* parent)
    : QObject(parent)
    , m_reader([] {}, [this](const CallSelection&, const CallLogReader::Calls& calls) { take(calls); })
{
    connect(&m_reader, &CallLogReader::outdated, this, &MissedCalls::reload);
    reload();
}

void MissedCalls::reload()
{
    m_reader.read({.category = RC_CALL_CATEGORY_MISSED});
}

void MissedCalls::take(const CallLogReader::Calls& calls)
{
    // All is set before anything is told, so that nobody sees the half of it.
    const QString error = std::exchange(m_error, calls ? QString() : CallLogReader::noAnswerText());
    const Facts before = m_facts;
    if (calls)
        m_facts = factsOf(*calls);
    const Facts now = m_facts;
    if (now.count != before.count)
        Q_EMIT countChanged();
    if (now.unread != before.unread)
        Q_EMIT unreadChanged();
    if (now.last != before.last)
        Q_EMIT lastChanged();
    if (now.count >= 0 && before.count < 0)
        Q_EMIT loadedChanged();
    if (m_error != error)
        Q_EMIT errorChanged();
}

MissedCalls::Facts MissedCalls::factsOf(const std::vector<CallRecord>& calls)
{
    const auto isUnread = [](const CallRecord& call) { return (call.readFlags & CallRecord::kRead) == 0; };
    Facts facts{.count = static_cast<int>(calls.size()),
                .unread = static_cast<int>(std::ranges::count_if(calls, isUnread)),
                .last = {}};
    if (!calls.empty()) {
        const CallRecord& newest = calls.front();
        facts.last = QVariantMap{{u"number"_s, newest.getPhoneNumber()},
                                 {u"name"_s, newest.getDisplayName()},
                                 {u"start"_s, newest.getStartDateTime()}};
    }
    return facts;
}

} // namespace zyn::qml
