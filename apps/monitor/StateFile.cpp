#include "monitor/StateFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <boost/crc.hpp>

#include "common/CommandLine.h"
#include "common/PrintableText.h"
#include "common/ReplacedFile.h"

namespace brantel {
namespace {

constexpr std::string_view FILE_START = "brantel monitor state ";
constexpr const char* FIRST_LINE = "brantel monitor state 3";
constexpr const char* LAST_LINE_START = "end ";
constexpr const char* NONE = "-";

template <typename Number>
std::string textOrNone(const std::optional<Number>& number)
{
    return number ? std::to_string(*number) : NONE;
}

// The fields of a line, read from left to right.
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
        const std::optional<Place::Kind> kind = parsePlaceKind(word());
        m_areValid = m_areValid && kind;
        return {kind.value_or(Place::Kind::SLOT), number<std::uint32_t>()};
    }

    std::string rest() const { return m_line.substr(m_position); }
    bool areValid() const { return m_areValid; }

private:
    template <typename Number>
    Number numberOf(const std::string& text)
    {
        Number number = 0;
        const char* const pEnd = text.data() + text.size();
        const std::from_chars_result result = std::from_chars(text.data(), pEnd, number);
        m_areValid = m_areValid && (result.ec == std::errc()) && (result.ptr == pEnd);
        return number;
    }

    const std::string& m_line;
    std::size_t m_position = 0;
    bool m_areValid = true;
};

RememberedRule ruleOf(LineFields& fields, std::size_t line)
{
    RememberedRule rule{{fields.place(), fields.number<std::uint32_t>(), ""}, {}, line};
    rule.memory.previousSample = fields.numberOrNone<SampleValue>();
    rule.memory.isRaised = (fields.number<int>() != 0);
    rule.memory.isLowerRaised = (fields.number<int>() != 0);
    rule.key.rule = fields.rest();
    return rule;
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

bool addLastEvent(MonitorState& state, LineFields& fields)
{
    state.lastEvent = fields.number<std::uint64_t>();
    return state.lastEvent <= MAX_EVENT_NUMBER;
}

bool addLost(MonitorState& state, LineFields& fields)
{
    const auto first = fields.number<std::uint64_t>();
    const auto last = fields.number<std::uint64_t>();
    state.waiting.setLost(EventRange{first, last});
    return (first >= 1) && (first <= last) && (last <= state.lastEvent);
}

bool addEvent(MonitorState& state, const LineFields& fields)
{
    const std::string text = fields.rest();
    const std::optional<Event> event = parseEvent(text);
    if (event) {
        state.waiting.add(event->number, text);
    }
    return event.has_value();
}

// Adds a line after the first; false if it is not a valid one.
bool addLine(MonitorState& state, const std::string& line, std::size_t number)
{
    LineFields fields(line);
    const std::string word = fields.word();
    bool isKnown = true;
    if (word == "last-event") {
        isKnown = addLastEvent(state, fields);
    } else if (word == "lost") {
        isKnown = addLost(state, fields);
    } else if (word == "rule") {
        state.rules.push_back(ruleOf(fields, number));
    } else if (word == "failure") {
        state.failures.push_back(failureOf(fields));
    } else if (word == "refused") {
        state.refusedRows.push_back(refusedRowOf(fields));
    } else if (word == "event") {
        isKnown = addEvent(state, fields);
    } else {
        isKnown = false;
    }
    return isKnown && fields.areValid();
}

std::size_t countLines(std::string_view text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

std::string checksumText(std::string_view text)
{
    boost::crc_32_type checksum;
    checksum.process_bytes(text.data(), text.size());
    char digits[9] = "";
    static_cast<void>(std::snprintf(digits, sizeof digits, "%08lx", static_cast<unsigned long>(checksum.checksum())));
    return digits;
}

std::string contentOf(const std::string& path)
{
    const auto throwCannotRead = [&] {
        throw CommandError("cannot read '" + path + "': " + std::generic_category().message(errno));
    };
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.number() < 0) {
        throwCannotRead();
    }
    std::string content;
    std::array<char, 65536> part{};
    for (ssize_t count = -1; count != 0;) {
        count = ::read(file.number(), part.data(), part.size());
        if (count > 0) {
            content.append(part.data(), static_cast<std::size_t>(count));
        } else if ((count < 0) && (errno != EINTR)) {
            throwCannotRead();
        }
    }
    return content;
}

[[noreturn]] void refuse(const std::string& path, std::size_t line, const std::string& reason)
{
    throw CommandError(path + ":" + std::to_string(line) + ": " + reason + STATE_REMEDY);
}

// Reads the lines after the first; `text` ends before the last.
MonitorState stateOfLines(const std::string& path, std::string_view text)
{
    MonitorState state;
    std::size_t number = 1;
    for (std::size_t begin = 0; begin < text.size(); ++number) {
        const std::size_t end = text.find('\n', begin);
        const std::string line(text.substr(begin, end - begin));
        if ((number > 1) && !addLine(state, line, number)) {
            refuse(path, number, inQuotes(line) + " is not a line of a state");
        }
        begin = end + 1;
    }
    return state;
}

}  // namespace

