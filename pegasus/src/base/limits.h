// The bounds that keep a hostile or broken server from taking more memory than its answer is worth.
// Every limit of the client stands here and nowhere else.
#pragma once

#include <Pegasus/Common/Config.h>

#include <chrono>
#include <cstddef>

namespace Pegasus::limits {

/// Bytes of a status line with its headers, and of a block of trailers.
constexpr std::size_t kHeadBytes = 256U * 1024U;
/// Header lines of one response, and trailer lines.
constexpr std::size_t kHeaders = 1000;
/// Bytes of the line that announces a chunk, extensions included.
constexpr std::size_t kChunkLineBytes = 4096;
/// Bytes of a response body that is kept.
constexpr std::size_t kBodyBytes = 128U * 1024U * 1024U;
/// Bytes of an error response's body that are read to keep the connection; a longer one costs the connection.
constexpr std::size_t kErrorBodyBytes = 1024U * 1024U;
/// How long the rest of an error response's body is waited for; its status is known by then.
constexpr std::chrono::milliseconds kErrorBodyWait{2000};
/// A whole TLS handshake may take that many time-outs; each of its waits is limited to one. It has two or three waits,
/// but a server that sends byte by byte, or messages without end, could make any number of them.
constexpr int kHandshakeTimeouts = 4;
/// Bytes that a TLS server may send on an idle connection without saying anything (session tickets); with that many
/// the connection is given up.
constexpr std::size_t kIdleBytes = 32U * 1024U;
/// Bytes asked of the socket at a time.
constexpr std::size_t kReadBytes = 64U * 1024U;
/// TLS sessions that a process keeps for later connects, one for each host, port and verification callback.
constexpr std::size_t kTlsSessions = 64;

/// How deep the elements of a document may be nested. CIM-XML needs about twenty levels; the limit bounds the decoders'
/// recursion.
constexpr std::size_t kElementNesting = 200;
/// How deep references may stand inside the keys of references. Each level doubles the backslashes of the path's text.
constexpr unsigned kReferenceNesting = 6;
/// How deep embedded objects may stand inside embedded objects.
constexpr unsigned kEmbedding = 16;
/// How many keys one instance name may have.
constexpr Uint32 kKeys = 1024;
/// How many qualifiers one element and how many parameters and methods one class or method may have.
constexpr Uint32 kMembers = 4096;

}  // namespace Pegasus::limits
