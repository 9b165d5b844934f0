// Commands on a Unix-domain stream socket.
#pragma once

#include "platform/UTIL_CommandBody.h"
#include "platform/ZynExport.h"

/**
 * Sends one command as a whole frame: code and data length (signed 32-bit, little-endian), then the data.
 *
 * Waits while the peer reads nothing, for 5 seconds at most in all. A peer that has closed is a failure, never a
 * signal. After a failure the frame may be out in part, and the connection is of no more use.
 *
 * @param socket   a connected stream socket; it stays the caller's
 * @param command  stays the caller's
 * @return 0, or -1 on failure: the frame was not sent whole, the data length is negative or above 1 MiB, or it is
 * longer than the record's buffer
 */
ZYN_EXPORT int Socket_WriteCommand(int socket, UTIL_CommandBody* command);

/**
 * Reads one command.
 *
 * Waits for 5 seconds at most for the frame to begin, and from then on for 5 seconds at most until it is whole.
 *
 * @param socket  a connected stream socket; it stays the caller's
 * @return a new record that the caller deletes; null when the peer has closed or stayed silent, when reading failed, or
 *         when the frame's data length is negative or above 1 MiB
 */
ZYN_EXPORT UTIL_CommandBody* Socket_ReadCommand(int socket);
