#pragma once

#include "player/IdTable.h"

#include <vector>

namespace quorel {

/// A set of ids, flat in memory. They stand in the order of their insertion, but that an erased one
/// is replaced by the last.
class IdSet {
    auto idAt() const {
        return [this](IdTable::Place place) -> const QUuid& { return ids_[place]; };
    }

  public:
    bool contains(const QUuid& id) const { return table_.find(id, idAt()).has_value(); }
    bool isEmpty() const { return ids_.empty(); }
    std::size_t size() const { return ids_.size(); }
    const std::vector<QUuid>& ids() const { return ids_; }

    /// False where the id is in the set already.
    bool insert(const QUuid& id) {
        if (!table_.insert(id, static_cast<IdTable::Place>(ids_.size()), idAt()))
            return false;
        ids_.push_back(id);
        return true;
    }

    /// False where the id is not in the set.
    bool erase(const QUuid& id) {
        const auto place = table_.find(id, idAt());
        if (!place)
            return false;
        table_.erase(id, idAt());
        if (const QUuid last = ids_.back(); last != id) {
            table_.replace(last, *place, idAt());
            ids_[*place] = last;
        }
        ids_.pop_back();
        return true;
    }

    void reserve(std::size_t ids) {
        ids_.reserve(ids);
        table_.reserve(ids);
    }

    void clear() {
        ids_.clear();
        table_.clear();
    }

  private:
    std::vector<QUuid> ids_;
    IdTable table_;
};

} // namespace quorel
