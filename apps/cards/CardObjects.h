#ifndef APPS_CARDS_CARD_OBJECTS_H
#define APPS_CARDS_CARD_OBJECTS_H

// What a card is made of: its objects by OID, each with a way to read its value and, if it is writable, to check and
// write one. The functions below add the objects of one source each.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "Icsc.h"
#include "IfcCardStatusAndControl.h"

namespace brantel {

/// The longest string of an object, in bytes: two of them fit into an answer.
constexpr std::size_t MAX_TEXT_LENGTH = 1000;

struct CardObject {
    OidValueType type = OID_TYPE_UINT64;
    std::function<boost::any()> read;
    std::function<int(const boost::any&)> check;   ///< of a value of the right type: a result code; none: read only
    std::function<void(const boost::any&)> write;  ///< takes a value that was checked
};

using CardObjects = std::map<std::uint32_t, CardObject>;

CardObject readOnly(OidValueType type, std::function<boost::any()> read);

/// Adds an object that does not change.
void addConstant(CardObjects& objects, const OidTypeValue& constant);

/// Seconds since some moment, for values that change with time.
using SecondsClock = std::function<double()>;

/// The clock that only goes forward.
double steadySeconds();

/// Live counters of this host.
void addHostObjects(CardObjects& objects);

struct CsvReplay {
    std::string file;
    std::string timeColumn;  ///< empty: the column "time", if there is one
    double interval = 1.0;   ///< seconds between rows, if there is no time column
    double speed = 1.0;      ///< 2: twice as fast as recorded
    bool isStepped = false;  ///< not by time: on to the next row when a column is read that was read of this one
};

/// The columns of a recording, replayed from now on: by time again and again, stepped up to the last row. Throws
/// CommandError if it cannot be read.
void addCsvObjects(CardObjects& objects, const CsvReplay& replay, const SecondsClock& clock = steadySeconds);

/// The signals of a description, each at the start of its first period now. Throws CommandError if it cannot be read.
void addWaveObjects(CardObjects& objects, const std::string& file, const SecondsClock& clock = steadySeconds);

}  // namespace brantel

#endif
