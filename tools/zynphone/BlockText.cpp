// Bytes as text: hexadecimal digits, and blocks of a fixed size.
#include "tools/zynphone/BlockText.h"

#include "tools/zynphone/Text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr QLatin1String kHexPrefix("hex:");

bool isGraphic(char character)
{
    return character > ' ' && character <= '~';
}

} // namespace

QString hexText(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

QByteArray bytesFromHex(const QString& digits)
{
    const QByteArray text = digits.toUtf8();
    const bool isHex = std::ranges::all_of(text, [](char digit) {
        return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f') || (digit >= 'A' && digit <= 'F');
    });
    if (!isHex || text.size() % 2 != 0)
        throw usageError(u"'%1' is not an even number of hexadecimal digits"_s.arg(digits));
    return QByteArray::fromHex(text);
}

bool isHexBlock(const QString& text)
{
    return text.startsWith(kHexPrefix);
}

QString hexBlock(const QByteArray& block)
{
    return kHexPrefix + hexText(block);
}

QString blockText(const QByteArray& block)
{
    const auto padding = std::ranges::find_if_not(block, isGraphic);
    const bool isText = std::all_of(padding, block.end(), [](char character) { return character == '\0'; });
    const QString text = QString::fromLatin1(block.constData(), padding - block.begin());
    return isText && !isHexBlock(text) ? text : hexBlock(block);
}

QByteArray blockFrom(const QString& text, const QString& what, qsizetype size)
{
    if (!isHexBlock(text))
        return latin1Field(text, what, size).toLatin1().leftJustified(size, '\0');
    QByteArray block = bytesFromHex(text.sliced(kHexPrefix.size()));
    if (block.size() != size)
        throw usageError(u"the %1 has %2, not %3"_s.arg(what, counted(block.size(), "byte"), QString::number(size)));
    return block;
}

} // namespace zyn::tool
