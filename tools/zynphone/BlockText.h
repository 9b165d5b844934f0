// Bytes as the tool writes and reads them: hexadecimal digits, and blocks of a fixed size.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::tool {

/// @p bytes in hexadecimal digits.
QString hexText(const QByteArray& bytes);

/// The bytes that @p digits stand for; a usage error when they are none.
QByteArray bytesFromHex(const QString& digits);

/// @{ A block as "hex:" and the digits of its bytes.
bool isHexBlock(const QString& text);
QString hexBlock(const QByteArray& block);
/// @}

/// The text that @p block holds when that is graphic ASCII followed by nothing but NULs, else "hex:" and digits.
QString blockText(const QByteArray& block);

/// The block of @p size bytes that @p text, of @p what, stands for, as blockText() writes it; what follows a text is
/// NULs. A usage error when it is none.
QByteArray blockFrom(const QString& text, const QString& what, qsizetype size);

} // namespace zyn::tool
