// What the targets of the fuzzer share: how a target is described, how it takes its input apart, and how it fails.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <span>

namespace zyn::fuzz {

/// The bytes of one run, taken from the front. Past the end there are zeros and empty texts.
class Input
{
public:
    explicit Input(std::span<const std::byte> bytes)
        : m_bytes(bytes)
    {}

    bool isAtEnd() const { return m_bytes.empty(); }

    uint8_t byte() { return number<uint8_t>(); }

    /// A number of the type's whole range, least significant byte first.
    template<typename Number>
    Number number()
    {
        Number value{};
        const auto taken = take(sizeof value);
        if (!taken.empty())
            std::memcpy(&value, taken.data(), taken.size());
        return value;
    }

    /// A number from 0 on, less than @p end, which is from 1 to 256.
    int below(int end) { return byte() % end; }

    /// A text of at most 255 bytes, behind a byte that tells how many.
    QByteArray text() { return bytesOf(take(byte())); }

    /// All that is left.
    QByteArray rest() { return bytesOf(take(m_bytes.size())); }

private:
    static QByteArray bytesOf(std::span<const std::byte> bytes)
    {
        return QByteArray(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    }

    std::span<const std::byte> take(size_t size)
    {
        const auto taken = m_bytes.first(std::min(size, m_bytes.size()));
        m_bytes = m_bytes.subspan(taken.size());
        return taken;
    }

    std::span<const std::byte> m_bytes;
};

/// One target.
struct Target
{
    const char* name;
    const char* reads; ///< what of the tree it is about, for --list
    void (*run)(Input& input);
    QList<QByteArray> (*seeds)(); ///< inputs to begin with: what the readers get on a handset
};

/// @{ The targets of each file.
std::span<const Target> channelTargets();
std::span<const Target> fileTargets();
std::span<const Target> messageTargets();
std::span<const Target> modemTargets();
std::span<const Target> socketTargets();
std::span<const Target> textTargets();
std::span<const Target> activityTargets();
std::span<const Target> conversationTargets();
std::span<const Target> storeTargets();
/// @}

/// A part of a seed.
inline QByteArray seed(std::initializer_list<char> bytes)
{
    return QByteArray(bytes.begin(), std::ssize(bytes));
}

/// Ends the process, as a crash does, unless @p condition holds.
void require(bool condition, const char* rule, const char* file = __builtin_FILE(), int line = __builtin_LINE());

/// A fresh folder, and no singleton that knows of another: stores and settings are in it while it lives.
class Folder
{
public:
    Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder();

    QString path(const QString& name = {}) const { return m_directory.path() + u'/' + name; }
    /// The path of the file @p name of the stores.
    QString store(const QString& name) const { return path(QStringLiteral("phone/")) + name; }

    /// Forgets what this process knows of stores and settings, as if it were another one.
    static void forget();

private:
    QTemporaryDir m_directory;
};

/// Makes @p contents those of the file @p path, which is no replacement of it: it stays the same file.
inline void writeFile(const QString& path, const QByteArray& contents)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size(), "a file can be written");
}

/// The contents of the file @p path; empty when it cannot be read.
inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace zyn::fuzz
