#include "monitor/WaitingEvents.h"

namespace brantel {

void WaitingEvents::add(std::uint64_t number, const std::string& text)
{
    m_size += text.size();
    m_lines.push_back({number, text});
}

void WaitingEvents::lose(std::uint64_t number)
{
    m_lost = EventRange{m_lost ? m_lost->first : number, number};
}

void WaitingEvents::removeFirst()
{
    m_size -= m_lines.front().text.size();
    m_lines.pop_front();
}

void WaitingEvents::clear()
{
    m_lines.clear();
    m_size = 0;
    m_lost.reset();
}

}  // namespace brantel
