// Plain structures as bytes.
#pragma once

#include <QtCore/QByteArrayView>

#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>

namespace zyn {

/// The bytes of a plain structure, as files and sockets hold them.
template<typename Plain>
QByteArrayView bytesOf(const Plain& plain)
{
    static_assert(std::is_trivially_copyable_v<Plain>);
    return QByteArrayView(reinterpret_cast<const char*>(&plain), static_cast<qsizetype>(sizeof plain));
}

/// The plain structure at the start of @p bytes, which hold at least as many as it has.
template<typename Plain>
Plain toPlain(std::span<const std::byte> bytes)
{
    static_assert(std::is_trivially_copyable_v<Plain>);
    Plain plain;
    std::memcpy(static_cast<void*>(&plain), bytes.data(), sizeof plain);
    return plain;
}

} // namespace zyn
