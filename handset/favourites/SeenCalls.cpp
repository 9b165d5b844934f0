// Which calls of the call log have been looked at.
#include "handset/favourites/SeenCalls.h"

#include "platform/posix/File_p.h"
#include "platform/posix/StagedFile_p.h"
#include "recentcall/utility/StoreFile_p.h"

#include <QtCore/QFile>

#include <cstring>
#include <utility>

namespace zyn::handset {
namespace {

/// More than the call log ever holds.
constexpr qsizetype kSizeLimit = qsizetype{1024} * 1024;

} // namespace

SeenCalls::SeenCalls(QString path)
    : m_path(std::move(path))
{
    const QByteArray image = zyn::posix::readWhole(QFile::encodeName(m_path), kSizeLimit).value_or(QByteArray());
    if (!zyn::hasValidHeader(image))
        return;
    Mark mark = {};
    constexpr qsizetype kSize = sizeof mark;
    for (qsizetype at = sizeof(zyn::StoreFileHeader); at + kSize <= image.size(); at += kSize) {
        std::memcpy(&mark, image.constData() + at, sizeof mark);
        m_marks.insert(mark);
    }
}

bool SeenCalls::replaceBy(std::span<const PHONE_ENG_RecentCall> calls)
{
    QSet<Mark> marks;
    for (const PHONE_ENG_RecentCall& call : calls)
        marks.insert(markOf(call));
    if (m_isStored && marks == m_marks)
        return true;
    m_marks = marks;
    QByteArray image = zyn::bytesOf(zyn::StoreFileHeader{}).toByteArray();
    for (const Mark& mark : marks)
        image += zyn::bytesOf(mark);
    m_isStored = zyn::posix::replaceFile(QFile::encodeName(m_path), image);
    return m_isStored;
}

} // namespace zyn::handset
