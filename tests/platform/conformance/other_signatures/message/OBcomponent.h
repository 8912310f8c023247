#ifndef OTHER_OBCOMPONENT_H
#define OTHER_OBCOMPONENT_H

enum class OBcomponent { EVENT_MANAGER, FAN_CONTROL };

#endif
