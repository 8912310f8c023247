#ifndef APPS_COMMON_REPLACED_FILE_H
#define APPS_COMMON_REPLACED_FILE_H

// A file that is always whole: its new content is written beside it and takes its place in one step.

#include <string>

enum class Durability {
    UNTIL_CRASH,   ///< the content survives the program's end, however that comes
    POWER_FAILURE  ///< that of the machine, too: on disk when the call returns
};

/// Gives the file at `path` the content `text`. Throws CommandError, with the file as it was before.
void replaceFile(const std::string& path, const std::string& text, Durability durability);

/// Writes all of `text` to an open file; false, with errno, if that fails.
bool writeAll(int file, const std::string& text);

#endif
