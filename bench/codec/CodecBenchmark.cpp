// Measures how long values take to be encoded and decoded, in the library and in its peers, on the same values. Before
// anything is measured, what each codec decodes is compared with what it encoded. The limit is to copy the library's
// bytes.
//
// The benchmarks are named <encode or decode>/<number of values>/<by whom>; times are per value.

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <stdexcept>

#include <benchmark/benchmark.h>

#include "Codec.h"

namespace {

constexpr struct {
    const char* name;
    std::unique_ptr<Codec> (*make)(const SampleValues& values);
} codecs[] = {
    {"library", makeLibraryCodec}, {"protobuf", makeProtobufCodec}, {"nanopb", makeNanopbCodec},
    {"msgpack", makeMsgpackCodec}, {"netsnmp", makeNetSnmpCodec},
};

// What a card answers: one kind of value after the other, as many bits in use as counters have after a while.
SampleValues makeSamples(std::size_t count)
{
    SampleValues values;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t oid = 0x10203000 + i;
        switch (i % 5) {
            case 0: values.push_back({oid, std::uint32_t{3000000000U + i}}); break;
            case 1: values.push_back({oid, std::int32_t{-1000000 - static_cast<std::int32_t>(i)}}); break;
            case 2: values.push_back({oid, std::uint64_t{0x0000123456789ABCU + i}}); break;
            case 3: values.push_back({oid, true}); break;
            default: values.push_back({oid, "laser bias " + std::to_string(i)}); break;
        }
    }
    return values;
}

template <typename Operation>
void registerOperation(const std::string& name, std::size_t count, Operation operation)
{
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

void registerCodec(const std::string& byWhom, std::shared_ptr<Codec> pCodec, const SampleValues& values)
{
    if (!pCodec->encode() || !pCodec->decode() || !(pCodec->decoded() == values)) {
        throw std::runtime_error(byWhom + " does not decode what it encodes");
    }
    const std::string number = "/" + std::to_string(values.size()) + "/";
    registerOperation("encode" + number + byWhom, values.size(), [pCodec] { return pCodec->encode(); });
    registerOperation("decode" + number + byWhom, values.size(), [pCodec] { return pCodec->decode(); });
}

void registerCopying(std::size_t length, std::size_t count)
{
    registerOperation("copy/" + std::to_string(count) + "/memcpy", count,
                      [source = std::vector<char>(length), target = std::vector<char>(length), length]() mutable {
                          benchmark::DoNotOptimize(length);
                          benchmark::DoNotOptimize(target.data());
                          std::memcpy(target.data(), source.data(), length);
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
        for (const std::size_t count : {1, 16, 64}) {
            const SampleValues values = makeSamples(count);
            for (const auto& codec : codecs) {
                registerCodec(codec.name, codec.make(values), values);
            }
            const auto pLibrary = makeLibraryCodec(values);
            pLibrary->encode();
            registerCopying(pLibrary->encodedSize(), count);
        }
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
        return EXIT_SUCCESS;
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << '\n';
        return EXIT_FAILURE;
    }
}
