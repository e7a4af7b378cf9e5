#ifndef BENCH_INSTANTTRANSPORT_H
#define BENCH_INSTANTTRANSPORT_H

#include <cstddef>
#include <string>

namespace Orvane::Net::OvModelEventManager::Bench {

// The eight functions of OvMemBinding.h in this folder: a transport that asks
// for the body of every streamed request and answers at once with a reply held
// in memory.
namespace InstantTransport {

// How much OvMem_Receive hands over at most, in bytes.
inline constexpr std::size_t largestChunk = 16384;

// The reply is `text`, again and again, `times` times; it comes in pieces of
// `chunk` bytes.
void setReply(std::string text, std::size_t times = 1,
              std::size_t chunk = largestChunk);

// All that has been sent since the last call. Only what is sent while
// recording is on is kept; the cost of that belongs into no measurement.
void record(bool on);
std::string takeRecorded();

}  // namespace InstantTransport

}  // namespace Orvane::Net::OvModelEventManager::Bench

#endif
