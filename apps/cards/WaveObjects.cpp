#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/yaml.h>

#include "OidValue.h"
#include "cards/CardObjects.h"
#include "cards/OidTable.h"
#include "cards/SourceFile.h"
#include "cards/ValueText.h"
#include "cards/ValueVisitor.h"
#include "common/CommandLine.h"
#include "common/Numbers.h"
#include "common/PrintableText.h"

namespace brantel {
namespace {

enum class Shape { CONSTANT, SINE, SQUARE, TRIANGLE, SAWTOOTH, NOISE };

constexpr std::size_t MAX_NAME_LENGTH = 64;
constexpr double SHORTEST_PERIOD = 0.001;
constexpr double LONGEST_PERIOD = 1e6;

struct Signal {
    std::string name;
    OidValueType type = OID_TYPE_INT32;
    Shape shape = Shape::CONSTANT;
    double low = 0;
    double high = 0;
    double period = 1;
    double phase = 0;
};

struct Limits {
    double lowest;
    double highest;
};

bool isNumeric(OidValueType type)
{
    return visitType(type, [](auto tag) { return std::is_integral_v<typename decltype(tag)::Type>; });
}

// Of a numeric type. Doubles carry whole numbers up to 2^53 exactly.
struct LimitsOfType {
    template <typename Value>
    Limits operator()(ValueTag<Value>) const
    {
        constexpr double EXACT = 9007199254740992.0;
        if constexpr (std::is_integral_v<Value>) {
            return {std::max(static_cast<double>(std::numeric_limits<Value>::min()), -EXACT),
                    std::min(static_cast<double>(std::numeric_limits<Value>::max()), EXACT)};
        } else {
            return {0, 0};
        }
    }
};

// Where the signal is between low (0) and high (1), at `position` of its period (0 to 1).
double levelOf(Shape shape, double position)
{
    constexpr double PI = 3.14159265358979323846;
    switch (shape) {
        case Shape::CONSTANT: return 0;
        case Shape::SINE: return (1 + std::sin(2 * PI * position)) / 2;
        case Shape::SQUARE: return (position < 0.5) ? 1 : 0;
        case Shape::TRIANGLE: return (position < 0.5) ? 2 * position : 2 - 2 * position;
        case Shape::SAWTOOTH: return position;
        case Shape::NOISE: break;
    }
    static std::mt19937 generator(std::random_device{}());
    return std::uniform_real_distribution<double>(0, 1)(generator);
}

boost::any valueOf(const Signal& signal, double seconds)
{
    const double turns = seconds / signal.period + signal.phase;
    const double level = levelOf(signal.shape, turns - std::floor(turns));
    const double value = signal.low + (signal.high - signal.low) * level;
    return *parseValue(signal.type, std::to_string(std::llround(value)));
}

std::string numberText(double number)
{
    std::ostringstream text;
    text.precision(std::numeric_limits<double>::digits10 + 1);
    text << number;
    return text.str();
}

// A field of a mapping. A value that is left out has the location of its name.
struct Field {
    YAML::Mark location;
    YAML::Node value;
};

// By name: each is known, and there once.
using Fields = std::map<std::string, Field>;

// Where a document starts; what is in it does not matter.
class DocumentStart : public YAML::EventHandler {
public:
    const YAML::Mark& mark() const { return m_mark; }

