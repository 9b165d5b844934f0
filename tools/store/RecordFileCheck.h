// Checks the record file of a list of calls.
#pragma once

#include "recentcall/utility/RC_Types.h"
#include "tools/store/FileKind.h"

namespace zyn::tool {

/// The name of the file of @p list.
QString recordFile(RC_CALL_CATEGORY_T list);
/// The list whose file has the name @p name; RC_CALL_CATEGORY_NONE for any other.
RC_CALL_CATEGORY_T listOfFile(const QString& name);

bool isRecordFileName(const QString& name);
bool isRecordFileImage(const QByteArray& image);

/**
 * Checks header, size and every slot in use.
 *
 * The list that the calls must belong to is that of the file's name; a file of another name may hold any. The
 * slots of a file with a wrong header are not looked at, as they may be anything.
 */
FileFindings checkRecordFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kRecordFileKind{isRecordFileName, isRecordFileImage, checkRecordFile};

} // namespace zyn::tool
