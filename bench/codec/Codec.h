#ifndef BENCH_CODEC_CODEC_H
#define BENCH_CODEC_CODEC_H

// What is measured: a codec that turns the values that it was made with into bytes, and those bytes back into values.
// Each codec holds both in the form that is natural to it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

/// A value of a card in the types that all codecs know.
struct SampleValue {
    std::uint32_t oid;
    std::variant<std::uint32_t, std::int32_t, std::uint64_t, bool, std::string> value;

    bool operator==(const SampleValue& other) const { return (oid == other.oid) && (value == other.value); }
};

using SampleValues = std::vector<SampleValue>;

class Codec {
public:
    Codec() = default;
    virtual ~Codec() = default;
    Codec(const Codec&) = delete;
    Codec& operator=(const Codec&) = delete;

    /// Encodes the values. False on failure.
    virtual bool encode() = 0;

    /// Decodes what encode() made, in place of what was decoded before. False on failure.
    virtual bool decode() = 0;

    /// Number of bytes that encode() made.
    virtual std::size_t encodedSize() const = 0;

    /// What decode() made, in ascending order of the OIDs.
    virtual SampleValues decoded() const = 0;
};

std::unique_ptr<Codec> makeLibraryCodec(const SampleValues& values);
std::unique_ptr<Codec> makeMsgpackCodec(const SampleValues& values);
std::unique_ptr<Codec> makeNanopbCodec(const SampleValues& values);
std::unique_ptr<Codec> makeNetSnmpCodec(const SampleValues& values);
std::unique_ptr<Codec> makeProtobufCodec(const SampleValues& values);

/// For std::visit: one lambda for each type of a value.
template <typename... Lambdas>
struct Overloaded : Lambdas... {
    using Lambdas::operator()...;
};
template <typename... Lambdas>
Overloaded(Lambdas...) -> Overloaded<Lambdas...>;

#endif
