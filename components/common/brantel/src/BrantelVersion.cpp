#include "BrantelVersion.h"

// Two steps: an argument of # is not expanded.
#define TEXT_OF(number) #number
#define VERSION_TEXT(major, minor, patch) TEXT_OF(major) "." TEXT_OF(minor) "." TEXT_OF(patch)

const char* brantelVersion()
{
    return VERSION_TEXT(BRANTEL_VERSION_MAJOR, BRANTEL_VERSION_MINOR, BRANTEL_VERSION_PATCH);
}
