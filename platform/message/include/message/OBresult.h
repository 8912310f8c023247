#ifndef MESSAGE_OB_RESULT_H
#define MESSAGE_OB_RESULT_H

// The results that the framework itself gives to a call: the general results, in the top byte of a result code.

namespace obResult {

constexpr int SUCCESS = 0;
constexpr int GENERAL_ERROR = 0x01000000;      // another interface, version or operation than the service's
constexpr int TIMEOUT = 0x02000000;            // no answer within the time that the caller gave
constexpr int INVALID_RESPONSE = 0x03000000;   // an answer that cannot be understood
constexpr int INTERNAL_ERROR = 0x04000000;     // the service failed to handle the request
constexpr int MESSAGE_TOO_LARGE = 0x07000000;  // more than a buffer_t holds
constexpr int MESSAGE_TOO_SHORT = 0x08000000;  // cut off before its contents

}  // namespace obResult

#endif
