// Measures how long a component's values take to be encoded and decoded, in the library and in its peers, on the same
// values. Before anything is measured, what each codec decodes is compared with what it encoded. The lower bound is a
// copy of the library's bytes.
//
// The benchmarks are named <what>/<number of values>/<by whom>; the time of one iteration is that of all its values.

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "Codec.h"

namespace {

constexpr struct {
    const char* name;
    std::unique_ptr<Codec> (*make)();
} CODECS[] = {
    {"library", makeLibraryCodec}, {"protobuf", makeProtobufCodec}, {"nanopb", makeNanopbCodec},
    {"msgpack", makeMsgpackCodec}, {"netsnmp", makeNetSnmpCodec},
};

// One kind of value after the other, with as many bits in use as counters have after a while.
OidTypeValueContainer makeValues(std::uint32_t count)
{
    OidTypeValueContainer values;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t oid = 0x10203000 + i;
        switch (i % 4) {
            case 0: values.push_back({oid, OID_TYPE_UINT32, 3000000000U + i}); break;
            case 1: values.push_back({oid, OID_TYPE_INT32, -1000000 - static_cast<int>(i)}); break;
            case 2: values.push_back({oid, OID_TYPE_UINT64, 0x0000123456789ABCULL + i}); break;
            default: values.push_back({oid, OID_TYPE_STRING, "laser bias " + std::to_string(i)}); break;
        }
    }
    return values;
}

ObjectIdContainer oidsOf(const OidTypeValueContainer& values)
{
    ObjectIdContainer oids;
    for (const OidTypeValue& value : values) {
        oids.push_back(value.oid);
    }
    return oids;
}

bool isSameValue(const OidTypeValue& value, const TypeValueRecord& record)
{
    if ((value.type != record.type) || (value.value.type() != record.value.type())) {
        return false;
    }
    const auto isSameAs = [&](auto example) {
        using T = decltype(example);
        return boost::any_cast<const T&>(value.value) == boost::any_cast<const T&>(record.value);
    };
    switch (value.type) {
        case OID_TYPE_UINT32: return isSameAs(0U);
        case OID_TYPE_INT32: return isSameAs(0);
        case OID_TYPE_UINT64: return isSameAs(0ULL);
        default: return isSameAs(std::string());
    }
}

void checkThatValuesComeBack(const std::string& name, Codec& codec, const OidTypeValueContainer& values)
{
    OidTypeValueMap decoded;
    bool isSame = codec.encode(values) && codec.decode(oidsOf(values), decoded) && (decoded.size() == values.size());
    for (const OidTypeValue& value : values) {
        isSame = isSame && (decoded.count(value.oid) == 1) && isSameValue(value, decoded[value.oid]);
    }
    if (!isSame) {
        throw std::runtime_error(name + " does not decode what it encodes");
    }
}

template <typename Operation>
void registerOperation(const std::string& what, std::size_t count, const std::string& byWhom, Operation operation)
{
    const std::string name = what + "/" + std::to_string(count) + "/" + byWhom;
    benchmark::RegisterBenchmark(name.c_str(), [count, operation](benchmark::State& state) mutable {
        for (auto _ : state) {
            if (!operation()) {
                state.SkipWithError("failed");
                break;
            }
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
    });
}

void registerCodec(const std::string& name, const std::shared_ptr<Codec>& pCodec, const OidTypeValueContainer& values)
{
    checkThatValuesComeBack(name, *pCodec, values);
    registerOperation("encode", values.size(), name, [pCodec, values] { return pCodec->encode(values); });
    registerOperation("decode", values.size(), name,
                      [pCodec, oids = oidsOf(values), decoded = OidTypeValueMap()]() mutable {
                          decoded.clear();
                          return pCodec->decode(oids, decoded);
                      });
    if (pCodec->hasOwnForm()) {
        registerOperation("encode own form", values.size(), name, [pCodec] { return pCodec->encodeOwn(); });
        registerOperation("decode own form", values.size(), name, [pCodec] { return pCodec->decodeOwn(); });
    }
}

void registerCopying(const OidTypeValueContainer& values)
{
    const auto pLibrary = makeLibraryCodec();
    pLibrary->encode(values);
    const std::vector<char> bytes(pLibrary->encodedSize());
    registerOperation("copy", values.size(), "memcpy", [source = bytes, target = bytes]() mutable {
        benchmark::DoNotOptimize(source.data());
        benchmark::DoNotOptimize(target.data());
        std::memcpy(target.data(), source.data(), source.size());
        return true;
    });
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    try {
        for (const std::uint32_t count : {1U, 16U, 64U}) {
            const OidTypeValueContainer values = makeValues(count);
            for (const auto& codec : CODECS) {
                registerCodec(codec.name, codec.make(), values);
            }
            registerCopying(values);
        }
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
        return EXIT_SUCCESS;
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << '\n';
        return EXIT_FAILURE;
    }
}
