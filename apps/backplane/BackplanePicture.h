#ifndef APPS_BACKPLANE_BACKPLANE_PICTURE_H
#define APPS_BACKPLANE_BACKPLANE_PICTURE_H

// A backplane as a picture (SVG): the slots with their links above, the NPU with its ports below, a line for each link
// that a port serves.

#include <string>

#include "backplane/BackplanePorts.h"

namespace brantel {

std::string backplanePicture(const BackplanePorts& ports, const std::string& title);

}  // namespace brantel

#endif
