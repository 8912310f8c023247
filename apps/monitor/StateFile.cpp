#include "monitor/StateFile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "common/CommandLine.h"
#include "common/LineReader.h"
#include "common/ReplacedFile.h"

namespace {

constexpr const char* FIRST_LINE = "brantel monitor state 1";
constexpr const char* NONE = "-";

template <typename Number>
std::string textOrNone(const std::optional<Number>& number)
{
    return number ? std::to_string(*number) : NONE;
}

// The fields of one line, taken from left to right.
class LineFields {
public:
    explicit LineFields(const std::string& line) : m_line(line) {}

    std::string word()
    {
        const std::size_t end = std::min(m_line.find(' ', m_position), m_line.size());
        std::string text = m_line.substr(m_position, end - m_position);
        m_position = std::min(end + 1, m_line.size());
        return text;
    }

    template <typename Number>
    Number number()
    {
        return numberOf<Number>(word());
    }

    template <typename Number>
    std::optional<Number> numberOrNone()
    {
        const std::string text = word();
        return (text == NONE) ? std::nullopt : std::optional(numberOf<Number>(text));
    }

    Place place()
    {
        const std::optional<Place::Kind> kind = kindOfText(word());
        m_areSound = m_areSound && kind;
        return {kind.value_or(Place::Kind::SLOT), number<std::uint32_t>()};
    }

    std::string rest() const { return m_line.substr(m_position); }
    bool areSound() const { return m_areSound; }

private:
    template <typename Number>
    Number numberOf(const std::string& text)
    {
        Number number = 0;
        const char* const pEnd = text.data() + text.size();
        const std::from_chars_result result = std::from_chars(text.data(), pEnd, number);
        m_areSound = m_areSound && (result.ec == std::errc()) && (result.ptr == pEnd);
        return number;
    }

    const std::string& m_line;
    std::size_t m_position = 0;
    bool m_areSound = true;
};

std::pair<RuleKey, RuleMemory> ruleOf(LineFields& fields)
{
    RuleKey key{fields.place(), fields.number<std::uint32_t>(), ""};
    RuleMemory memory;
    memory.previousSample = fields.numberOrNone<SampleValue>();
    memory.isRaised = {fields.number<int>() != 0, fields.number<int>() != 0};
    key.rule = fields.rest();
    return {key, memory};
}

RememberedFailure failureOf(LineFields& fields)
{
    RememberedFailure failure{fields.place(), fields.numberOrNone<std::uint32_t>(), ""};
    failure.failure = fields.rest();
    return failure;
}

RefusedRow refusedRowOf(LineFields& fields)
{
    RefusedRow row{fields.word(), fields.number<std::int64_t>(), ""};
    row.reason = fields.rest();
    return row;
}

// Adds what one line after the first says; false if it says nothing that is known.
bool addLine(MonitorState& state, const std::string& line)
{
    LineFields fields(line);
    const std::string word = fields.word();
    if (word == "last-event") {
        state.lastEvent = fields.number<std::uint64_t>();
    } else if (word == "rule") {
        state.rules.push_back(ruleOf(fields));
    } else if (word == "failure") {
        state.failures.push_back(failureOf(fields));
    } else if (word == "refused") {
        state.refusedRows.push_back(refusedRowOf(fields));
    } else if (word == "event") {
        state.eventLines.push_back(fields.rest());
        return eventOfJsonLine(state.eventLines.back()).has_value();
    } else {
        return false;
    }
    return fields.areSound();
}

}  // namespace

std::string stateText(std::uint64_t lastEvent, const ConditionMonitor& monitor,
                      const std::vector<std::string>& eventLines)
{
    std::size_t lines = 0;
    std::string text;
    const auto add = [&](const std::string& line) {
        text += line;
        text += '\n';
        ++lines;
    };
    const auto addFailure = [&](const std::string& where, const std::string& failure) {
        if (!failure.empty()) {
            add("failure " + where + " " + failure);
        }
    };
    add(FIRST_LINE);
    add("last-event " + std::to_string(lastEvent));
    for (const auto& [place, watched] : monitor.places()) {
        addFailure(placeText(place) + " " + NONE, watched.failure);
        for (const auto& [oid, object] : watched.objects) {
            const std::string where = placeText(place) + " " + std::to_string(oid);
            for (const WatchedRule& rule : object.rules) {
                const RuleMemory& memory = rule.session.memory();
                add("rule " + where + " " + textOrNone(memory.previousSample) + (memory.isRaised[0] ? " 1" : " 0") +
                    (memory.isRaised[1] ? " 1 " : " 0 ") + rule.text);
            }
            addFailure(where, object.failure);
        }
    }
    for (const RefusedRow& refused : monitor.refusedRows()) {
        add("refused " + refused.table + " " + std::to_string(refused.row) + " " + refused.reason);
    }
    for (const std::string& line : eventLines) {
        add("event " + line);
    }
    return text + "end " + std::to_string(lines) + "\n";
}

StateFile::StateFile(const std::string& path) : m_path(path)
{
    const std::string lockPath = path + ".lock";
    m_lock = ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (m_lock < 0) {
        throw CommandError("cannot open '" + lockPath + "': " + std::generic_category().message(errno));
    }
    if (::flock(m_lock, LOCK_EX | LOCK_NB) != 0) {
        ::close(m_lock);
        throw CommandError("'" + path + "' is in use by another monitor");
    }
}

StateFile::~StateFile()
{
    ::close(m_lock);
}

MonitorState StateFile::load() const
{
    MonitorState state;
    if (::access(m_path.c_str(), F_OK) != 0) {
        return state;
    }
    LineReader lines(m_path);
    const auto fail = [&](const std::string& what) {
        throw CommandError(m_path + ":" + std::to_string(lines.lineNumber()) + ": " + what);
    };
    if (lines.next() != FIRST_LINE) {
        fail("this is no state of a monitor, or one of another version");
    }
    for (;;) {
        const std::optional<std::string> line = lines.next();
        if (!line) {
            fail("the end of the state is missing");
        } else if (*line == "end " + std::to_string(lines.lineNumber() - 1)) {
            return state;
        } else if (!addLine(state, *line)) {
            fail("'" + *line + "' is no line of a state");
        }
    }
}

void StateFile::save(const std::string& text) const
{
    replaceFile(m_path, text, Durability::POWER_FAILURE);
}
