// Compares a platform, the one that it is compiled and linked with, with what the library expects of one
// (docs/platform.md). Each line is one expectation:
//
//     conforms   header: what is expected
//     DIFFERS    header: what is expected (what happened); what that means for the library
//     unchecked  header: what is expected, and only a person can compare
//
// The exit code is 0 if nothing differs, otherwise 1. Signatures.cpp compares what a compiler can.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"
#include "message/OBproxy.h"
#include "message/buffer_t.h"
#include "sql/Field.h"
#include "trace/TraceObject.h"
#include "trace/logAssertFailed.h"

/// Never called, nothing of it can be checked without services: makes the linker look for what the library calls.
void useProxies(OBcomponent& component, OBappsToICSC_1_0_PR& replies, buffer_t& tlvs);

void useProxies(OBcomponent& component, OBappsToICSC_1_0_PR& replies, buffer_t& tlvs)
{
    const auto pProxy = std::make_unique<OBappsToICSC_1_0_P>(component);
    static_cast<void>(pProxy->subscribe_synchronous(""));
    static_cast<void>(pProxy->subscribe_asynchronous("", &replies));
    pProxy->setReplyWaitTime(7);
    int result = 0;
    static_cast<void>(pProxy->ICSCRead(5, tlvs, result));
    static_cast<void>(pProxy->ICSCWrite(5, tlvs, result));
}

