#ifndef APPS_COMMON_PROGRESS_BAR_H
#define APPS_COMMON_PROGRESS_BAR_H

// The progress of a long operation, on standard error if that is a terminal.

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace brantel {

class ProgressBar {
public:
    /// `total` is the number of steps, if it is known; `unit` is the plural of a step's name.
    ProgressBar(const std::string& unit, std::optional<std::size_t> total);

    /// Removes the bar.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Counts a step. Redraws a few times per second.
    void step();

private:
    void draw();

    std::string m_unit;
    std::optional<std::size_t> m_total;
    std::size_t m_done = 0;
    bool m_isShown;
    std::chrono::steady_clock::time_point m_nextDraw;
};

/// The bar as a text of one line: "[#####     ]  50 %  50000 rows".
std::string progressText(std::size_t done, std::optional<std::size_t> total, const std::string& unit);

}  // namespace brantel

#endif
