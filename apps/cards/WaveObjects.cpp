#include <cerrno>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <limits>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include <yaml-cpp/yaml.h>

#include "cards/CardObjects.h"
#include "cards/OidTable.h"
#include "cards/ValueText.h"
#include "common/CommandLine.h"

namespace {

enum class Shape { Constant, Sine, Square, Triangle, Sawtooth, Noise };

constexpr std::size_t MAX_NAME_LENGTH = 64;
constexpr double SHORTEST_PERIOD = 0.001;
constexpr double LONGEST_PERIOD = 1e6;

struct Signal {
    std::string name;
    OidValueType type = OID_TYPE_INT32;
    Shape shape = Shape::Constant;
    double low = 0;
    double high = 0;
    double period = 1;
    double phase = 0;
};

struct Limits {
    double lowest;
    double highest;
};

template <typename Integer>
constexpr Limits limitsOf()
{
    return {static_cast<double>(std::numeric_limits<Integer>::min()),
            static_cast<double>(std::numeric_limits<Integer>::max())};
}

// Of the types that a signal can have. Doubles carry whole numbers up to 2^53 exactly.
Limits limitsOf(OidValueType type)
{
    constexpr double EXACT = 9007199254740992.0;
    switch (type) {
        case OID_TYPE_UINT64: return {0, EXACT};
        case OID_TYPE_UINT32: return limitsOf<std::uint32_t>();
        case OID_TYPE_UINT16: return limitsOf<std::uint16_t>();
        case OID_TYPE_UINT8: return limitsOf<std::uint8_t>();
        case OID_TYPE_INT64: return {-EXACT, EXACT};
        case OID_TYPE_INT32: return limitsOf<std::int32_t>();
        case OID_TYPE_INT16: return limitsOf<std::int16_t>();
        case OID_TYPE_INT8: return limitsOf<std::int8_t>();
        default: return {0, 1};
    }
}

// False for what is no number, too.
bool isWithin(double value, double lowest, double highest)
{
    return (value >= lowest) && (value <= highest);
}

bool isNumeric(OidValueType type)
{
    return (type >= OID_TYPE_UINT64) && (type <= OID_TYPE_BOOL);
}

// Where the signal stands between low (0) and high (1), at `position` of its period (0 to 1).
double levelOf(Shape shape, double position)
{
    constexpr double PI = 3.14159265358979323846;
    switch (shape) {
        case Shape::Constant: return 0;
        case Shape::Sine: return (1 + std::sin(2 * PI * position)) / 2;
        case Shape::Square: return (position < 0.5) ? 1 : 0;
        case Shape::Triangle: return (position < 0.5) ? 2 * position : 2 - 2 * position;
        case Shape::Sawtooth: return position;
        case Shape::Noise: break;
    }
    static std::mt19937 generator(std::random_device{}());
    return std::uniform_real_distribution<double>(0, 1)(generator);
}

boost::any valueOf(const Signal& signal, double seconds)
{
    const double turns = seconds / signal.period + signal.phase;
    const double level = levelOf(signal.shape, turns - std::floor(turns));
    const double value = signal.low + (signal.high - signal.low) * level;
    return *valueOfText(signal.type, std::to_string(std::llround(value)));
}

class DescriptionReader {
public:
    explicit DescriptionReader(const std::string& file) : m_file(file) {}

