#ifndef APPS_CARDS_CARD_H
#define APPS_CARDS_CARD_H

// A card without its connection: turns request streams into answer streams and result codes. A request that cannot
// be carried out completely is refused as a whole.

#include <cstdint>
#include <string>

#include "cards/CardObjects.h"
#include "cards/Faults.h"

namespace brantel {

class Card {
public:
    /// `sourceObjects` are added to those that every card has.
    Card(std::uint32_t slot, const std::string& source, CardObjects sourceObjects);

    struct Answer {
        int result;
        buffer_t tlvs;
    };

    /// Reads the objects that `request` lists.
    Answer read(const buffer_t& request);

    /// Writes the values that `request` lists: all of them, or none. Returns the result code.
    int write(const buffer_t& request);

    const Faults& faults() const { return m_faults; }
    void setFaults(const Faults& faults) { m_faults = faults; }

    /// Whether the request is about the object that holds the faults alone: faults do not affect it.
    static bool isAboutFaultsOnly(const buffer_t& request);

private:
    struct Write {
        const CardObject* pObject = nullptr;
        boost::any value;
    };

    void addOwnObjects(std::uint32_t slot, const std::string& source);
    void addWritable(const OidTypeValue& initial, const std::function<int(const boost::any&)>& check);
    static buffer_t valueElement(std::uint32_t oid, const CardObject& object);
    int checkWrite(const buffer_t& element, Write& write) const;

    const std::uint32_t m_slot;
    const double m_start = steadySeconds();
    CardObjects m_objects;
    Faults m_faults;
    std::uint64_t m_reads = 0;
    std::uint64_t m_writes = 0;
};

}  // namespace brantel

#endif
