#ifndef APPS_COMMON_PROGRESS_BAR_H
#define APPS_COMMON_PROGRESS_BAR_H

// How far a long operation is, on standard error if that is a terminal; nothing otherwise.

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

class ProgressBar {
public:
    /// `total` is how many steps there will be, if that is known; `unit` is what a step is called.
    ProgressBar(const std::string& unit, std::optional<std::size_t> total);

    /// Takes the bar away.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// One step more. Redraws a few times a second.
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

#endif
