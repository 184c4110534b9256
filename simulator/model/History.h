#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>
#include <utility>

namespace Brenmoor {
namespace TavoSimulator {

/// The newest of what happened, in order. What is older goes once there are more than a thousand,
/// or more than 16 MiB, so that a simulator may run for weeks.
template <typename Item>
class History {
public:
    static constexpr std::size_t mostItems = 1000;
    static constexpr std::size_t mostBytes = std::size_t{16} * 1024 * 1024;

    /// Adds an item that counts for so many bytes. Of the older ones, `mayGo` tells which can be
    /// dropped; the newest always stays.
    template <typename Predicate>
    void Add(Item item, std::size_t size, const Predicate& mayGo) {
        items.emplace_back(std::move(item), size);
        bytes += size;
        while (items.size() > mostItems || bytes > mostBytes) {
            const auto last = std::prev(items.end());
            const auto found = std::find_if(items.begin(), last,
                                            [&](const auto& entry) { return mayGo(entry.first); });
            if (found == last) {
                return;
            }
            bytes -= found->second;
            items.erase(found);
        }
    }

    void Add(Item item, std::size_t size) {
        Add(std::move(item), size, [](const Item&) { return true; });
    }

    /// Calls `function` for each item, the oldest first, until it returns false.
    template <typename Function>
    void Each(const Function& function) {
        for (auto& entry : items) {
            if (!function(entry.first)) {
                return;
            }
        }
    }

    template <typename Function>
    void Each(const Function& function) const {
        for (const auto& entry : items) {
            if (!function(entry.first)) {
                return;
            }
        }
    }

    std::size_t Size() const {
        return items.size();
    }

private:
    std::deque<std::pair<Item, std::size_t>> items;
    std::size_t bytes = 0;
};

} // namespace TavoSimulator
} // namespace Brenmoor