namespace {

struct Check {
    const char* header;
    const char* expectation;
    bool (*isMet)();
    const char* consequence;  // of an expectation that is not met
};

bool traceLevelIsKnown()
{
    if (g_traceObject != nullptr) {
        static_cast<void>(g_traceObject->getTraceLevel());
    }
    return true;
}

bool reportReturns()
{
    logAssertFailed("conformance program: not a fault", __FILE__, __LINE__, __func__);
    return true;
}

std::string bytesOf(const buffer_t& buffer)
{
    return {reinterpret_cast<const char*>(buffer.data()), buffer.size()};
}

buffer_t bufferOf(const std::string& bytes)
{
    return {bytes.data(), bytes.size()};
}

// Whether the values are read as they were written, and what follows them, too.
template <typename T>
bool areReadAsWritten(std::initializer_list<T> values)
{
    constexpr unsigned int mark = 0x5A17C0DE;
    buffer_t writer;
    for (const T& value : values) {
        writer << value;
    }
    writer << mark;

    const buffer_t& reader = writer;
    for (const T& value : values) {
        T readValue{};
        reader >> readValue;
        if (readValue != value) {
            return false;
        }
    }
    unsigned int readMark = 0;
    reader >> readMark;
    return readMark == mark;
}

template <typename Integer>
bool integersAreReadAsWritten()
{
    using Limits = std::numeric_limits<Integer>;
    constexpr auto differentBytes = static_cast<Integer>(0x0123456789ABCDEF);
    return areReadAsWritten<Integer>({Limits::min(), Limits::max(), 0, 1, static_cast<Integer>(-1), differentBytes});
}

template <typename Signed, typename Unsigned>
bool bothAreReadAsWritten()
{
    return integersAreReadAsWritten<Signed>() && integersAreReadAsWritten<Unsigned>();
}

bool boolsAreReadAsWritten()
{
    return areReadAsWritten<bool>({true, false, false, true});
}

bool stringsAreReadAsWritten()
{
    return areReadAsWritten<std::string>({"", "text", std::string("\0a\0", 3), "\xFF\x80", std::string(300, 'x')});
}

// Whether a nested buffer of these bytes is read with exactly these bytes, and from its start.
bool isReadAsNested(const std::string& bytes)
{
    buffer_t nested = bufferOf(bytes);
    unsigned char first = 0;
    if (!bytes.empty()) {
        nested >> first;  // what has been read is nested all the same
    }
    buffer_t outer;
    outer << nested;
    outer << 7U;

    buffer_t readNested = bufferOf("something else");
    unsigned int follower = 0;
    outer >> readNested;
    outer >> follower;
    if ((bytesOf(readNested) != bytes) || (follower != 7U)) {
        return false;
    }
    unsigned char readFirst = 0;
    if (!bytes.empty()) {
        readNested >> readFirst;
    }
    return readFirst == first;
}

bool nestedBuffersAreExact()
{
    return isReadAsNested("") && isReadAsNested("6bytes") && isReadAsNested(std::string(300, '\0')) &&
           isReadAsNested(std::string("\0\1\2\3\4\5\6\7", 8));
}

bool bytesAreTakenAsTheyAre()
{
    const std::string bytes("\0\1\xFE\xFF\0", 5);
    return (bytesOf(bufferOf(bytes)) == bytes) && (bufferOf("").size() == 0);
}

bool sizeIsWhatWasWritten()
{
    buffer_t buffer;
    if (buffer.size() != 0) {
        return false;
    }
    buffer << 1U;
    buffer << std::string("text");
    const std::size_t written = buffer.size();
    unsigned int number = 0;
    buffer >> number;
    return (written > sizeof number) && (buffer.size() == written);
}

bool clearForgetsEverything()
{
    buffer_t buffer;
    buffer << 1U;
    buffer << 2U;
    unsigned int number = 0;
    buffer >> number;
    buffer.clear();
    if (buffer.size() != 0) {
        return false;
    }
    buffer << 3U;
    buffer >> number;
    return number == 3U;
}

bool copiesAreIndependent()
{
    buffer_t original;
    original << 1U;
    buffer_t copy(original);
    buffer_t assigned;
    assigned << 9ULL;
    assigned = original;
    original.clear();
    original << 2U;
    unsigned int fromCopy = 0;
    unsigned int fromAssigned = 0;
    copy >> fromCopy;
    assigned >> fromAssigned;
    return (fromCopy == 1U) && (fromAssigned == 1U);
}

template <typename Action>
bool throws(Action action)
{
    try {
        action();
    } catch (...) {
        return true;
    }
    return false;
}

bool readingPastTheEndThrows()
{
    return throws([] {
        unsigned int number = 0;
        bufferOf("12") >> number;
    });
}

// A truncated one begins with a length that promises more than there is.
template <typename T>
bool readingItTruncatedThrows(const T& value)
{
    buffer_t whole;
    whole << value;
    const std::string bytes = bytesOf(whole);
    return throws([&bytes] {
        T readValue;
        bufferOf(bytes.substr(0, bytes.size() - 1)) >> readValue;
    });
}

bool readingTruncatedValuesThrows()
{
    return readingItTruncatedThrows(std::string("text")) && readingItTruncatedThrows(bufferOf("bytes"));
}

constexpr std::size_t CAPACITY = 2048;

bool capacityIsUsable()
{
    buffer_t buffer;
    for (std::size_t i = 0; i < CAPACITY; ++i) {
        buffer << static_cast<unsigned char>(i & 0xFF);
    }
    return (buffer.size() == CAPACITY) && (bufferOf(std::string(CAPACITY, 'x')).size() == CAPACITY);
}

bool writingBeyondTheCapacityThrows()
{
    buffer_t full = bufferOf(std::string(CAPACITY, 'x'));
    return throws([&full] { full << static_cast<unsigned char>(0); });
}

bool definitionsAreCopied()
{
    const std::vector<sql::Field> definition{sql::Field("Slot", sql::field_type::INTEGER, 3), sql::Field()};
    return definition.size() == 2;
}

constexpr Check CHECKS[] = {
    {"trace/TraceObject.h", "g_traceObject is null or has a trace level", traceLevelIsKnown,
     "every line that the library could log ends the program"},
    {"trace/logAssertFailed.h", "logAssertFailed returns", reportReturns,
     "a violated invariant ends the program where the library would go on"},
    {"message/buffer_t.h", "a bool is read as it was written", boolsAreReadAsWritten, "OID values of type 8 are wrong"},
    {"message/buffer_t.h", "8-bit integers are read as they were written",
     bothAreReadAsWritten<signed char, unsigned char>, "OID values of types 3 and 7 are wrong, and every type code"},
    {"message/buffer_t.h", "16-bit integers are read as they were written", bothAreReadAsWritten<short, unsigned short>,
     "OID values of types 2 and 6 are wrong"},
    {"message/buffer_t.h", "32-bit integers are read as they were written", bothAreReadAsWritten<int, unsigned int>,
     "OID values of types 1, 5 and 10 are wrong, and every OID and count"},
    {"message/buffer_t.h", "64-bit integers are read as they were written",
     bothAreReadAsWritten<long long, unsigned long long>, "OID values of types 0 and 4 are wrong"},
    {"message/buffer_t.h", "strings are read as they were written, with zeros and of 300 characters",
     stringsAreReadAsWritten, "OID values of type 9 are wrong"},
    {"message/buffer_t.h", "a nested buffer is read with exactly its bytes, and from its start", nestedBuffersAreExact,
     "no element is decoded, or OID values of types 12 and 13 are wrong"},
    {"message/buffer_t.h", "a buffer of raw bytes holds these bytes", bytesAreTakenAsTheyAre,
     "MAC addresses (type 13) are written wrongly"},
    {"message/buffer_t.h", "size() counts what was written, read or not", sizeIsWhatWasWritten,
     "an empty answer is not noticed, and MAC addresses (type 13) are reported as too short"},
    {"message/buffer_t.h", "clear() forgets what was written and read", clearForgetsEverything,
     "a request carries its OIDs more than once, and one that cannot be encoded keeps its beginning"},
    {"message/buffer_t.h", "a copy is equal and independent", copiesAreIndependent,
     "buffers are lost or changed in boost::any and on their way to a card"},
    {"message/buffer_t.h", "reading a number past the end throws", readingPastTheEndThrows,
     "a truncated answer of a card is decoded into made-up values"},
    {"message/buffer_t.h", "reading a truncated string or nested buffer throws", readingTruncatedValuesThrows,
     "a truncated answer of a card is decoded into made-up values"},
    {"message/buffer_t.h", "2048 bytes fit", capacityIsUsable, "fewer objects fit into a request"},
    {"message/buffer_t.h", "writing beyond 2048 bytes throws", writingBeyondTheCapacityThrows,
     "a request that is too long is sent, truncated or not, instead of being refused"},
    {"sql/Field.h", "fields are built and copied", definitionsAreCopied, "there are no definitions of tables"},
};

struct Unchecked {
    const char* header;
    const char* expectation;
};

constexpr Unchecked UNCHECKED[] = {
    {"trace/TraceObject.h", "getTraceLevel and logAssertFailed may be called on any thread that uses the library"},
    {"message/OBproxy.h", "times are seconds; a proxy waits 7 until setReplyWaitTime is called"},
    {"icsc/OBappsToICSC_1_0_P.h", "a call returns -1 if it failed, and otherwise sets result to the ICSC result code"},
    {"icsc/OBappsToICSC_1_0_P.h", "a synchronous ICSCRead replaces the request in tlvs by the answer, unread"},
    {"icsc/OBappsToICSC_1_0_PR.h", "answers of asynchronous calls arrive on the thread of the component"},
    {"message/buffer_t.h", "byte order and framing are those of the cards"},
};

enum ExitCode : int { MET = 0, NOT_MET = 1, THREW = 2 };

[[noreturn]] void runAndExit(bool (*isMet)())
{
    constexpr unsigned int patience = 10;  // seconds
    ::alarm(patience);
    ExitCode code = THREW;
    try {
        code = isMet() ? MET : NOT_MET;
    } catch (...) {
    }
    ::_exit(code);
}

// What happened if the expectation is not met, as far as there is something to say. The check has a process of its own,
// which the platform may end.
std::optional<std::string> differenceOf(bool (*isMet)())
{
    static_cast<void>(std::fflush(stdout));
    const pid_t child = ::fork();
    if (child == 0) {
        runAndExit(isMet);
    }
    int status = 0;
    if ((child < 0) || (::waitpid(child, &status, 0) != child)) {
        return " (the check could not run)";
    }
    if (WIFSIGNALED(status)) {
        return " (ended by signal " + std::to_string(WTERMSIG(status)) + ")";
    }
    switch (WEXITSTATUS(status)) {
        case MET: return std::nullopt;
        case NOT_MET: return "";
        case THREW: return " (an exception)";
        default: return " (the process exited)";
    }
}

}  // namespace

int main()
{
    std::puts("conforms   all headers: types and signatures, compared by the compiler");
    int nDifferences = 0;
    for (const Check& check : CHECKS) {
        const std::optional<std::string> difference = differenceOf(check.isMet);
        if (!difference) {
            std::printf("conforms   %s: %s\n", check.header, check.expectation);
        } else {
            ++nDifferences;
            std::printf("DIFFERS    %s: %s%s; %s\n", check.header, check.expectation, difference->c_str(),
                        check.consequence);
        }
    }
    for (const Unchecked& expectation : UNCHECKED) {
        std::printf("unchecked  %s: %s\n", expectation.header, expectation.expectation);
    }
    return (nDifferences == 0) ? 0 : 1;
}
