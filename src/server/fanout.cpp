// Audiences and runs.
#include "server/fanout.h"

#include <utility>

bool FANOUT::is_for(const CONNECTION& to, DWORD flags, std::string_view dest) {
    return (flags & FRAME_TO_ALL) != 0 || to.kind == FRAME_PEER_MONITOR || to.name == dest;
}

void FANOUT::add(DWORD flags, std::string_view dest, FRAME_span bytes, CONNECTION* from) {
    const bool same = from == from_ && audience_.is(flags, dest);
    if (same && bytes.data() == run_.data() + run_.size()) {
        run_ = {run_.data(), run_.size() + bytes.size()};
        return;
    }
    hand_out();
    if (!audience_.is(flags, dest)) address(flags, dest);
    run_ = bytes;
    from_ = from;
}

void FANOUT::address(DWORD flags, std::string_view dest) {
    audience_.known = true;
    audience_.all = (flags & FRAME_TO_ALL) != 0;
    audience_.dest = dest;
    audience_.members.clear();
    audience_.blocks = audience_.all ? &to_all_ : &to_monitors_;
    for (const auto& c : connections_) {
        if (c->stands != CONNECTION::OPEN || !is_for(*c, flags, dest)) continue;
        audience_.members.push_back(c.get());
        if (audience_.all || c->kind == FRAME_PEER_MONITOR) continue;
        audience_.blocks = c->is_instrument() ? &c->blocks() : &to_clients_;
    }
}

void FANOUT::hand_out() {
    FRAME_span rest = std::exchange(run_, {});
    CONNECTION* const from = std::exchange(from_, nullptr);
    if (rest.empty() || audience_.members.empty()) return;
    while (!rest.empty()) {
        const BLOCKS_piece piece = audience_.blocks->take(&rest);
        for (CONNECTION* to : audience_.members)
            to->send(piece);
    }
    if (from == nullptr) return;
    for (CONNECTION* to : audience_.members)
        if (to->is_over()) to->hold_up(*from);
}

void FANOUT::release_idle() {
    for (BLOCKS* blocks : {&to_all_, &to_clients_, &to_monitors_})
        blocks->release_idle();
    for (const auto& c : connections_)
        c->blocks().release_idle();
}
