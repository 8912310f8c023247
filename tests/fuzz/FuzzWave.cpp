// Descriptions of signals: each signal of one that is accepted has a name and, at any time, a value of its type.
//
// Input: the file.

#include "cards/CardObjects.h"
#include "cards/OidTable.h"
#include "cards/ValueText.h"
#include "common/CommandLine.h"
#include "fuzz/FuzzFiles.h"

namespace brantel {

FUZZ_TARGET(pData, size)
{
    const std::string path = fileOf(textOf(pData, size));
    CardObjects objects;
    double now = 0;
    if (!isAccepted<CommandError>(path, [&] { addWaveObjects(objects, path, [&] { return now; }); })) {
        return 0;
    }
    for (const double time : {0.0, 0.25, 1.0, 59.999, 1e6, 1e9}) {
        now = time;
        for (const auto& [oid, object] : objects) {
            require(!object.check);
            const std::string text = valueText(object.type, object.read());
            require((object.type == OID_TYPE_STRING) || parseValue(object.type, text).has_value());
        }
    }
    return 0;
}

}  // namespace brantel
