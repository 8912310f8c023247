#ifndef APPS_COMMON_MESSAGE_H
#define APPS_COMMON_MESSAGE_H

// What the command prints on standard error: messages of the form "brantel: PATH[:LINE[:COLUMN]]: reason".

#include <exception>
#include <functional>
#include <string>
#include <string_view>

namespace brantel {

/// "brantel: " and `text`, made printable, with a line end.
std::string messageLine(std::string_view text);

/// Prints a message. Standard output is flushed first, so that both are in order.
void printMessage(std::string_view text);

/// Prints a further line of the last message, made printable: a part of a picture, an entry of a list.
void printDetail(std::string_view line);

/// Reports an exception that ends the command.
void printFailure(const std::exception& error);

/// A fault in the surroundings of a program that keeps running (a file, the database): reported on standard error and
/// in syslog once when it occurs or changes.
class OperatorNotice {
public:
    /// Sets the present fault; empty: none.
    void set(const std::string& fault);

private:
    std::string m_fault;
};

/// Takes lines with their ends instead of standard error. It must not wait for a reader.
using MessageWriter = std::function<void(const std::string&)>;

/// Passes messages to `writer` from now on; to standard error again if it is empty.
void setMessageWriter(MessageWriter writer);

}  // namespace brantel

#endif
