// Finds records by a text that they hold, without holding that text a second time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "util/KeyedHash.h"
#include "util/PathRules.h"

namespace zoka {

// An open hash table of record numbers. Of records with equal texts the first one added is found. `Text`
// gives the text of a record number; it must give the same text as long as the record is in the index.
// `NoCase` compares without regard to the case of the letters A to Z.
template <bool NoCase>
class RecordIndex {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    void clear() {
        m_slots.clear();
        m_used = 0;
    }

    void reserve(size_t records) {
        if (records * 2 > m_slots.size()) {
            grow(records);
        }
    }

    // What add and find go by. In a large index its place is not in the processor's caches: it comes closer
    // while the caller does other work.
    std::uint32_t hashAndPrefetch(std::string_view key) const {
        const std::uint32_t hash = hashOf(key);
        if (!m_slots.empty()) {
            __builtin_prefetch(&m_slots[hash & (m_slots.size() - 1)]);
        }
        return hash;
    }

    // `hash` is that of the record's text. False when an earlier record has the same text: the index then stays
    // as it is.
    template <class Text>
    bool add(std::uint32_t record, std::uint32_t hash, const Text& text) {
        if ((m_used + 1) * 2 > m_slots.size()) {
            grow(m_used + 1);
        }
        Slot& slot = m_slots[place(text(record), hash, text)];
        if (slot.record != kNone) {
            return false;
        }
        slot = {hash, record};
        ++m_used;
        return true;
    }
    template <class Text>
    bool add(std::uint32_t record, const Text& text) {
        return add(record, hashOf(text(record)), text);
    }

    // The record's number, or kNone.
    template <class Text>
    std::uint32_t find(std::string_view key, const Text& text) const {
        return m_slots.empty() ? kNone : m_slots[place(key, hashOf(key), text)].record;
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t record = kNone;
    };

    static std::uint32_t hashOf(std::string_view key) {
        return static_cast<std::uint32_t>(NoCase ? keyedHashNoCase(key) : keyedHash(key));
    }

    static bool equal(std::string_view a, std::string_view b) { return NoCase ? equalNoCase(a, b) : a == b; }

    template <class Text>
    size_t place(std::string_view key, std::uint32_t hash, const Text& text) const {
        const size_t mask = m_slots.size() - 1;
        size_t at = hash & mask;
        while (m_slots[at].record != kNone &&
               (m_slots[at].hash != hash || !equal(text(m_slots[at].record), key))) {
            at = (at + 1) & mask;
        }
        return at;
    }

    void grow(size_t records) {
        size_t size = 16;
        while (size < records * 2) {
            size *= 2;
        }
        std::vector<Slot> old(size);
        old.swap(m_slots);
        // The texts of the records in the index all differ, so any free slot is the right one.
        for (const Slot& slot : old) {
            if (slot.record == kNone) {
                continue;
            }
            size_t at = slot.hash & (size - 1);
            while (m_slots[at].record != kNone) {
                at = (at + 1) & (size - 1);
            }
            m_slots[at] = slot;
        }
    }

    std::vector<Slot> m_slots;  // a power of two, at most half used
    size_t m_used = 0;
};

}  // namespace zoka
