#include <algorithm>
#include <chrono>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <dirent.h>
#include <unistd.h>

#include "OidValue.h"
#include "cards/CardObjects.h"
#include "cards/OidTable.h"

namespace brantel {
namespace {

using Number = unsigned long long;

std::string textOf(const std::string& file)
{
    std::ifstream stream(file);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::string firstLineOf(const std::string& file)
{
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

std::vector<Number> numbersAfter(std::istringstream& line)
{
    std::vector<Number> numbers;
    for (Number number = 0; line >> number;) {
        numbers.push_back(number);
    }
    return numbers;
}

// The number in column `index`, 0 if the kernel does not report it.
Number at(const std::vector<Number>& numbers, std::size_t index)
{
    return (index < numbers.size()) ? numbers[index] : 0;
}

// The columns of the line "cpu" of /proc/stat.
enum CpuColumn { USER, NICE, SYSTEM, IDLE, IO_WAIT, IRQ, SOFT_IRQ, STEAL, NUMBER_OF_CPU_COLUMNS };

std::vector<Number> cpuTicks()
{
    std::istringstream line(firstLineOf("/proc/stat"));
    std::string label;
    line >> label;
    std::vector<Number> ticks = numbersAfter(line);
    ticks.resize(NUMBER_OF_CPU_COLUMNS);
    return ticks;
}

Number millisecondsOf(Number ticks)
{
    static const auto ticksPerSecond = static_cast<Number>(::sysconf(_SC_CLK_TCK));
    return ticks * 1000 / ticksPerSecond;
}

// Percent of the processors' time that was not idle, since the last reading that is at least a second old.
class CpuBusy {
public:
    unsigned char percent()
    {
        const std::vector<Number> ticks = cpuTicks();
        const auto now = std::chrono::steady_clock::now();
        if (now - m_readAt >= std::chrono::seconds(1)) {
            m_percent = percentBetween(m_ticks, ticks);
            m_ticks = ticks;
            m_readAt = now;
        }
        return m_percent;
    }

private:
    static Number sum(const std::vector<Number>& ticks)
    {
        Number total = 0;
        for (const Number column : ticks) {
            total += column;
        }
        return total;
    }

    static unsigned char percentBetween(const std::vector<Number>& before, const std::vector<Number>& after)
    {
        const Number total = sum(after) - sum(before);
        const Number idle = after[IDLE] + after[IO_WAIT] - before[IDLE] - before[IO_WAIT];
        const bool isMeasured = (total > 0) && (idle <= total);
        return static_cast<unsigned char>(isMeasured ? (total - idle) * 100 / total : 0);
    }

    std::vector<Number> m_ticks = std::vector<Number>(NUMBER_OF_CPU_COLUMNS);  // first: since the host started
    std::chrono::steady_clock::time_point m_readAt;
    unsigned char m_percent = 0;
};

unsigned int memoryKib(const std::string& label)
{
    std::istringstream lines(textOf("/proc/meminfo"));
    std::string name;
    Number kib = 0;
    std::string unit;
    while (lines >> name >> kib && std::getline(lines, unit)) {
        if (name == label + ":") {
            return static_cast<unsigned int>(std::min<Number>(kib, UINT32_MAX));
        }
    }
    return 0;
}

// A column of /proc/net/dev, summed up over all interfaces but the loopback.
Number networkSum(std::size_t column)
{
    std::istringstream lines(textOf("/proc/net/dev"));
    Number sum = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t posColon = line.find(':');
        if (posColon == std::string::npos) {
            continue;
        }
        const std::size_t posName = line.find_first_not_of(' ');
        if (line.substr(posName, posColon - posName) != "lo") {
            std::istringstream counters(line.substr(posColon + 1));
            sum += at(numbersAfter(counters), column);
        }
    }
    return sum;
}

// Whole disks are in /sys/block, their partitions are not; what has no device behind it would count twice.
bool isDisk(const std::string& name)
{
    return ::access(("/sys/block/" + name + "/device").c_str(), F_OK) == 0;
}

// A column of /proc/diskstats after the name, summed up over all disks.
Number diskSum(std::size_t column)
{
    std::istringstream lines(textOf("/proc/diskstats"));
    Number sum = 0;
    for (std::string text; std::getline(lines, text);) {
        std::istringstream line(text);
        Number major = 0;
        Number minor = 0;
        std::string name;
        line >> major >> minor >> name;
        if (isDisk(name)) {
            sum += at(numbersAfter(line), column);
        }
    }
    return sum;
}

struct TemperatureSensor {
    std::string label;
    std::string file;
};

std::vector<std::string> namesIn(const std::string& folder, const std::string& start, const std::string& end)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), &::closedir);
    while (const dirent* const pEntry = (entries != nullptr) ? ::readdir(entries.get()) : nullptr) {
        const std::string name = pEntry->d_name;
        if ((name.size() >= start.size() + end.size()) && (name.compare(0, start.size(), start) == 0) &&
            (name.compare(name.size() - end.size(), end.size(), end) == 0)) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<TemperatureSensor> temperatureSensors()
{
    std::vector<TemperatureSensor> sensors;
    for (const std::string& zone : namesIn("/sys/class/thermal", "thermal_zone", "")) {
        const std::string folder = "/sys/class/thermal/" + zone;
        sensors.push_back({firstLineOf(folder + "/type"), folder + "/temp"});
    }
    for (const std::string& monitor : namesIn("/sys/class/hwmon", "hwmon", "")) {
        const std::string folder = "/sys/class/hwmon/" + monitor;
        for (const std::string& input : namesIn(folder, "temp", "_input")) {
            sensors.push_back({firstLineOf(folder + "/name") + " " + input, folder + "/" + input});
        }
    }
    sensors.resize(std::min<std::size_t>(sensors.size(), oids::MAX_TEMPERATURES));
    return sensors;
}

int temperatureOf(const std::string& file)
{
    int thousandths = 0;
    std::ifstream(file) >> thousandths;
    return thousandths;
}

void addCpu(CardObjects& objects)
{
    using namespace oids;
    objects[CPU_COUNT] =
        readOnly(OID_TYPE_UINT16, [] { return static_cast<unsigned short>(::sysconf(_SC_NPROCESSORS_ONLN)); });
    const auto pBusy = std::make_shared<CpuBusy>();
    objects[CPU_BUSY] = readOnly(OID_TYPE_UINT8, [pBusy] { return pBusy->percent(); });
    objects[CPU_LOAD] = readOnly(OID_TYPE_UINT32, [] {
        double load = 0;
        std::istringstream(firstLineOf("/proc/loadavg")) >> load;
        return static_cast<unsigned int>(load * 1000);
    });
    objects[CPU_USER_TIME] = readOnly(OID_TYPE_UINT64, [] {
        const std::vector<Number> ticks = cpuTicks();
        return millisecondsOf(ticks[USER] + ticks[NICE]);
    });
    objects[CPU_SYSTEM_TIME] = readOnly(OID_TYPE_UINT64, [] {
        const std::vector<Number> ticks = cpuTicks();
        return millisecondsOf(ticks[SYSTEM] + ticks[IRQ] + ticks[SOFT_IRQ]);
    });
    objects[CPU_IDLE_TIME] = readOnly(OID_TYPE_UINT64, [] { return millisecondsOf(cpuTicks()[IDLE]); });
    objects[CPU_IO_WAIT_TIME] = readOnly(OID_TYPE_UINT64, [] { return millisecondsOf(cpuTicks()[IO_WAIT]); });
}

void addMemory(CardObjects& objects)
{
    const struct {
        std::uint32_t oid;
        const char* label;
    } entries[] = {
        {oids::MEMORY_TOTAL, "MemTotal"}, {oids::MEMORY_AVAILABLE, "MemAvailable"}, {oids::MEMORY_FREE, "MemFree"},
        {oids::MEMORY_CACHED, "Cached"},  {oids::SWAP_TOTAL, "SwapTotal"},          {oids::SWAP_FREE, "SwapFree"},
    };
    for (const auto& entry : entries) {
        objects[entry.oid] = readOnly(OID_TYPE_UINT32, [label = entry.label] { return memoryKib(label); });
    }
}

void addNetwork(CardObjects& objects)
{
    const struct {
        std::uint32_t oid;
        std::size_t column;
    } entries[] = {
        {oids::NETWORK_RX_BYTES, 0},   {oids::NETWORK_RX_PACKETS, 1},  {oids::NETWORK_RX_ERRORS, 2},
        {oids::NETWORK_RX_DROPPED, 3}, {oids::NETWORK_TX_BYTES, 8},    {oids::NETWORK_TX_PACKETS, 9},
        {oids::NETWORK_TX_ERRORS, 10}, {oids::NETWORK_TX_DROPPED, 11},
    };
    for (const auto& entry : entries) {
        objects[entry.oid] = readOnly(OID_TYPE_UINT64, [column = entry.column] { return networkSum(column); });
    }
}

void addDisks(CardObjects& objects)
{
    constexpr Number SECTORS_PER_KIB = 2;  // the kernel's sectors are 512 bytes here, whatever the disk's are
    objects[oids::DISK_READS] = readOnly(OID_TYPE_UINT64, [] { return diskSum(0); });
    objects[oids::DISK_READ_KIB] = readOnly(OID_TYPE_UINT64, [] { return diskSum(2) / SECTORS_PER_KIB; });
    objects[oids::DISK_WRITES] = readOnly(OID_TYPE_UINT64, [] { return diskSum(4); });
    objects[oids::DISK_WRITTEN_KIB] = readOnly(OID_TYPE_UINT64, [] { return diskSum(6) / SECTORS_PER_KIB; });
}

void addTemperatures(CardObjects& objects)
{
    std::uint32_t index = 0;
    for (const TemperatureSensor& sensor : temperatureSensors()) {
        objects[oids::TEMPERATURE + index] =
            readOnly(OID_TYPE_INT32, [file = sensor.file] { return temperatureOf(file); });
        addConstant(objects, makeOidValue(oids::TEMPERATURE_LABEL + index, sensor.label));
        ++index;
    }
}

}  // namespace

void addHostObjects(CardObjects& objects)
{
    objects[oids::HOST_NAME] = readOnly(OID_TYPE_STRING, [] { return firstLineOf("/proc/sys/kernel/hostname"); });
    objects[oids::HOST_UPTIME] = readOnly(OID_TYPE_UINT32, [] {
        double seconds = 0;
        std::istringstream(firstLineOf("/proc/uptime")) >> seconds;
        return static_cast<unsigned int>(seconds);
    });
    addCpu(objects);
    addMemory(objects);
    addNetwork(objects);
    addDisks(objects);
    addTemperatures(objects);
}

}  // namespace brantel
