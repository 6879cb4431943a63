#pragma once

#include <list>
#include <string>
#include <unordered_map>
#include <utility>

namespace veltasim {

// Records in the order in which they were added, found by their key.
template <typename Record>
class Table {
 public:
    Table() = default;
    Table(Table&&) noexcept = default;
    Table& operator=(Table&&) noexcept = default;

    // Null: there is none.
    const Record* find(const std::string& key) const {
        const auto found = index_.find(key);
        return found == index_.end() ? nullptr : &*found->second;
    }
    Record* find(const std::string& key) { return const_cast<Record*>(std::as_const(*this).find(key)); }

    // The key must be new.
    Record& add(const std::string& key, Record record) {
        records_.push_back(std::move(record));
        index_.emplace(key, std::prev(records_.end()));
        return records_.back();
    }

    bool erase(const std::string& key) {
        const auto found = index_.find(key);
        if (found == index_.end()) return false;
        records_.erase(found->second);
        index_.erase(found);
        return true;
    }

    void clear() {
        index_.clear();
        records_.clear();
    }

    size_t size() const { return records_.size(); }
    auto begin() const { return records_.begin(); }
    auto end() const { return records_.end(); }

 private:
    std::list<Record> records_;
    std::unordered_map<std::string, typename std::list<Record>::iterator> index_;
};

}  // namespace veltasim
