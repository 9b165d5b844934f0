// Bytes as hexadecimal digits and back.
#pragma once

#include "tools/zynphone/ExitCode.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <algorithm>

namespace zyn::tool {

inline QString hexText(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

/// The bytes that @p digits stand for; a usage error when they are none.
inline QByteArray bytesFromHex(const QString& digits)
{
    const QByteArray text = digits.toUtf8();
    const bool isHex = std::ranges::all_of(text, [](char digit) {
        return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f') || (digit >= 'A' && digit <= 'F');
    });
    if (!isHex || text.size() % 2 != 0)
        throw usageError(QStringLiteral("'%1' is no even number of hexadecimal digits").arg(digits));
    return QByteArray::fromHex(text);
}

} // namespace zyn::tool
