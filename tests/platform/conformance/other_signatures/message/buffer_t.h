#ifndef OTHER_BUFFER_T_H
#define OTHER_BUFFER_T_H

class buffer_t {
public:
    explicit buffer_t(const void* bytes);
    buffer_t(const buffer_t&) = delete;
    buffer_t& operator=(const buffer_t&) = delete;

    int size() const { return 0; }
    const char* data() const { return nullptr; }
};

#endif