    std::vector<Signal> signals() const
    {
        try {
            std::ifstream text(m_file);
            if (!text) {
                throw CommandError("cannot read " + m_file + ": " + std::generic_category().message(errno));
            }
            const YAML::Node list = YAML::Load(text)["signals"];
            if (!list.IsSequence() || (list.size() == 0) || (list.size() > oids::MAX_SIGNALS)) {
                throw CommandError(m_file + ": 'signals' is not a list of 1 to " + std::to_string(oids::MAX_SIGNALS));
            }
            std::vector<Signal> result;
            for (const YAML::Node& node : list) {
                result.push_back(signalOf(node));
            }
            return result;
        } catch (const YAML::Exception& error) {
            throw CommandError(m_file + placeOf(error.mark) + ": " + error.msg);
        }
    }

private:
    Signal signalOf(const YAML::Node& node) const
    {
        if (!node.IsMap()) {
            throwAt(node, "a signal is written {name: ..., type: ..., ...}");
        }
        Signal signal;
        for (const auto& field : node) {
            takeField(field.first.as<std::string>(), field.second, signal);
        }
        const Limits limits = limitsOf(signal.type);
        if (!node["high"]) {
            signal.high = signal.low;
        }
        const bool isInRange =
            isWithin(signal.low, limits.lowest, limits.highest) && isWithin(signal.high, signal.low, limits.highest);
        if (signal.name.empty() || (signal.name.size() > MAX_NAME_LENGTH)) {
            throwAt(node, "a signal needs a name of 1 to " + std::to_string(MAX_NAME_LENGTH) + " characters");
        }
        if (!isInRange) {
            throwAt(node, "low and high are not in order, or not within the type");
        }
        if (!isWithin(signal.period, SHORTEST_PERIOD, LONGEST_PERIOD) || !isWithin(signal.phase, 0, 1)) {
            throwAt(node, "the period is not from 0.001 to 1000000 seconds, or the phase not from 0 to 1");
        }
        return signal;
    }

    void takeField(const std::string& name, const YAML::Node& value, Signal& signal) const
    {
        if (name == "name") {
            signal.name = value.as<std::string>();
        } else if (name == "type") {
            signal.type = typeOf(value);
        } else if (name == "shape") {
            signal.shape = shapeOf(value);
        } else if (name == "low") {
            signal.low = value.as<double>();
        } else if (name == "high") {
            signal.high = value.as<double>();
        } else if (name == "period") {
            signal.period = value.as<double>();
        } else if (name == "phase") {
            signal.phase = value.as<double>();
        } else {
            throwAt(value, "'" + name + "' is none of name, type, shape, low, high, period and phase");
        }
    }

    OidValueType typeOf(const YAML::Node& value) const
    {
        const std::optional<OidValueType> type = typeOfName(value.as<std::string>());
        if (!type || !isNumeric(*type)) {
            throwAt(value, "the type of a signal is uint8, ..., int64 or bool");
        }
        return *type;
    }

    Shape shapeOf(const YAML::Node& value) const
    {
        const struct {
            const char* name;
            Shape shape;
        } shapes[] = {
            {"constant", Shape::Constant}, {"sine", Shape::Sine},         {"square", Shape::Square},
            {"triangle", Shape::Triangle}, {"sawtooth", Shape::Sawtooth}, {"noise", Shape::Noise},
        };
        for (const auto& entry : shapes) {
            if (value.as<std::string>() == entry.name) {
                return entry.shape;
            }
        }
        throwAt(value, "a shape is constant, sine, square, triangle, sawtooth or noise");
    }

    [[noreturn]] void throwAt(const YAML::Node& node, const std::string& what) const
    {
        throw CommandError(m_file + placeOf(node.Mark()) + ": " + what);
    }

    static std::string placeOf(const YAML::Mark& mark)
    {
        return mark.is_null() ? "" : ":" + std::to_string(mark.line + 1) + ":" + std::to_string(mark.column + 1);
    }

    std::string m_file;
};

}  // namespace

void addWaveObjects(CardObjects& objects, const std::string& file, const SecondsClock& clock)
{
    const std::vector<Signal> signals = DescriptionReader(file).signals();
    const double start = clock();
    for (std::uint32_t i = 0; i < signals.size(); ++i) {
        const Signal& signal = signals[i];
        objects[oids::WAVE_SIGNAL + i] = {
            signal.type, [signal, start, clock] { return valueOf(signal, clock() - start); }, nullptr, nullptr};
        addConstant(objects, oids::WAVE_LABEL + i, OID_TYPE_STRING, signal.name);
    }
}
