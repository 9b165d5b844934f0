// A thread's cache of settings files: used for as long as the files are unchanged.
#include "platform/SettingsCache_p.h"

#include "platform/SettingsFile_p.h"
#include "platform/SettingsLines_p.h"
#include "platform/posix/File_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <array>
#include <utility>

namespace zyn {
namespace {

/// A larger file is read each time, so that the cache stays small.
constexpr qsizetype kKeptSize = qsizetype{64} * 1024;
constexpr size_t kKeptFiles = 4;    // all that a process asks for
constexpr size_t kKeptAnswers = 16; // few enough to be gone through

/// The value of the last entry of @p key in @p group of @p text.
std::optional<QByteArray> findEntry(const QByteArray& text, QAnyStringView group, QAnyStringView key)
{
    const QByteArray wantedGroup = group.toString().toUtf8();
    const QByteArray wantedKey = key.toString().toUtf8();
    std::optional<QByteArray> found;
    bool inGroup = wantedGroup.isEmpty();
    forEachSettingsLine(text, [&](const SettingsLine& line, qsizetype, qsizetype) {
        if (line.kind == SettingsLine::Group)
            inGroup = line.name == wantedGroup;
        else if (inGroup && line.kind == SettingsLine::Entry && line.name == wantedKey)
            found = line.value.toByteArray();
    });
    return found;
}

/// A copy with bytes of its own: a text may be made of bytes that somebody else frees, such as those of a library.
QString ownCopy(const QString& text)
{
    return QString(text.constData(), text.size());
}

/// A file as it was read, and what was asked of it: each question is looked up once.
class KeptFile
{
public:
    KeptFile() = default;
    KeptFile(QString path, QByteArray name, const posix::FileVersion& version, QByteArray text)
        : m_path(std::move(path))
        , m_name(std::move(name))
        , m_version(version)
        , m_text(std::move(text))
    {}

    bool isAt(const QString& path) const { return m_version && m_path == path; }
    bool isCurrent() const { return m_version == posix::fileVersion(m_name); }

    std::optional<QByteArray> value(QAnyStringView group, QAnyStringView key)
    {
        for (const Answer& answer : m_answers) {
            if (answer.key == key && answer.group == group)
                return answer.value;
        }
        Answer& answer = m_answers.at(m_asked++ % kKeptAnswers);
        answer = {group.toString(), key.toString(), findEntry(m_text, group, key)};
        return answer.value;
    }

private:
    struct Answer
    {
        QString group;
        QString key; ///< a file has no value for an empty one, as an unused answer says
        std::optional<QByteArray> value;
    };

    QString m_path;
    QByteArray m_name; ///< the path as the system has it
    std::optional<posix::FileVersion> m_version;
    QByteArray m_text;
    std::array<Answer, kKeptAnswers> m_answers;
    size_t m_asked = 0;
};

struct KeptPath
{
    QByteArray place; ///< what the environment variable holds
    QByteArray name;
    QString path;
};

struct Cache
{
    std::array<KeptFile, kKeptFiles> files;
    size_t oldest = 0;
    KeptPath path;
};

/// No destructor: settings may be asked for by objects that are destroyed after the thread's cache.
struct ThreadCache
{
    Cache* cache;
    bool isEnding;
};
thread_local ThreadCache t_cache = {};

struct CacheEnd
{
    CacheEnd() = default;
    CacheEnd(const CacheEnd&) = delete;
    CacheEnd& operator=(const CacheEnd&) = delete;
    ~CacheEnd()
    {
        delete std::exchange(t_cache.cache, nullptr);
        t_cache.isEnding = true;
    }
};

/// The cache of the calling thread; null when there is none any more.
Cache* threadCache()
{
    if (!t_cache.cache && !t_cache.isEnding) {
        static thread_local const CacheEnd t_end;
        t_cache.cache = new Cache;
    }
    return t_cache.cache;
}

} // namespace

std::optional<QByteArray> storedSetting(const QString& path, QAnyStringView group, QAnyStringView key)
{
    Cache* const cache = threadCache();
    KeptFile* kept = nullptr;
    if (cache) {
        const auto found = std::ranges::find_if(cache->files, [&](const KeptFile& file) { return file.isAt(path); });
        kept = found == cache->files.end() ? nullptr : &*found;
    }
    if (kept && kept->isCurrent())
        return kept->value(group, key);

    const QByteArray name = QFile::encodeName(path);
    const posix::UniqueFd file = posix::openForReading(name);
    if (!file.isValid()) {
        if (kept)
            *kept = {};
        return std::nullopt;
    }
    // Taken before the file is read: one that changes meanwhile has another version afterwards.
    const std::optional<posix::FileVersion> version = posix::fileVersion(file.get());
    const bool isSettled = version && posix::isSettled(*version);
    const std::optional<QByteArray> text = posix::readWhole(file.get(), kSettingsSizeLimit);
    if (kept)
        *kept = {};
    if (!text)
        return std::nullopt;
    if (!cache || !isSettled || text->size() > kKeptSize)
        return findEntry(*text, group, key);
    if (!kept)
        kept = &cache->files.at(cache->oldest++ % kKeptFiles);
    *kept = KeptFile(ownCopy(path), name, *version, *text);
    return kept->value(group, key);
}

QString settingsPath(const char* name)
{
    const QByteArray place = qgetenv(kSettingsPlace);
    Cache* const cache = threadCache();
    // Without the variable, the place is the user's affair, and may change any time.
    if (cache && !place.isEmpty() && cache->path.place == place && cache->path.name == name)
        return cache->path.path;
    QString path = settingsDirectory() + u'/' + QLatin1String(name);
    if (cache)
        cache->path = {place, name, path};
    return path;
}

} // namespace zyn
