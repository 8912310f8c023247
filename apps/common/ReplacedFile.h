#ifndef APPS_COMMON_REPLACED_FILE_H
#define APPS_COMMON_REPLACED_FILE_H

// A file that is always complete: its new content is written to another file next to it, which then replaces it. Only a
// file of the same kind is ever replaced.

#include <string>
#include <string_view>
#include <vector>

namespace brantel {

enum class Durability {
    UNTIL_CRASH,   ///< the content survives any end of the program
    POWER_FAILURE  ///< and of the machine: it is on disk when the call returns
};

/// The absolute path without links, also if nothing exists there.
std::string resolvedPath(const std::string& path);

/// Throws CommandError if the file at `path` must not be replaced: if it exists and is not a regular file that is
/// empty, holds only NULs or begins with `start`. The same applies to the file with the suffix .new, to which the new
/// content is written first.
void requireReplaceable(const std::string& path, std::string_view start);

/// Replaces the content of the file at `path`, which must be replaceable, by `text`. A symbolic link is kept. If it
/// throws CommandError, the file is unchanged and the other one removed.
void replaceFile(const std::string& path, std::string_view start, const std::string& text, Durability durability);

/// A file and its name in messages.
struct NamedFile {
    std::string name;
    std::string path;
};

/// Throws CommandError if two of the paths lead to the same file, also through links, and whether it exists or not.
void requireDistinct(const std::vector<NamedFile>& files);

}  // namespace brantel

#endif