    void OnDocumentStart(const YAML::Mark& mark) override { m_mark = mark; }
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark&, YAML::anchor_t) override {}
    void OnAlias(const YAML::Mark&, YAML::anchor_t) override {}
    void OnScalar(const YAML::Mark&, const std::string&, YAML::anchor_t, const std::string&) override {}
    void OnSequenceStart(const YAML::Mark&, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override {}
    void OnSequenceEnd() override {}
    void OnMapStart(const YAML::Mark&, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override {}
    void OnMapEnd() override {}

private:
    YAML::Mark m_mark;
};

class DescriptionReader {
public:
    explicit DescriptionReader(const std::string& file) : m_file(file) {}

    std::vector<Signal> signals() const
    {
        try {
            const std::string text = wholeText(m_file);
            std::vector<Signal> signals = signalsOf(YAML::Load(text));
            refuseSecondDocument(text);
            return signals;
        } catch (const YAML::Exception& error) {
            throwAt(error.mark, error.msg);
        }
    }

private:
    // Not by loading all documents: the library finds them without end where a comma is in the place of one.
    void refuseSecondDocument(const std::string& text) const
    {
        std::istringstream stream(text);
        YAML::Parser parser(stream);
        DocumentStart document;
        if (parser.HandleNextDocument(document) && parser.HandleNextDocument(document)) {
            throwAt(document.mark(), "a second document: a description is one");
        }
    }

    std::vector<Signal> signalsOf(const YAML::Node& description) const
    {
        const std::string wanted =
            "the signals are written as a list of 1 to " + std::to_string(oids::MAX_SIGNALS) + " below 'signals:'";
        const Fields fields = fieldsOf(description, {"signals"}, wanted);
        const auto signals = fields.find("signals");
        if (signals == fields.end()) {
            throwAt(description.Mark(), wanted);
        }
        const YAML::Node& list = signals->second.value;
        if (!list.IsSequence() || (list.size() == 0) || (list.size() > oids::MAX_SIGNALS)) {
            throwAt(signals->second.location, wanted);
        }
        std::vector<Signal> result;
        for (const YAML::Node& node : list) {
            result.push_back(signalOf(node));
        }
        return result;
    }

    Signal signalOf(const YAML::Node& node) const
    {
        const Fields fields = fieldsOf(node, {"name", "type", "shape", "low", "high", "period", "phase"},
                                       "a signal is written {name: ..., type: ..., ...}");
        Signal signal;
        signal.name = nameOf(node, fields);
        signal.type = typeOf(fields);
        signal.shape = shapeOf(fields);
        const Limits limits = visitType(signal.type, LimitsOfType());
        signal.low = numberOf(fields, "low", limits, 0);
        signal.high = numberOf(fields, "high", {signal.low, limits.highest}, signal.low);
        signal.period = numberOf(fields, "period", {SHORTEST_PERIOD, LONGEST_PERIOD}, 1);
        signal.phase = numberOf(fields, "phase", {0, 1}, 0);
        return signal;
    }

    Fields fieldsOf(const YAML::Node& node, const std::vector<std::string>& known, const std::string& wanted) const
    {
        if (!node.IsMap()) {
            throwAt(node.Mark(), wanted);
        }
        Fields fields;
        for (const auto& field : node) {
            const YAML::Mark location = field.first.Mark();
            const std::string name = field.first.IsScalar() ? field.first.Scalar() : "";
            if (std::find(known.begin(), known.end(), name) == known.end()) {
                throwAt(location, inQuotes(name) + " is not a field: " + wanted);
            }
            const YAML::Node& value = field.second;
            if (!fields.emplace(name, Field{value.IsNull() ? location : value.Mark(), value}).second) {
                throwAt(location, inQuotes(name) + " is a duplicate");
            }
        }
        return fields;
    }

    std::string nameOf(const YAML::Node& signal, const Fields& fields) const
    {
        const auto field = fields.find("name");
        const bool isText = (field != fields.end()) && field->second.value.IsScalar();
        std::string name = isText ? field->second.value.Scalar() : "";
        const std::size_t length = characterCount(name, name.size());
        if ((length == 0) || (length > MAX_NAME_LENGTH)) {
            throwAt((field == fields.end()) ? signal.Mark() : field->second.location,
                    "a signal needs a name of 1 to " + std::to_string(MAX_NAME_LENGTH) + " characters");
        }
        return name;
    }

    OidValueType typeOf(const Fields& fields) const
    {
        const auto field = fields.find("type");
        if (field == fields.end()) {
            return OID_TYPE_INT32;
        }
        const std::optional<OidValueType> type = parseType(textOf(field->second.value));
        if (!type || !isNumeric(*type)) {
            throwAt(field->second.location,
                    inQuotes(textOf(field->second.value)) + ": the type of a signal is uint8, ..., int64 or bool");
        }
        return *type;
    }

    Shape shapeOf(const Fields& fields) const
    {
        const std::map<std::string, Shape> shapes = {
            {"constant", Shape::CONSTANT}, {"sine", Shape::SINE},         {"square", Shape::SQUARE},
            {"triangle", Shape::TRIANGLE}, {"sawtooth", Shape::SAWTOOTH}, {"noise", Shape::NOISE},
        };
        const auto field = fields.find("shape");
        if (field == fields.end()) {
            return Shape::CONSTANT;
        }
        const auto shape = shapes.find(textOf(field->second.value));
        if (shape == shapes.end()) {
            throwAt(field->second.location, inQuotes(textOf(field->second.value)) +
                                                ": a shape is constant, sine, square, triangle, sawtooth or noise");
        }
        return shape->second;
    }

    double numberOf(const Fields& fields, const std::string& name, const Limits& limits, double byDefault) const
    {
        const auto field = fields.find(name);
        if (field == fields.end()) {
            return byDefault;
        }
        const std::optional<double> number = parseReal(textOf(field->second.value), limits.lowest, limits.highest);
        if (!number) {
            throwAt(field->second.location, name + ": " + inQuotes(textOf(field->second.value)) +
                                                " is not a number from " + numberText(limits.lowest) + " to " +
                                                numberText(limits.highest));
        }
        return *number;
    }

    // Empty for what is not a single value.
    static std::string textOf(const YAML::Node& node) { return node.IsScalar() ? node.Scalar() : ""; }

    // Where nothing is, the mark says nothing: that is an empty description.
    [[noreturn]] void throwAt(const YAML::Mark& mark, const std::string& what) const
    {
        const int line = mark.is_null() ? 0 : mark.line;
        const int column = mark.is_null() ? 0 : mark.column;
        throw CommandError(m_file + ":" + std::to_string(line + 1) + ":" + std::to_string(column + 1) + ": " + what);
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
        objects[oids::WAVE_SIGNAL + i] =
            readOnly(signal.type, [signal, start, clock] { return valueOf(signal, clock() - start); });
        addConstant(objects, makeOidValue(oids::WAVE_LABEL + i, signal.name));
    }
}

}  // namespace brantel
