// Bytes as text: hexadecimal digits, and blocks of a fixed size.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::tool {

/// @p bytes in hexadecimal digits.
QString hexText(const QByteArray& bytes);

/// The bytes of the hexadecimal @p digits; a usage error if they are invalid.
QByteArray bytesFromHex(const QString& digits);

/// @{ A block as "hex:" and the digits of its bytes.
bool isHexBlock(const QString& text);
QString hexBlock(const QByteArray& block);
/// @}

/// The text in @p block if it is graphic ASCII padded with NULs, otherwise "hex:" and digits.
QString blockText(const QByteArray& block);

/// The block of @p size bytes that @p text describes, in the format of blockText(), padded with NULs. A usage error,
/// which names @p what, if it is invalid.
QByteArray blockFrom(const QString& text, const QString& what, qsizetype size);

} // namespace zyn::tool
