// What can be wrong with every kind of store file.
#include "tools/store/StoreFileProblems.h"

#include "recentcall/utility/store/StoreFile_p.h"

#include <cstring>

using namespace Qt::StringLiterals;

namespace zyn::tool {

QStringList headerProblems(const QByteArray& image)
{
    StoreFileHeader header{0, 0};
    if (image.size() < qsizetype{sizeof header})
        return {u"the header is cut short"_s};
    std::memcpy(&header, image.constData(), sizeof header);
    QStringList problems;
    if (header.magic != header.kMagic)
        problems += u"the magic is 0x%1, not 0x%2"_s.arg(header.magic, 8, 16, QLatin1Char('0'))
                        .arg(header.kMagic, 8, 16, QLatin1Char('0'));
    if (header.version != header.kVersion)
        problems += u"the version is %1, not %2"_s.arg(header.version).arg(header.kVersion);
    return problems;
}

QStringList sizeProblems(const QByteArray& image, qint64 expected)
{
    if (image.size() == expected)
        return {};
    return {u"the size is %1 bytes, not %2"_s.arg(image.size()).arg(expected)};
}

QStringList flagProblems(const PHONE_ENG_RecentCall& call)
{
    QStringList problems;
    if ((call.readFlags & ~kKnownReadFlags) != 0)
        problems += u"the read flags are 0x%1"_s.arg(call.readFlags, 2, 16, QLatin1Char('0'));
    if (call.inUse != 1)
        problems += u"the flag of its use is %1"_s.arg(int{call.inUse});
    if (call.completed > 1)
        problems += u"the flag of its completion is %1"_s.arg(call.completed);
    return problems;
}

QStringList textProblems(const PHONE_ENG_RecentCall& call)
{
    QStringList problems;
    if (!isTerminated(call.phoneNumber))
        problems += u"the number has no NUL"_s;
    if (!isTerminated(call.displayName))
        problems += u"the name has no NUL"_s;
    if (!isTerminated(call.pttSessionId))
        problems += u"the session id has no NUL"_s;
    return problems;
}

} // namespace zyn::tool
