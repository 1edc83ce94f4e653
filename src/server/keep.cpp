// The entries in order, an index by source and type, and the bound on what they hold.
#include "server/keep.h"

#include <algorithm>

void KEEP::add(bool is_message, entry e) {
    key k{e.source, e.type};
    if (is_message) {
        bytes_ += e.size();
        if (!e.of_instrument) bytes_consoles_ += e.size();
    }
    by_key_.emplace(std::move(k), entries_.emplace(place{is_message, ++last_number_}, std::move(e)).first);
}

void KEEP::drop(entries::iterator at) {
    const entry& e = at->second;
    if (at->first.is_message) {
        bytes_ -= e.size();
        if (!e.of_instrument) bytes_consoles_ -= e.size();
    }
    by_key_.erase({e.source, e.type});
    entries_.erase(at);
}

BOOL KEEP::announce(entry e) {
    const auto known = by_key_.find({e.source, e.type});
    if (known == by_key_.end()) {
        add(false, std::move(e));
        return TRUE;
    }
    known->second->second = std::move(e);
    return FALSE;
}

KEEP::outcome KEEP::put(entry e) {
    const auto known = by_key_.find({e.source, e.type});
    const entries::iterator own = known != by_key_.end() ? known->second : entries_.end();
    const std::size_t replaced = own != entries_.end() ? own->second.size() : 0;
    const std::size_t can_go = bytes_consoles_ - (e.of_instrument ? 0 : replaced);
    if (bytes_ - replaced - can_go + e.size() > limit_) {
        if (own != entries_.end()) drop(own);  // rather nothing than what is no longer true
        return NO_ROOM;
    }
    outcome result = KEPT;
    for (; bytes_ - replaced + e.size() > limit_; result = KEPT_AND_DROPPED)
        drop_oldest_of_consoles(own);
    if (own == entries_.end()) {
        add(true, std::move(e));
        return result;
    }
    bytes_ += e.size() - replaced;
    if (!e.of_instrument) bytes_consoles_ += e.size() - replaced;
    own->second = std::move(e);
    return result;
}

void KEEP::drop_oldest_of_consoles(entries::iterator but) {
    auto at = entries_.lower_bound({true, 0});
    while (at != entries_.end() && (at == but || at->second.of_instrument))
        ++at;
    if (at != entries_.end()) drop(at);
}

void KEEP::forget(const std::string& source) {
    auto at = by_key_.lower_bound({source, 0});
    while (at != by_key_.end() && at->first.first == source)
        drop((at++)->second);
}

const KEEP::entry* KEEP::next(reading* r) const {
    auto at = entries_.upper_bound(r->at);
    if (at != entries_.end() && at->first.number > r->last && !at->first.is_message)
        at = entries_.lower_bound({true, 0});
    if (at == entries_.end() || at->first.number > r->last) return nullptr;
    r->at = at->first;
    return &at->second;
}
