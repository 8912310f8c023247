#include "common/Message.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include <syslog.h>

#include "common/CommandLine.h"
#include "common/PrintableText.h"

namespace brantel {
namespace {

MessageWriter& messageWriter()
{
    static MessageWriter writer;
    return writer;
}

void write(const std::string& line)
{
    if (messageWriter()) {
        messageWriter()(line);
    } else {
        static_cast<void>(std::fputs(line.c_str(), stderr));
    }
}

}  // namespace

std::string messageLine(std::string_view text)
{
    return "brantel: " + printable(text) + "\n";
}

void printMessage(std::string_view text)
{
    static_cast<void>(std::fflush(stdout));
    write(messageLine(text));
}

void printDetail(std::string_view line)
{
    write(printable(line) + "\n");
}

void printFailure(const std::exception& error)
{
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
        printMessage("not enough memory");
        return;
    }
    printMessage(error.what());
    if (const auto* const pCommandError = dynamic_cast<const CommandError*>(&error)) {
        std::for_each(pCommandError->details().begin(), pCommandError->details().end(), printDetail);
    }
}

void OperatorNotice::set(const std::string& fault)
{
    if (!fault.empty() && (fault != m_fault)) {
        printMessage(fault);
        ::syslog(LOG_ERR, "%s", fault.c_str());
    }
    m_fault = fault;
}

void setMessageWriter(MessageWriter writer)
{
    messageWriter() = std::move(writer);
}

}  // namespace brantel
