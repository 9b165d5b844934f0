// The record of one command on a command socket.
#pragma once

#include "platform/ZynExport.h"

#include <cstddef>
#include <cstdint>
#include <memory>

/// One command: a code and a block of data.
class ZYN_EXPORT UTIL_CommandBody
{
public:
    int32_t commandId = 0; ///< the code of the command, or of the reply to one
    /// Length of the data in bytes, 0 to 1048576; set it before AllocateDataBuffer().
    int32_t dataLength = 0;

    UTIL_CommandBody();
    ~UTIL_CommandBody();
    UTIL_CommandBody(const UTIL_CommandBody&) = delete;
    UTIL_CommandBody& operator=(const UTIL_CommandBody&) = delete;

    /// Allocates dataLength zero bytes in place of the earlier buffer. False, and no buffer, when dataLength is out of
    /// range or there is no memory.
    bool AllocateDataBuffer();

    /// The data buffer, owned by the record; null when there is none.
    char* dataBuffer() const { return m_buffer.get(); }

    /// The length of the data buffer in bytes; 0 when there is none.
    size_t allocatedLength() const { return m_allocated; }

private:
    std::unique_ptr<char[]> m_buffer;
    size_t m_allocated = 0;
};
