#ifndef MESSAGE_OUTSTANDING_REQUESTS_H
#define MESSAGE_OUTSTANDING_REQUESTS_H

// Requests by number, each waiting for its answer until its deadline. `Request` has a member `deadline`.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "Sockets.h"

namespace obmessage {

template <typename Request>
class OutstandingRequests {
public:
    static constexpr std::size_t MAX_REQUESTS = 1000;

    bool isFull() const { return m_requests.size() >= MAX_REQUESTS; }

    void add(std::uint64_t number, const Request& request) { m_requests.emplace(number, request); }

    /// Null if it is not outstanding.
    const Request* find(std::uint64_t number) const
    {
        const auto entry = m_requests.find(number);
        return (entry == m_requests.end()) ? nullptr : &entry->second;
    }

    /// Returns and removes it, if it is outstanding.
    std::optional<Request> take(std::uint64_t number)
    {
        const auto node = m_requests.extract(number);
        return node ? std::optional(node.mapped()) : std::nullopt;
    }

    std::optional<Clock::time_point> nextDeadline() const
    {
        const auto first = firstToExpire();
        return (first == m_requests.end()) ? std::nullopt : std::optional(first->second.deadline);
    }

    /// The number of a request whose deadline is over at `now`.
    std::optional<std::uint64_t> expiredAt(Clock::time_point now) const
    {
        const auto first = firstToExpire();
        return ((first == m_requests.end()) || (first->second.deadline > now)) ? std::nullopt
                                                                               : std::optional(first->first);
    }

private:
    auto firstToExpire() const
    {
        return std::min_element(m_requests.begin(), m_requests.end(), [](const auto& left, const auto& right) {
            return left.second.deadline < right.second.deadline;
        });
    }

    std::map<std::uint64_t, Request> m_requests;
};

}  // namespace obmessage

#endif
