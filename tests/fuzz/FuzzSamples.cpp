// Files of samples: each row that is read has a value in range or the reason why not, and a second reading gives the
// same.
//
// Input: one byte, by which columns and range are chosen, and the file.

#include <cmath>
#include <vector>

#include "common/CommandLine.h"
#include "fuzz/FuzzFiles.h"
#include "samples/SampleReader.h"
#include "samples/SampleTime.h"

namespace brantel {
namespace {

struct Choice {
    ColumnChoice columns;
    std::int64_t lowest;
    std::int64_t highest;
};

Choice choiceOf(unsigned char byte)
{
    Choice choice{{}, INT32_MIN, INT32_MAX};
    if ((byte & 1U) != 0) {
        choice.columns.sample = ((byte & 2U) != 0) ? "2" : "value";
    }
    if ((byte & 4U) != 0) {
        choice.columns.time = ((byte & 8U) != 0) ? "1" : "when";
    }
    if ((byte & 16U) != 0) {
        choice.lowest = 0;
        choice.highest = UINT32_MAX;
    }
    if ((byte & 32U) != 0) {
        choice.columns.header = ((byte & 64U) != 0) ? Header::PRESENT : Header::ABSENT;
    }
    return choice;
}

std::vector<Sample> readAll(const std::string& path, const Choice& choice)
{
    std::vector<Sample> samples;
    LineReader lines(path);
    SampleReader reader(lines, choice.columns, choice.lowest, choice.highest);
    while (const std::optional<Sample> sample = reader.next()) {
        samples.push_back(*sample);
    }
    return samples;
}

bool isSame(const Sample& one, const Sample& other)
{
    return (one.number == other.number) && (one.line == other.line) && (one.time == other.time) &&
           (one.value == other.value) && (one.fault == other.fault);
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    if (size == 0) {
        return 0;
    }
    const Choice choice = choiceOf(pData[0]);
    const std::string path = fileOf(textOf(pData + 1, size - 1));
    std::vector<Sample> samples;
    if (!isAccepted<CommandError>(path, [&] { samples = readAll(path, choice); })) {
        return 0;
    }
    SampleTimes times;
    std::uint64_t number = 0;
    std::size_t line = 0;
    for (const Sample& sample : samples) {
        require(sample.number == ++number);
        require(sample.line > line);
        line = sample.line;
        require(!sample.fault.empty() || ((sample.value >= choice.lowest) && (sample.value <= choice.highest)));
        const std::optional<double> seconds = sample.time ? times.parse(*sample.time) : std::nullopt;
        require(!seconds || std::isfinite(*seconds));
    }
    const std::vector<Sample> again = readAll(path, choice);
    require(again.size() == samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        require(isSame(samples[i], again[i]));
    }
    return 0;
}

}  // namespace brantel
