// The two lists in order of first sending, and the bound on what they hold.
#include "server/keep.h"

#include <algorithm>

void KEEP::announce(entry e) {
    const auto same = [&](const entry& other) { return other.source == e.source; };
    const auto found = std::find_if(announcements_.begin(), announcements_.end(), same);
    if (found != announcements_.end()) {
        *found = std::move(e);
    } else {
        announcements_.push_back(std::move(e));
    }
}

KEEP::outcome KEEP::put(entry e) {
    const auto known = by_key_.find({e.source, e.type});
    const list::iterator own = known != by_key_.end() ? known->second : messages_.end();
    const std::size_t replaced = own != messages_.end() ? own->frame.size() : 0;
    outcome result = KEPT;
    for (auto at = messages_.begin(); bytes_ - replaced + e.frame.size() > limit_;) {
        while (at != messages_.end() && (at == own || at->of_instrument))
            ++at;
        if (at == messages_.end()) {
            if (own != messages_.end()) drop(own);  // rather nothing than what is no longer true
            return NO_ROOM;
        }
        drop(at++);
        result = KEPT_AND_DROPPED;
    }
    bytes_ += e.frame.size() - replaced;
    if (own != messages_.end()) {
        *own = std::move(e);
    } else {
        key k{e.source, e.type};
        by_key_.emplace(std::move(k), messages_.insert(messages_.end(), std::move(e)));
    }
    return result;
}

void KEEP::drop(list::iterator at) {
    bytes_ -= at->frame.size();
    by_key_.erase({at->source, at->type});
    messages_.erase(at);
}

void KEEP::forget(const std::string& source) {
    std::erase_if(announcements_, [&](const entry& e) { return e.source == source; });
    for (auto at = messages_.begin(); at != messages_.end();) {
        const auto here = at++;
        if (here->source == source) drop(here);
    }
}
