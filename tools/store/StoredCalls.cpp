// The logged calls as their files hold them.
#include "tools/store/StoredCalls.h"

#include "platform/posix/File_p.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"

namespace zyn::tool {

std::optional<std::vector<PHONE_ENG_RecentCall>> storedCalls(RC_CALL_CATEGORY_T list)
{
    const QByteArray path = storeDirectoryPath() + recordFileName(list);
    const auto image = posix::readWhole(path, RecordFile::size());
    if (!image && !posix::fileId(path))
        return std::vector<PHONE_ENG_RecentCall>();
    if (!image || !RecordFile::isValid(*image))
        return std::nullopt;
    std::vector<PHONE_ENG_RecentCall> calls;
    for (const int slot : RecordFile::usedSlots(*image))
        calls.push_back(RecordFile::at(*image, slot));
    return calls;
}

} // namespace zyn::tool