std::string stateText(std::uint64_t lastEvent, const ConditionMonitor& monitor, const WaitingEvents& waiting)
{
    std::string text;
    const auto add = [&](const std::string& line) {
        text += line;
        text += '\n';
    };
    const auto addFailure = [&](const std::string& where, const std::string& failure) {
        if (!failure.empty()) {
            add("failure " + where + " " + failure);
        }
    };
    add(FIRST_LINE);
    add("last-event " + std::to_string(lastEvent));
    if (waiting.lost()) {
        add("lost " + std::to_string(waiting.lost()->first) + " " + std::to_string(waiting.lost()->last));
    }
    for (const auto& [place, watched] : monitor.places()) {
        addFailure(placeText(place) + " " + NONE, watched.failure);
        for (const auto& [oid, object] : watched.objects) {
            const std::string where = placeText(place) + " " + std::to_string(oid);
            for (const auto& [rule, session] : object.rules) {
                const RuleMemory& memory = session.memory();
                add("rule " + where + " " + textOrNone(memory.previousSample) + (memory.isRaised ? " 1" : " 0") +
                    (memory.isLowerRaised ? " 1 " : " 0 ") + rule);
            }
            addFailure(where, object.failure);
        }
    }
    for (const RefusedRow& refused : monitor.refusedRows()) {
        add("refused " + refused.table + " " + std::to_string(refused.row) + " " + refused.reason);
    }
    for (const WaitingEvents::Line& line : waiting.lines()) {
        add("event " + line.text);
    }
    return sealedState(text);
}

std::string sealedState(const std::string& lines)
{
    return lines + LAST_LINE_START + std::to_string(countLines(lines)) + " " + checksumText(lines) + "\n";
}

MonitorState loadState(const std::string& path)
{
    requireReplaceable(path, FILE_START);
    if (::access(path.c_str(), F_OK) != 0) {
        return {};
    }
    const std::string text = contentOf(path);
    if (text.substr(0, text.find('\n')) != FIRST_LINE) {
        refuse(path, 1, std::string("this is not a state of this version, which begins with '") + FIRST_LINE + "'");
    }
    const std::size_t posEnd = text.rfind(std::string("\n") + LAST_LINE_START) + 1;  // 0 if it is not there
    const std::string lines = text.substr(0, posEnd);
    if ((posEnd == 0) || (text.find('\n', posEnd) == std::string::npos)) {
        refuse(path, countLines(text) + 1, "the end of the state is missing");
    }
    MonitorState state = stateOfLines(path, lines);
    if (text != sealedState(lines)) {
        refuse(path, countLines(lines) + 1, "the state is damaged: its checksum is not that of its lines");
    }
    return state;
}

void restoreMemory(const MonitorState& state, const std::string& path, ConditionMonitor& monitor)
{
    for (const RememberedRule& rule : state.rules) {
        if (!monitor.restoreRule(rule.key, rule.memory)) {
            throw CommandError(path + ":" + std::to_string(rule.line) + ": " + inQuotes(rule.key.rule) +
                               " is not a rule that can be evaluated" + STATE_REMEDY);
        }
    }
    for (const RememberedFailure& failure : state.failures) {
        monitor.restoreFailure(failure.place, failure.oid, failure.failure);
    }
    for (const RefusedRow& row : state.refusedRows) {
        monitor.restoreRefusal(row);
    }
}

StateFile::StateFile(const std::string& path) : m_path(resolvedPath(path))
{
    const std::string lockPath = m_path + ".lock";
    m_lock = FileDescriptor(::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
    if (m_lock.number() < 0) {
        throw CommandError("cannot open '" + lockPath + "': " + std::generic_category().message(errno));
    }
    if (::flock(m_lock.number(), LOCK_EX | LOCK_NB) != 0) {
        throw CommandError("'" + m_path + "' is in use by another monitor");
    }
}

void StateFile::save(const std::string& text) const
{
    replaceFile(m_path, FILE_START, text, Durability::POWER_FAILURE);
}

}  // namespace brantel
