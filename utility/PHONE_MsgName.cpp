// The names of numbered messages.
#include "utility/PHONE_MsgName_p.h"

#include <charconv>

namespace zyn {

QCString messageName(std::string_view prefix, unsigned type, unsigned types)
{
    if (type >= types)
        return QCString("");
    return QCString(prefix.data(), static_cast<qsizetype>(prefix.size())) + QCString::number(type);
}

std::optional<unsigned> messageType(std::string_view prefix, const QCString& name, unsigned types)
{
    std::string_view digits(name.constData(), static_cast<size_t>(name.size()));
    if (!digits.starts_with(prefix))
        return std::nullopt;
    digits.remove_prefix(prefix.size());
    if (digits.size() > 1 && digits.front() == '0')
        return std::nullopt;
    unsigned type = 0;
    const char* const end = digits.data() + digits.size();
    const auto [parsed, error] = std::from_chars(digits.data(), end, type);
    if (error != std::errc() || parsed != end || type >= types)
        return std::nullopt;
    return type;
}

} // namespace zyn
