// Journals damaged by a crash or a disk: one that is refused is left unchanged; one that is accepted keeps all its
// whole lines, ends with an event, and continues after it. An event of any line is the same after it is written and
// read.
//
// Input: the file.

#include <sstream>

#include "common/CommandLine.h"
#include "fuzz/FuzzFiles.h"
#include "monitor/Event.h"
#include "monitor/Journal.h"

namespace brantel {
namespace {

std::string lastLineOf(const std::string& text)
{
    const std::size_t posEnd = text.rfind('\n', text.size() - 2);
    return text.substr(posEnd + 1, text.size() - posEnd - 2);  // npos + 1 is 0
}

void requireSameAgain(const std::string& line)
{
    const std::optional<Event> event = parseEvent(line);
    if (event) {
        const std::string written = eventJson(*event);
        const std::optional<Event> again = parseEvent(written);
        require(again && (eventJson(*again) == written) && (again->number == event->number));
        require(eventText(*event).find('\n') == std::string::npos);
    }
}

void requireSound(const std::string& before, const std::string& after, std::uint64_t lastEvent)
{
    require(after.empty() || (after.back() == '\n'));
    require((after == before + "\n") || (before.compare(0, after.size(), after) == 0));
    const std::size_t posWhole = before.rfind('\n') + 1;
    require(after.size() >= posWhole);
    const std::optional<Event> event = after.empty() ? std::nullopt : parseEvent(lastLineOf(after));
    require(after.empty() || event);
    require(lastEvent == (event ? event->number : 0));
}

void requireThatItGoesOn(const std::string& path, const std::string& content, std::uint64_t lastEvent)
{
    Event event;
    event.number = lastEvent + 1;
    const std::string line = eventJson(event);
    {
        Journal journal(path);
        require((journal.lastEvent() == lastEvent) && (contentOf(path) == content));
        journal.append(event.number, line);
    }
    const Journal journal(path);
    require((journal.lastEvent() == event.number) && (contentOf(path) == content + line + "\n"));
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    const std::string before = textOf(pData, size);
    std::istringstream lines(before);
    for (std::string line; std::getline(lines, line);) {
        requireSameAgain(line);
    }

    const std::string path = fileOf(before);
    std::uint64_t lastEvent = 0;
    if (!isAccepted<CommandError>(path, [&] { lastEvent = Journal(path).lastEvent(); })) {
        require(contentOf(path) == before);
        return 0;
    }
    const std::string after = contentOf(path);
    const std::string withoutNuls = before.substr(0, before.find_last_not_of('\0') + 1);  // of a power failure
    requireSound(withoutNuls, after, lastEvent);
    if (lastEvent < MAX_EVENT_NUMBER) {
        requireThatItGoesOn(path, after, lastEvent);
    }
    return 0;
}

}  // namespace brantel
