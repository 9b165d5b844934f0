// The known state of the phone.
#include "tools/top/PhoneState.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {

void PhoneState::set(Item item, const QString& text, bool isAlert)
{
    assign(item, {text.isEmpty() ? u"none"_s : text, isAlert});
}

void PhoneState::remove(Item item)
{
    assign(item, {});
}

void PhoneState::assign(Item item, const Value& value)
{
    if (std::exchange(m_values.at(static_cast<size_t>(item)), value) != value)
        Q_EMIT changed();
}

} // namespace zyn::tool
