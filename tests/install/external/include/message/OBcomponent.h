#ifndef FOREIGN_OBCOMPONENT_H
#define FOREIGN_OBCOMPONENT_H

class OBcomponent {};

#endif
