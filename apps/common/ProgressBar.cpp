#include "common/ProgressBar.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace brantel {
namespace {

constexpr auto REDRAW_INTERVAL = std::chrono::milliseconds(100);

}  // namespace

ProgressBar::ProgressBar(const std::string& unit, std::optional<std::size_t> total)
    : m_unit(unit), m_total(total), m_isShown(::isatty(STDERR_FILENO) != 0)
{
}

ProgressBar::~ProgressBar()
{
    if (m_isShown) {
        static_cast<void>(std::fputs("\r\x1b[K", stderr));
    }
}

void ProgressBar::step()
{
    ++m_done;
    if (m_isShown && (std::chrono::steady_clock::now() >= m_nextDraw)) {
        draw();
    }
}

void ProgressBar::draw()
{
    m_nextDraw = std::chrono::steady_clock::now() + REDRAW_INTERVAL;
    static_cast<void>(std::fputs(("\r" + progressText(m_done, m_total, m_unit) + "\x1b[K").c_str(), stderr));
    static_cast<void>(std::fflush(stderr));
}

std::string progressText(std::size_t done, std::optional<std::size_t> total, const std::string& unit)
{
    std::string count = std::to_string(done) + " " + unit;
    if (!total || (*total == 0)) {
        return count;
    }
    constexpr std::size_t WIDTH = 40;
    const std::size_t reached = std::min(done, *total);
    const std::size_t nMarks = reached * WIDTH / *total;
    const std::string percent = std::to_string(reached * 100 / *total);
    return "[" + std::string(nMarks, '#') + std::string(WIDTH - nMarks, ' ') + "] " +
           std::string(3 - std::min<std::size_t>(percent.size(), 3), ' ') + percent + " %  " + count;
}

}  // namespace brantel
