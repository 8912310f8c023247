#include "system/TestNode.h"

#include <sstream>

#include <gtest/gtest.h>

namespace brantel {

TestNode::TestNode() : m_environment{"BRANTEL_DB=" + path("events.db"), "XDG_RUNTIME_DIR=" + m_directory.path()}
{
    EXPECT_EQ(run({"db", "init"}).exitCode, 0);
}

CommandResult TestNode::run(const std::vector<std::string>& arguments,
                            const std::vector<std::string>& environment) const
{
    std::vector<std::string> all = m_environment;
    all.insert(all.end(), environment.begin(), environment.end());
    return runProgram(BRANTEL_COMMAND, arguments, {"", "", "", all});
}

std::unique_ptr<ChildProcess> TestNode::start(const std::vector<std::string>& arguments, const std::string& name) const
{
    return startProgram(BRANTEL_COMMAND, arguments, name);
}

std::unique_ptr<ChildProcess> TestNode::startProgram(const std::string& program,
                                                     const std::vector<std::string>& arguments,
                                                     const std::string& name) const
{
    return std::make_unique<ChildProcess>(program, arguments, m_environment, path(name));
}

std::unique_ptr<ChildProcess> TestNode::startCard(std::uint32_t slot, const std::vector<std::string>& arguments) const
{
    const std::string number = std::to_string(slot);
    const std::string output = "card" + number + ".out";
    std::vector<std::string> all = {"card", "--slot", number};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const std::size_t before = contentOf(path(output)).size();
    std::unique_ptr<ChildProcess> pCard = start(all, output);
    const auto serves = [&] { return contentOf(path(output)).find("ReadWriteAsync at", before) != std::string::npos; };
    EXPECT_TRUE(waitUntil(serves, std::chrono::seconds(30))) << contentOf(path(output));
    return pCard;
}

std::vector<Event> TestNode::journal() const
{
    std::vector<Event> events;
    std::istringstream lines(contentOf(path("journal")));
    for (std::string line; std::getline(lines, line) && !lines.eof();) {
        const std::optional<Event> event = parseEvent(line);
        EXPECT_TRUE(event) << line;
        if (event) {
            events.push_back(*event);
        }
    }
    return events;
}

std::optional<double> TestNode::metric(const std::string& name) const
{
    std::istringstream lines(contentOf(path("metrics")));
    const std::string start = "brantel_monitor_" + name + " ";
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(start, 0) == 0) {
            return std::stod(line.substr(start.size()));
        }
    }
    return std::nullopt;
}

}  // namespace brantel
