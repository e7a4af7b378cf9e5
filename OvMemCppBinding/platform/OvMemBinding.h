#ifndef OVMEMCPPBINDING_PLATFORM_OVMEMBINDING_H
#define OVMEMCPPBINDING_PLATFORM_OVMEMBINDING_H

#include <stddef.h>
#include <stdint.h>

// The transport library, libOvMemBinding.so: eight plain functions that carry
// one request to the Model Event Manager and its reply back.
//
// Every function answers with a 32-bit status. Negative is an error, except
// that OvMem_Receive answers -1 at the end of a reply and OvMem_Init treats
// everything but 0 as an error. OvMem_GetLastError says in words what the last
// error was.
//
// The order of calls in one exchange is drawn in docs/wire-format.md; what is
// known and what is not settled about the library is in README.md beside this
// file.
//
// Threads: one exchange at a time; the transport keeps the exchange in
// progress and the last error to itself.

#pragma GCC visibility push(default)

extern "C" {

// The heap functions that the transport uses for the memory it allocates.
typedef void* (*OvMemAllocate)(size_t size);
typedef void (*OvMemRelease)(void* block);

// Starts the transport. 0 is success, any other value an error code.
int32_t OvMem_Init(OvMemAllocate allocate, OvMemRelease release);

// Ends the transport.
int32_t OvMem_Term(void);

// Sends one NUL-terminated text as the whole request, acknowledged. The text
// is read before the call returns.
int32_t OvMem_Send(const char* text);

// Sends one NUL-terminated text as a part of a request, not acknowledged. A
// positive status while a body is being streamed means: go on.
int32_t OvMem_SendNoAck(const char* text);

// Marks the end of what was sent.
int32_t OvMem_SendEOF(void);

// During the handshake: 19 asks for the request body, 20 says that none is
// needed. During the reply: the number of bytes just written into `buffer`,
// or -1 at the end of the reply.
//
// REQUIRES: `buffer` has room for 16384 bytes; no length is passed.
int32_t OvMem_Receive(char* buffer);

// Ends the exchange after the whole reply has been read.
int32_t OvMem_Complete(void);

// Stores in `*text` a NUL-terminated description of the last error, or null.
// 0 when it could do so. The text belongs to the transport; the caller copies
// it before the next call and never frees it.
int32_t OvMem_GetLastError(const char** text);

}  // extern "C"

#pragma GCC visibility pop

#endif
