#ifndef APPS_PORTS_BACKPLANE_PICTURE_H
#define APPS_PORTS_BACKPLANE_PICTURE_H

// A backplane as a picture (SVG): the slots with their links above, the NPU with its ports below, a line for each link
// that a port serves.

#include <string>

#include "ports/BackplanePorts.h"

std::string backplanePicture(const BackplanePorts& ports, const std::string& title);

#endif
