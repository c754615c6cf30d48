#pragma once

#include <QUuid>
#include <bit>
#include <cstring>
#include <optional>
#include <vector>

namespace quorel {

/// Finds by its id the place at which something stands in a list that the caller keeps: a flat hash
/// table with linear probing. The list's ids are asked for through `idAt(place)`. All look-ups are
/// constant in time; at most 2^31 places.
class IdTable {
  public:
    using Place = quint32;

    template <class IdAt>
    std::optional<Place> find(const QUuid& id, const IdAt& idAt) const {
        if (slots_.empty())
            return std::nullopt;
        const Slot& slot = slots_[probe(id, hashOf(id), idAt)];
        return slot.place == kFree ? std::nullopt : std::optional(slot.place);
    }

    /// False, and nothing is changed, where the id is in the table already.
    template <class IdAt>
    bool insert(const QUuid& id, Place place, const IdAt& idAt) {
        reserve(count_ + 1);
        const quint32 hash = hashOf(id);
        Slot& slot = slots_[probe(id, hash, idAt)];
        if (slot.place != kFree)
            return false;
        slot = {hash, place};
        ++count_;
        return true;
    }

    /// The id, which is in the table, stands at another place from now on.
    template <class IdAt>
    void replace(const QUuid& id, Place place, const IdAt& idAt) {
        slots_[probe(id, hashOf(id), idAt)].place = place;
    }

    /// Takes the id, which is in the table, out.
    template <class IdAt>
    void erase(const QUuid& id, const IdAt& idAt) {
        std::size_t hole = probe(id, hashOf(id), idAt);
        // Later slots of the same run move up, so that no probe ends too early.
        for (std::size_t next = after(hole); slots_[next].place != kFree; next = after(next)) {
            const std::size_t home = slots_[next].hash & mask();
            if (((next - home) & mask()) >= ((next - hole) & mask())) {
                slots_[hole] = slots_[next];
                hole = next;
            }
        }
        slots_[hole].place = kFree;
        --count_;
    }

    /// Room for that many ids; at least half of the slots stay free.
    void reserve(std::size_t ids) {
        if (2 * ids <= slots_.size())
            return;
        std::vector<Slot> old(std::bit_ceil(2 * ids));
        old.swap(slots_);
        for (const Slot& slot : old)
            if (slot.place != kFree)
                slots_[freeSlot(slot.hash)] = slot;
    }

    void clear() {
        slots_.clear();
        count_ = 0;
    }

  private:
    static constexpr Place kFree = ~Place{0};

    struct Slot {
        quint32 hash = 0;
        Place place = kFree;
    };

    /// Spreads ids that differ in a few bits only, too; the constants are those of splitmix64.
    static quint32 hashOf(const QUuid& id) {
        static_assert(sizeof(QUuid) == 16);
        quint64 halves[2];
        std::memcpy(halves, &id, sizeof halves);
        quint64 mixed = halves[0] ^ std::rotl(halves[1] * 0x9E3779B97F4A7C15u, 32);
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
        return static_cast<quint32>(mixed >> 32);
    }

    std::size_t mask() const { return slots_.size() - 1; }
    std::size_t after(std::size_t slot) const { return (slot + 1) & mask(); }

    /// The id's slot, or the free one where it would go.
    template <class IdAt>
    std::size_t probe(const QUuid& id, quint32 hash, const IdAt& idAt) const {
        std::size_t slot = hash & mask();
        while (slots_[slot].place != kFree &&
               (slots_[slot].hash != hash || idAt(slots_[slot].place) != id))
            slot = after(slot);
        return slot;
    }

    std::size_t freeSlot(quint32 hash) const {
        std::size_t slot = hash & mask();
        while (slots_[slot].place != kFree)
            slot = after(slot);
        return slot;
    }

    std::vector<Slot> slots_;
    std::size_t count_ = 0;
};

} // namespace quorel
