#ifndef TESTS_SUPPORT_WORD_BEHIND_H
#define TESTS_SUPPORT_WORD_BEHIND_H

// Detects reads and writes beyond the end of an allocated block, also without a sanitizer: in a program that is linked
// with WordBehind.cpp each block is followed by a pointer that the test chooses.

namespace wordBehind {

/// Follows every block that is allocated from now on.
extern void* pNext;

}  // namespace wordBehind

#endif
