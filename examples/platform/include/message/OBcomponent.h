#ifndef MINIMAL_OB_COMPONENT_H
#define MINIMAL_OB_COMPONENT_H

class OBcomponent {};

#endif
