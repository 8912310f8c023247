#ifndef BENCH_CODEC_CODEC_H
#define BENCH_CODEC_CODEC_H

// What is measured: a codec that turns a component's values into bytes and those bytes into a map of values, which is
// what the library does with a request and an answer.
//
// Most peers convert the values to and from their own messages. The conversion is part of the work; encodeOwn and
// decodeOwn leave it out, which only a component that keeps its values in the peer's messages can do.

#include <cstddef>
#include <memory>
#include <utility>

#include "IfcCardStatusAndControl.h"

class Codec {
public:
    Codec() = default;
    virtual ~Codec() = default;
    Codec(const Codec&) = delete;
    Codec& operator=(const Codec&) = delete;

    /// Encodes `values`, which are of the types 0, 1, 5 and 9. False on failure.
    virtual bool encode(const OidTypeValueContainer& values) = 0;

    /// Decodes into `values`, which is empty, what encode() made last, in answer to a request for `requestedOids`.
    /// False on failure.
    virtual bool decode(const ObjectIdContainer& requestedOids, OidTypeValueMap& values) = 0;

    /// Number of bytes that encode() made last.
    virtual std::size_t encodedSize() const = 0;

    virtual bool hasOwnForm() const { return false; }

    /// Encodes the message that encode() has made. False on failure.
    virtual bool encodeOwn() { return false; }

    /// Decodes into a message only. False on failure.
    virtual bool decodeOwn() { return false; }
};

std::unique_ptr<Codec> makeLibraryCodec();
std::unique_ptr<Codec> makeMsgpackCodec();
std::unique_ptr<Codec> makeNanopbCodec();
std::unique_ptr<Codec> makeNetSnmpCodec();
std::unique_ptr<Codec> makeProtobufCodec();

/// Puts a value into the map, at its end, where those of an answer in ascending order belong.
inline void addValue(OidTypeValueMap& values, std::uint32_t oid, OidValueType type, boost::any&& value)
{
    values.emplace_hint(values.end(), oid, TypeValueRecord{type, std::move(value)});
}

#endif
