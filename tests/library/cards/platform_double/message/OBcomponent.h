#ifndef DOUBLE_MESSAGE_OB_COMPONENT_H
#define DOUBLE_MESSAGE_OB_COMPONENT_H

#include <string>

class OBcomponent {
public:
    explicit OBcomponent(std::string name) : m_name(std::move(name)) {}

    const std::string& name() const { return m_name; }

private:
    std::string m_name;
};

#endif
