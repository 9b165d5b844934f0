// The record of one command on a command socket.
#include "platform/UTIL_CommandBody.h"

#include "platform/CommandFrame_p.h"

#include <new>

UTIL_CommandBody::UTIL_CommandBody() = default;

UTIL_CommandBody::~UTIL_CommandBody() = default;

bool UTIL_CommandBody::AllocateDataBuffer()
{
    m_buffer.reset();
    m_allocated = 0;
    if (dataLength < 0 || dataLength > zyn::kCommandDataLimit)
        return false;
    m_buffer.reset(new (std::nothrow) char[static_cast<size_t>(dataLength)]());
    if (!m_buffer)
        return false;
    m_allocated = static_cast<size_t>(dataLength);
    return true;
}
